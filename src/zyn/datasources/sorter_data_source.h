#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/sorter_data_source.h"
#include "zyn/datasources/derived_data_source.h"

/// The definition of an order. Runs in any number of threads read it, and nobody changes it then.
class SorterDataSource final : public DerivedDataSource<moxSorterDataSource>,
                               public std::enable_shared_from_this<SorterDataSource> {
 public:
  class UserDefinedSortOption;
  class UserDefinedSortOptionData;

  /// True for a column of exactly that name.
  class OrderFindCriterion {
   public:
    explicit OrderFindCriterion(std::string columnName) : columnName_(std::move(columnName)) {}
    bool operator()(ColumnInfo const& column) const { return column.name == columnName_; }

   private:
    std::string columnName_;
  };

  SorterDataSource();
  SorterDataSource(SorterDataSource const&) = delete;
  SorterDataSource& operator=(SorterDataSource const&) = delete;

  std::string name() const override { return "moxSorterDataSource"; }

  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  /// None: the columns are those of the source, whatever they are.
  std::vector<moxDataSourceColumnType> getColumns() const override { return {}; }

  /// The user's choice of the order, when it is his, which keeps this definition alive. Throws
  /// std::bad_weak_ptr for a definition that no shared pointer holds.
  std::vector<std::shared_ptr<moxDataSourceOption const>> options() const override;

  /// Those of the source.
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const& sources) const override {
    return relatedColumnsOf(sources, source_);
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  bool setOrderColumn(std::string const& name, std::string const& description,
                      ColumnInfo::SortMode mode) override;
  void removeOrderColumn(std::string const& name) override;
  std::vector<ColumnInfo> getOrderColumns() const override { return columns_; }
  std::string getDataSourceName() const override { return source_; }
  void setDataSourceName(std::string const& dataSourceName) override { source_ = dataSourceName; }
  void clearOrderColumns() override { columns_.clear(); }
  void setUserDefined(bool userDefined) override;
  bool getUserDefined() const override { return userOption_ != nullptr; }
  void setDescription(std::string const& description) override { description_ = description; }

  /// The columns without a copy.
  std::vector<ColumnInfo> const& orderColumns() const { return columns_; }

  /// The order without the user's answer: the first column with a direction, or null.
  ColumnInfo const* defaultOrder() const;

  /// What setDescription was told.
  std::string const& optionHeading() const { return description_; }

 protected:
  std::vector<std::string> inputNames() const override { return {source_}; }

 private:
  std::string source_;
  std::string description_;
  bool replace_ = false;                               // part of the element, without an effect
  std::shared_ptr<UserDefinedSortOption> userOption_;  // empty: the order is the definition's
  std::vector<ColumnInfo> columns_;
};
