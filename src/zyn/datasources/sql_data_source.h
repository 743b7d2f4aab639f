#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/sql_data_source.h"
#include "zyn/datasources/column_list.h"
#include "zyn/datasources/named_data_source.h"

/// The definition of a query. Made by the registry: runs and its search take shared pointers to it.
class SQLDataSource final : public NamedDataSource<moxSQLDataSource>,
                            public LoadedFromElement,
                            public std::enable_shared_from_this<SQLDataSource> {
 public:
  using OrderColumn = std::pair<Column, bool>;

  std::string name() const override { return "moxSQLDataSource"; }

  /// Adds to what is there, and so is meant for a new object. Throws moxError for a reference to a
  /// column that there is not and for a composed statement without "from", and moxPluginNotFound
  /// for a filter, formatter or search of an unknown class; the object is then half read.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool loadElement(XmlElement const& element) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  std::shared_ptr<moxZYNItem> getZynItemRelated() override;

  std::vector<moxDataSourceColumnType> getColumns() const override {
    return columns_.namesAndTypes();
  }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {filters_.begin(), filters_.end()};
  }
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return getColumns();
  }
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool) const override {
    return {};
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  void setSQL(std::string const& sql) override { sql_ = sql; }
  std::string getSQL() const override;
  void addFilter(Filter filter) override;
  void removeFilter(Filter filter) override { std::erase(filters_, filter); }
  std::vector<Filter> getFilters() override { return filters_; }
  void addOrderColumn(Column column, bool descending) override;
  void removeOrderColumn(Column column) override;
  std::vector<OrderColumn> getOrderColumns() const override { return orderColumns_; }
  void setWhereAnd(std::string const& whereAnd) override { whereAnd_ = whereAnd; }
  std::string getWhereAnd() const override { return whereAnd_; }
  Column createColumn(FieldInfo const* info) override { return columns_.create(info); }
  void removeColumn(Column column) override { columns_.remove(column); }
  std::vector<Column> columns() override { return columns_.all(); }
  std::vector<ConstColumn> columns() const override { return columns_.constants(); }
  void moveColumn(Column column, int index) override { columns_.move(column, index); }
  Column findColumn(std::string const& table, std::string const& column) override {
    return columns_.find(table, column);
  }
  Column columnAt(unsigned int index) override { return columns_.at(index); }
  ConstColumn findColumn(std::string const& table, std::string const& column) const override {
    return columns_.find(table, column);
  }
  ConstColumn columnAt(unsigned int index) const override { return columns_.at(index); }
  void setHeaderName(std::string const& headerName) override { headerName_ = headerName; }
  std::string getHeaderName() const override { return headerName_; }
  Column getMainColumn() const override { return mainColumn_; }
  void setMainColumn(Column column) override { mainColumn_ = std::move(column); }
  Column getStatusColumn() const override { return statusColumn_; }
  void setStatusColumn(Column column) override { statusColumn_ = std::move(column); }
  std::pair<Column, bool> getUnidadeColumn() const override { return {unidadeColumn_, allowNull_}; }
  void setUnidadeColumn(Column column, bool allowNull) override;
  Column getDescricaoColumn() const override { return descricaoColumn_; }
  void setDescricaoColumn(Column column) override { descricaoColumn_ = std::move(column); }
  void normalizeColumnsVisibility() override { columns_.putVisibleFirst(); }
  std::vector<Relation> getRelations() const override { return relations_; }
  void setRelations(std::vector<Relation> const& relations) override { relations_ = relations; }
  std::shared_ptr<moxSearch> getSearch() override { return search_; }
  void setSearch(std::shared_ptr<moxSearch> search) override { search_ = std::move(search); }
  bool getModoCompatibilidade() const override { return modoCompatibilidade_; }
  void setPrefix(std::string const& prefix) override { prefix_ = prefix; }
  std::string getPrefix() const override { return prefix_; }
  std::vector<std::pair<std::string, std::string>> getSQLColumns() const override {
    return columns_.expressionsByIndex();
  }
  std::string getSQLFrom() const override { return sqlFrom_; }
  void setSQLFrom(std::string const& from) override { sqlFrom_ = from; }
  std::string getSQLJoin() const override { return sqlJoin_; }
  void setSQLJoin(std::string const& join) override { sqlJoin_ = join; }
  std::string getSQLWhere() const override { return sqlWhere_; }
  void setSQLWhere(std::string const& where) override { sqlWhere_ = where; }
  SQLType getSQLTipo() const override { return sqlTipo_; }
  void setSQLTipo(SQLType type) override { sqlTipo_ = type; }
  std::string getSQLGroup() const override { return sqlGroup_; }
  void setSQLGroup(std::string const& group) override { sqlGroup_ = group; }
  std::string getSQLColumnsPlain() const override { return columns_.selectList(); }
  void setSufix(std::string const& sufix) override { sufix_ = sufix; }
  std::string getSufix() const override { return sufix_; }

  // For reading and writing the definition's element.

  /// The columns without a copy.
  ColumnList& columnList() { return columns_; }
  ColumnList const& columnList() const { return columns_; }
  std::vector<Filter> const& filterList() const { return filters_; }

  /// The text of a plain statement, whatever the form.
  std::string const& plainSql() const { return sql_; }
  void setModoCompatibilidade() { modoCompatibilidade_ = true; }
  std::shared_ptr<moxSearch const> search() const { return search_; }

 private:
  std::string headerName_;
  std::string prefix_;
  std::string sql_;
  std::string sqlFrom_;
  std::string sqlJoin_;
  std::string sqlWhere_;
  std::string sqlGroup_;
  std::string sufix_;
  std::string whereAnd_;
  ColumnList columns_;
  std::vector<Filter> filters_;
  std::vector<OrderColumn> orderColumns_;
  Column mainColumn_;
  Column statusColumn_;
  Column unidadeColumn_;
  Column descricaoColumn_;
  std::vector<Relation> relations_;
  std::shared_ptr<moxSearch> search_;
  SQLType sqlTipo_ = kPlain;
  bool modoCompatibilidade_ = false;
  bool allowNull_ = false;
};
