#include "zyn/search/search.h"

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "zyn/datasources/column_reference.h"
#include "zyn/datasources/data_source_look_up.h"
#include "zyn/search/search_xml.h"

namespace {

using SqlSource = std::shared_ptr<moxSQLDataSource const>;

moxDefaultErrorImpl<moxError> sourceError(moxSearch const& search, std::string message,
                                          std::string const& detail) {
  return moxDefaultErrorImpl<moxError>(std::move(message),
                                       {"search: \"" + search.description() + "\"", detail});
}

/// The group's member whose rows are the result, where that is a query; empty for any other.
SqlSource outputOf(moxGroupDataSource const& group) {
  auto const output = group.getOutputSource();
  for (auto const& member : group.dataSources().get()) {
    if (!member || member->getName() != output) {
      continue;
    }
    if (auto sql = std::dynamic_pointer_cast<moxSQLDataSource const>(member->getDataSource())) {
      return sql;
    }
  }
  return {};
}

}  // namespace

bool moxSE_Search::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  search_xml::read(*this, node);
  return true;
}

bool moxSE_Search::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  search_xml::write(*this, *node);
  return true;
}

void moxSE_Search::setInitialSize(unsigned int width, unsigned int height) {
  initialWidth_ = width;
  initialHeight_ = height;
}

// The column's name in its table goes before its name in the result, though it is the result's
// columns that are searched: a column that is called otherwise in its table is found by neither.
std::shared_ptr<moxSQLDataSourceColumn const> moxSE_Search::getInitialOrderColumn() const {
  if (initialOrderColumn_) {
    return initialOrderColumn_;
  }
  auto const sql = getSqlDataSource();
  auto const& names = initialOrderNames_;
  auto const& column = names.columnNameOrigin.empty() ? names.columnName : names.columnNameOrigin;
  return sql && !column.empty() ? sql->findColumn(names.tableName, column) : nullptr;
}

void moxSE_Search::setInitialOrderColumn(std::shared_ptr<moxSQLDataSourceColumn const> column,
                                         bool ascending) {
  setInitialOrderNames(column ? column_reference::namesOf(*column) : ColumnNames{}, ascending);
  initialOrderColumn_ = std::move(column);
}

void moxSE_Search::setInitialOrderNames(ColumnNames names, bool ascending) {
  initialOrderNames_ = std::move(names);
  initialOrderAscending_ = ascending;
  initialOrderColumn_.reset();
}

std::shared_ptr<moxDataSource const> moxSE_Search::getDataSource() const {
  if (!externalSource_) {
    return dataSource_;
  }
  auto given = givenSource_.lock();
  return given ? given : namedSource();
}

std::shared_ptr<moxDataSource const> moxSE_Search::namedSource() const {
  if (dataSourceExterno_.empty()) {
    throw sourceError(*this, "Fonte de dados externa não definida", "it names no data source");
  }
  auto source = findDataSource(dataSourceExterno_);
  if (!source) {
    throw sourceError(*this, "Fonte de dados externa inválida",
                      "no data source is called \"" + dataSourceExterno_ + "\"");
  }
  return source;
}

void moxSE_Search::setDataSource(std::shared_ptr<moxDataSource> dataSource) {
  externalSource_ = false;
  dataSource_ = std::move(dataSource);
}

void moxSE_Search::setDataSourceExterno(std::string const& name,
                                        std::shared_ptr<moxDataSource const> dataSource) {
  externalSource_ = true;
  dataSourceExterno_ = name;
  givenSource_ = dataSource;
}

SqlSource moxSE_Search::getSqlDataSource() const {
  auto const source = getDataSource();
  if (!source) {
    return {};
  }
  if (auto sql = std::dynamic_pointer_cast<moxSQLDataSource const>(source)) {
    return sql;
  }
  if (auto const* const group = dynamic_cast<moxGroupDataSource const*>(source.get())) {
    return outputOf(*group);
  }
  throw sourceError(*this, "Não localizado fonte de dados do tipo SQL.",
                    "its data source \"" + source->getName() + "\" is a " + source->name());
}
