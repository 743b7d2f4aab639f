#pragma once

#include <memory>
#include <string>

#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/matrix/data_matrix_column.h"

namespace mox::cli {

/// A formatter of one column's cells, found by an exporter under `name`. It has no settings, and
/// belongs to one thread.
class ColumnFormatter : public moxGenericFormatter {
 public:
  explicit ColumnFormatter(std::string name) : name_(std::move(name)) {}

  std::string name() const override { return "zynColumnFormatter"; }
  bool save(std::shared_ptr<moxXMLNode> /*node*/) const override { return false; }
  bool load(std::shared_ptr<moxXMLNode> /*node*/) override { return false; }
  void setDescription(std::string const& description) override { name_ = description; }
  std::string getDescription() const override { return name_; }
  void setPrefix(std::string const& /*prefix*/) override {}
  void setSuffix(std::string const& /*suffix*/) override {}
  std::string getPrefix() const override { return {}; }
  std::string getSuffix() const override { return {}; }

  /// The column whose plain values are given; null where another formatter is asked.
  virtual moxDataMatrixColumn const* plainColumn() const { return nullptr; }

 private:
  std::string name_;
};

/// A formatter that gives values as programs read them: numbers as formatDouble, moments as
/// YYYY-MM-DD, with the time when any row of the column has one, blobs as base64. For cursors over
/// `column` alone, which must outlive it.
std::shared_ptr<ColumnFormatter> makePlainFormatter(std::string const& name,
                                                    moxDataMatrixColumn const& column);

/// One that asks another formatter, which is not empty.
std::shared_ptr<ColumnFormatter> makeBorrowedFormatter(
    std::string name, std::shared_ptr<moxGenericFormatter const> formatter);

}  // namespace mox::cli
