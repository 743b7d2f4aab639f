#pragma once

#include <memory>
#include <string>

#include "mox/core/xml.h"
#include "mox/zyn/matrix/aggregation_function.h"

/// The names of source and target column. `F` is the family.
template <class F>
class CommonAggregationFunction : public virtual F {
 public:
  bool save(std::shared_ptr<moxXMLNode> node) const override {
    if (!node) {
      return false;
    }
    node->writeAttribute(kSource, source_);
    node->writeAttribute(kTarget, target_);
    return true;
  }

  bool load(std::shared_ptr<moxXMLNode> node) override {
    if (!node) {
      return false;
    }
    source_ = node->readAttribute(kSource);
    target_ = node->readAttribute(kTarget);
    return true;
  }

  void setSourceColumn(std::string const& columnName) override { source_ = columnName; }
  std::string getSourceColumn() const override { return source_; }
  void setTargetColumn(std::string const& columnName) override { target_ = columnName; }
  std::string getTargetColumn() const override { return target_; }

 private:
  static constexpr char const* kSource = "source";
  static constexpr char const* kTarget = "target";

  std::string source_;
  std::string target_;
};
