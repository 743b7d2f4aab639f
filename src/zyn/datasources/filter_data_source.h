#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/filter_data_source.h"
#include "zyn/datasources/column_list.h"
#include "zyn/datasources/named_data_source.h"

/// The definition of a change to another source's statement. The source is looked up by name on
/// every need, and never kept: sessions share the definition, and each may know another source by
/// the name. Look-ups along a ring of names throw as DepthGuard does.
class FilterDataSource final : public NamedDataSource<moxFilterDataSource>,
                               public std::enable_shared_from_this<FilterDataSource> {
 public:
  std::string name() const override { return "moxFilterDataSource"; }

  /// Adds to what is there, and so is meant for a new object. Throws what its columns throw, and is
  /// then half read.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  std::vector<moxDataSourceColumnType> getColumns() const override;
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const& sources) const override;
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool deep) const override;
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  void setDataSourceName(std::string const& dataSourceName) override {
    dataSourceName_ = dataSourceName;
  }
  std::string getDataSourceName() const override { return dataSourceName_; }
  void reset() override { dataSourceName_.clear(); }
  std::vector<Spec> getFiltersSpec() override { return filtersSpec_; }
  void setFiltersSpec(std::vector<Spec> const& specs) override;
  std::vector<ConstSpec> getFiltersSpec() const override {
    return {filtersSpec_.begin(), filtersSpec_.end()};
  }
  void setSQLJoin(std::string const& join) override { sqlJoin_ = join; }
  std::string getSQLJoin() const override { return sqlJoin_; }
  void setSQLWhere(std::string const& where) override { sqlWhere_ = where; }
  std::string getSQLWhere() const override { return sqlWhere_; }
  void setSQLGroup(std::string const& group) override { sqlGroup_ = group; }
  std::string getSQLGroup() const override { return sqlGroup_; }
  void setSQLOrder(std::string const& order) override { sqlOrder_ = order; }
  std::string getSQLOrder() const override { return sqlOrder_; }
  std::vector<Column> columns() override { return columns_.all(); }
  std::vector<ConstColumn> columns() const override { return columns_.constants(); }
  void removeColumn(Column column) override { columns_.remove(column); }
  Column findColumn(std::string const& table, std::string const& column) override {
    return columns_.find(table, column);
  }
  ConstColumn findColumn(std::string const& table, std::string const& column) const override {
    return columns_.find(table, column);
  }
  Column createColumn(FieldInfo const* info) override { return columns_.create(info); }
  void setTipoRetornoSelect(RetornoColunasSelect tipo) override { tipoRetornoSelect_ = tipo; }
  RetornoColunasSelect getTipoRetornoSelect() const override { return tipoRetornoSelect_; }
  std::string getSelectPlain() const override { return columns_.selectList(); }

  // For reading and writing the definition's element.

  /// The columns and conditions without a copy.
  ColumnList& columnList() { return columns_; }
  ColumnList const& columnList() const { return columns_; }
  std::vector<Spec> const& specList() const { return filtersSpec_; }
  void addSpec(Spec spec) { filtersSpec_.push_back(std::move(spec)); }

 private:
  std::vector<moxDataSourceColumnType> withOwnColumns(
      std::vector<moxDataSourceColumnType> columns) const;

  std::string dataSourceName_;
  std::string sqlJoin_;
  std::string sqlWhere_;
  std::string sqlGroup_;
  std::string sqlOrder_;
  std::vector<Spec> filtersSpec_;  // none is empty
  ColumnList columns_;
  RetornoColunasSelect tipoRetornoSelect_ = kAdiciona;
};
