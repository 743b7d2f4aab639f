#include "zyn/datasources/join_data_source.h"

#include <utility>

#include "mox/core/xml.h"
#include "zyn/datasources/join_data_source_execution.h"
#include "zyn/datasources/listed_columns.h"

namespace {

using JoinData = moxJoinDataSource::JoinData;
using ColumnData = JoinData::ColumnData;
using JData = JoinData::JData;

constexpr char const* kName = "name";
constexpr char const* kSources = "sources";
constexpr char const* kSource = "source";
constexpr char const* kColumns = "columns";
constexpr char const* kJoins = "joins";
constexpr char const* kJoin = "join";
constexpr char const* kColumnName = "columnName";
constexpr char const* kColumnAlias = "acolumnAlias";  // so, as files have it
constexpr char const* kColumnNameOrigin = "columnNameOrigin";
constexpr char const* kSourceNameRelac = "sourceNameRelac";
constexpr char const* kColumnNameRelac = "columnNameRelac";
constexpr char const* kColumnNameJoin = "columnNameJoin";

/// What `read` makes of each child of a list, which may be missing.
template <class T>
std::vector<T> readList(moxXMLNode const& node, char const* list, std::string_view element,
                        T (*read)(moxXMLNode const&)) {
  std::vector<T> made;
  auto const parent = node.childByIndex(0, list);
  for (int i = 0; auto const child = parent ? parent->childByIndex(i, element) : nullptr; ++i) {
    made.push_back(read(*child));
  }
  return made;
}

ColumnData readColumn(moxXMLNode const& node) {
  return {node.readAttribute(kColumnName), node.readAttribute(kColumnAlias),
          listedColumnType(node)};
}

void writeColumn(ColumnData const& column, moxXMLNode& list) {
  auto const node = list.addChild(listedColumnElement(column.type));
  node->writeAttribute(kColumnName, column.columnName);
  node->writeAttribute(kColumnAlias, column.columnAlias);
}

JData readJoin(moxXMLNode const& node) {
  return {node.readAttribute(kColumnNameOrigin), node.readAttribute(kSourceNameRelac),
          node.readAttribute(kColumnNameRelac), node.readAttribute(kColumnNameJoin)};
}

void writeJoin(JData const& join, moxXMLNode& list) {
  auto const node = list.addChild(kJoin);
  node->writeAttribute(kColumnNameOrigin, join.columnNameOrigin);
  node->writeAttribute(kSourceNameRelac, join.sourceNameRelac);
  node->writeAttribute(kColumnNameRelac, join.columnNameRelac);
  node->writeAttribute(kColumnNameJoin, join.columnNameJoin);
}

JoinData readSource(moxXMLNode const& node) {
  return {node.readAttribute(kName), readList(node, kColumns, {}, readColumn),
          readList(node, kJoins, {}, readJoin)};
}

void writeSource(JoinData const& source, moxXMLNode& list) {
  auto const node = list.addChild(kSource);
  node->writeAttribute(kName, source.sourceName);
  auto const columns = node->addChild(kColumns);
  for (auto const& column : source.columns) {
    writeColumn(column, *columns);
  }
  auto const joins = node->addChild(kJoins);
  for (auto const& join : source.joins) {
    writeJoin(join, *joins);
  }
}

}  // namespace

bool JoinDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  sources_ = readList(*node, kSources, kSource, readSource);
  setName(node->readAttribute(kName));
  return true;
}

bool JoinDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  auto const list = node->addChild(kSources);
  for (auto const& source : sources_) {
    writeSource(source, *list);
  }
  return true;
}

std::vector<moxDataSourceColumnType> JoinDataSource::getColumns() const {
  std::vector<moxDataSourceColumnType> columns;
  for (auto const& source : sources_) {
    for (auto const& column : source.columns) {
      columns.emplace_back(column.columnAlias, column.type);
    }
  }
  return columns;
}

std::shared_ptr<moxDataSourceExecution> JoinDataSource::createExecution() const {
  return std::make_shared<JoinDataSourceExecution>(shared_from_this());
}

std::vector<std::string> JoinDataSource::inputNames() const {
  std::vector<std::string> names;
  names.reserve(sources_.size());
  for (auto const& source : sources_) {
    names.push_back(source.sourceName);
  }
  return names;
}
