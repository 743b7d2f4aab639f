#include "zyn/datasources/sql_data_source.h"

#include <algorithm>

#include "mox/core/xml.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/search/search.h"
#include "zyn/datasources/sql_data_source_execution.h"
#include "zyn/datasources/sql_data_source_xml.h"

namespace {

void appendPiece(std::string& statement, char const* keyWord, std::string_view piece) {
  if (!piece.empty()) {
    statement.append(keyWord).append(piece);
  }
}

}  // namespace

bool SQLDataSource::load(std::shared_ptr<moxXMLNode> node) {
  return node && loadElement(XmlElement(std::move(node)));
}

bool SQLDataSource::loadElement(XmlElement const& element) {
  sql_data_source_xml::read(*this, element);
  return true;
}

bool SQLDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  sql_data_source_xml::write(*this, *node);
  return true;
}

std::shared_ptr<moxZYNItem> SQLDataSource::getZynItemRelated() {
  return search_;
}

std::shared_ptr<moxDataSourceExecution> SQLDataSource::createExecution() const {
  return std::make_shared<SQLDataSourceExecution>(shared_from_this());
}

std::string SQLDataSource::getSQL() const {
  if (sqlTipo_ != kComposed) {
    return textOf(kSql);
  }
  std::string statement = "select " + getSQLColumnsPlain() + " from " + textOf(kFrom);
  appendPiece(statement, " ", texts_[kJoin]);
  appendPiece(statement, " where ", texts_[kWhere]);
  appendPiece(statement, " group by ", texts_[kGroup]);
  return statement;
}

void SQLDataSource::addFilter(Filter filter) {
  if (filter && std::find(filters_.begin(), filters_.end(), filter) == filters_.end()) {
    filters_.push_back(std::move(filter));
  }
}

void SQLDataSource::addOrderColumn(Column column, bool descending) {
  bool const isThere = std::any_of(orderColumns_.begin(), orderColumns_.end(),
                                   [&](OrderColumn const& order) { return order.first == column; });
  if (column && !isThere) {
    orderColumns_.emplace_back(std::move(column), descending);
  }
}

void SQLDataSource::removeOrderColumn(Column column) {
  std::erase_if(orderColumns_, [&](OrderColumn const& order) { return order.first == column; });
}

void SQLDataSource::setUnidadeColumn(Column column, bool allowNull) {
  unidadeColumn_ = std::move(column);
  allowNull_ = allowNull;
}
