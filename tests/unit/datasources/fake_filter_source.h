#pragma once

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/data_source_option.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "zyn/datasources/sql_data_source_column.h"

namespace mox_test {

/// A fixed condition that hands out the filter it is given.
class FakeFilterSpec final : public virtual moxFilterDataSourceSpec {
 public:
  FakeFilterSpec(Tipos kind, moxSQLDataSourceColumn::SQLColum origin,
                 std::shared_ptr<moxDataMatrixSQLFilter> filter)
      : kind_(kind), origin_(std::move(origin)), filter_(std::move(filter)) {}

  std::string name() const override { return "fakeFilterSpec"; }
  void setSQL(std::string const&) override {}
  moxSQLDataSourceColumn::SQLColum getColumnOrigin() const override { return origin_; }
  void setColumnOrigin(moxSQLDataSourceColumn::SQLColum const& column) override {
    origin_ = column;
  }
  void setIds(std::set<int> const&) override {}
  std::set<int> getIds() override { return {}; }
  Tipos getTipo() const override { return kind_; }
  std::string getSQL() override { return {}; }
  void setPluginFilter(std::string const&) override {}
  std::string getPluginFilter() const override { return {}; }
  std::shared_ptr<moxDataMatrixSQLFilter> getDataMatrixFilter() const override { return filter_; }
  void setTipo(Tipos kind) override { kind_ = kind; }

 private:
  Tipos kind_;
  moxSQLDataSourceColumn::SQLColum origin_;
  std::shared_ptr<moxDataMatrixSQLFilter> filter_;
};

/// A filter source whose texts, columns and conditions are at hand.
class FakeFilterSource final : public virtual moxFilterDataSource {
 public:
  std::string sourceName = "filtro";
  std::string join;
  std::string where;
  std::string group;
  std::string order;
  RetornoColunasSelect kind = kAdiciona;
  std::vector<Column> ownColumns;
  std::vector<Spec> specs;

  /// A column with that expression, whose marks stand for `origins`.
  void addColumn(std::string const& expression, std::string const& alias,
                 std::vector<moxSQLDataSourceColumn::SQLColum> const& origins = {}) {
    auto const column = std::make_shared<SQLDataSourceColumn>();
    column->setSQLColumn({expression, alias});
    column->setColumnOrigin(origins);
    ownColumns.push_back(column);
  }

  std::string name() const override { return "fakeFilterSource"; }
  bool load(std::shared_ptr<moxXMLNode>) override { return false; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return false; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const&) override {}
  std::string getParentLibName() const override { return {}; }

  std::vector<moxDataSourceColumnType> getColumns() const override { return {}; }
  void setName(std::string const& newName) override { sourceName = newName; }
  std::string getName() const override { return sourceName; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSourceOption const>> options() const override { return {}; }
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool) const override {
    return {};
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override { return {}; }

  void setDataSourceName(std::string const&) override {}
  std::string getDataSourceName() const override { return {}; }
  void reset() override {}
  std::vector<Spec> getFiltersSpec() override { return specs; }
  void setFiltersSpec(std::vector<Spec> const& newSpecs) override { specs = newSpecs; }
  std::vector<ConstSpec> getFiltersSpec() const override { return {specs.begin(), specs.end()}; }
  void setSQLJoin(std::string const& text) override { join = text; }
  std::string getSQLJoin() const override { return join; }
  void setSQLWhere(std::string const& text) override { where = text; }
  std::string getSQLWhere() const override { return where; }
  void setSQLGroup(std::string const& text) override { group = text; }
  std::string getSQLGroup() const override { return group; }
  void setSQLOrder(std::string const& text) override { order = text; }
  std::string getSQLOrder() const override { return order; }
  std::vector<Column> columns() override { return ownColumns; }
  std::vector<ConstColumn> columns() const override {
    return {ownColumns.begin(), ownColumns.end()};
  }
  void removeColumn(Column column) override { std::erase(ownColumns, column); }
  Column findColumn(std::string const&, std::string const&) override { return {}; }
  ConstColumn findColumn(std::string const&, std::string const&) const override { return {}; }
  Column createColumn(FieldInfo const*) override { return {}; }
  void setTipoRetornoSelect(RetornoColunasSelect newKind) override { kind = newKind; }
  RetornoColunasSelect getTipoRetornoSelect() const override { return kind; }
  std::string getSelectPlain() const override { return {}; }
};

}  // namespace mox_test
