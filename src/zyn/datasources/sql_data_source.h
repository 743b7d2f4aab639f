#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/sql_data_source.h"
#include "zyn/datasources/column_list.h"
#include "zyn/datasources/named_data_source.h"
#include "zyn/items/packed_texts.h"

/// The definition of a query. Made by the registry: runs and its search take shared pointers to it.
class SQLDataSource final : public NamedDataSource<moxSQLDataSource>,
                            public LoadedFromElement,
                            public std::enable_shared_from_this<SQLDataSource> {
 public:
  using OrderColumn = std::pair<Column, bool>;

  /// Places of the definition's texts, but for its name.
  enum Text : std::size_t {
    kHeaderName,
    kPrefix,
    kSufix,
    kSql,  // of a plain statement, whatever the form
    kFrom,
    kJoin,
    kWhere,
    kGroup,
    kWhereAnd,
    kTextCount,
  };
  using Texts = PackedTexts<kTextCount>;

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

  void setSQL(std::string const& sql) override { texts_.set(kSql, sql); }
  std::string getSQL() const override;
  void addFilter(Filter filter) override;
  void removeFilter(Filter filter) override { std::erase(filters_, filter); }
  std::vector<Filter> getFilters() override { return filters_; }
  void addOrderColumn(Column column, bool descending) override;
  void removeOrderColumn(Column column) override;
  std::vector<OrderColumn> getOrderColumns() const override { return orderColumns_; }
  void setWhereAnd(std::string const& whereAnd) override { texts_.set(kWhereAnd, whereAnd); }
  std::string getWhereAnd() const override { return textOf(kWhereAnd); }
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
  void setHeaderName(std::string const& headerName) override {
    texts_.set(kHeaderName, headerName);
  }
  std::string getHeaderName() const override { return textOf(kHeaderName); }
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
  void setPrefix(std::string const& prefix) override { texts_.set(kPrefix, prefix); }
  std::string getPrefix() const override { return textOf(kPrefix); }
  std::vector<std::pair<std::string, std::string>> getSQLColumns() const override {
    return columns_.expressionsByIndex();
  }
  std::string getSQLFrom() const override { return textOf(kFrom); }
  void setSQLFrom(std::string const& from) override { texts_.set(kFrom, from); }
  std::string getSQLJoin() const override { return textOf(kJoin); }
  void setSQLJoin(std::string const& join) override { texts_.set(kJoin, join); }
  std::string getSQLWhere() const override { return textOf(kWhere); }
  void setSQLWhere(std::string const& where) override { texts_.set(kWhere, where); }
  SQLType getSQLTipo() const override { return sqlTipo_; }
  void setSQLTipo(SQLType type) override { sqlTipo_ = type; }
  std::string getSQLGroup() const override { return textOf(kGroup); }
  void setSQLGroup(std::string const& group) override { texts_.set(kGroup, group); }
  std::string getSQLColumnsPlain() const override { return columns_.selectList(); }
  void setSufix(std::string const& sufix) override { texts_.set(kSufix, sufix); }
  std::string getSufix() const override { return textOf(kSufix); }

  // For reading and writing the definition's element.

  /// The columns without a copy.
  ColumnList& columnList() { return columns_; }
  ColumnList const& columnList() const { return columns_; }
  std::vector<Filter> const& filterList() const { return filters_; }

  Texts& texts() { return texts_; }
  Texts const& texts() const { return texts_; }
  void setModoCompatibilidade() { modoCompatibilidade_ = true; }
  std::shared_ptr<moxSearch const> search() const { return search_; }

 private:
  std::string textOf(Text text) const { return std::string(texts_[text]); }

  Texts texts_;
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
