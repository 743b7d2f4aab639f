#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zyn/datasources/sorter_data_source.h"

/// The choice of a sorter's order. All that it knows is the definition's.
class SorterDataSource::UserDefinedSortOption final : public moxSorterDataSourceOption {
 public:
  /// `definition`, which is not null, owns the option.
  explicit UserDefinedSortOption(SorterDataSource const* definition) : definition_(definition) {}

  std::string name() const override { return "moxSorterDataSourceOption"; }

  /// Nothing to read or write: always false.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  std::string getName() const override { return definition_->optionHeading(); }
  std::string getVisualRepresentation() const override {
    return "moxReportSorterDataSourceUserOption";
  }
  std::shared_ptr<moxDataSourceOptionData> createOptionData() const override;
  std::pair<std::string, bool> getDefaultOrder() const override;
  std::vector<std::pair<std::string, std::string>> getAvailableColumns() const override;

 private:
  SorterDataSource const* const definition_;
};

/// The order that a user chose.
class SorterDataSource::UserDefinedSortOptionData final : public moxSorterDataSourceOptionData {
 public:
  std::string name() const override { return "moxSorterDataSourceOptionData"; }

  void setOrder(std::string const& columnName, bool descending) override {
    orderColumn_ = columnName;
    descending_ = descending;
  }
  std::pair<std::string, bool> getOrder() const override { return {orderColumn_, descending_}; }

 private:
  std::string orderColumn_;
  bool descending_ = false;
};
