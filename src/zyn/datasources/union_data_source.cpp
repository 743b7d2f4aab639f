#include "zyn/datasources/union_data_source.h"

#include <utility>

#include "mox/core/xml.h"
#include "zyn/datasources/listed_columns.h"
#include "zyn/datasources/union_data_source_execution.h"
#include "zyn/items/xml_attributes.h"

namespace {

using UnionData = moxUnionDataSource::UnionData;

constexpr char const* kName = "name";
constexpr char const* kTempTable = "generateTempTable";
constexpr char const* kSources = "sources";
constexpr char const* kSource = "source";

UnionData readSource(moxXMLNode const& element) {
  UnionData source{element.readAttribute(kName), {}};
  for (int i = 0; auto const column = element.childByIndex(i); ++i) {
    source.columns.emplace_back(column->readAttribute(kName), listedColumnType(*column));
  }
  return source;
}

void writeSource(UnionData const& source, moxXMLNode& element) {
  element.writeAttribute(kName, source.sourceName);
  for (auto const& [name, type] : source.columns) {
    element.addChild(listedColumnElement(type))->writeAttribute(kName, name);
  }
}

std::vector<UnionData> readSources(moxXMLNode const& node) {
  std::vector<UnionData> sources;
  auto const list = node.childByIndex(0, kSources);
  for (int i = 0; auto const element = list ? list->childByIndex(i, kSource) : nullptr; ++i) {
    sources.push_back(readSource(*element));
  }
  return sources;
}

}  // namespace

bool UnionDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  setSources(readSources(*node), xml_attributes::readBool(*node, kTempTable));
  setName(node->readAttribute(kName));
  return true;
}

bool UnionDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  xml_attributes::writeBool(*node, kTempTable, gerarTabelaTemporaria_);
  auto const list = node->addChild(kSources);
  for (auto const& source : sources_) {
    writeSource(source, *list->addChild(kSource));
  }
  return true;
}

std::vector<moxDataSourceColumnType> UnionDataSource::getColumns() const {
  return sources_.empty() ? std::vector<moxDataSourceColumnType>() : sources_.front().columns;
}

std::shared_ptr<moxDataSourceExecution> UnionDataSource::createExecution() const {
  return std::make_shared<UnionDataSourceExecution>(shared_from_this());
}

std::vector<std::string> UnionDataSource::inputNames() const {
  std::vector<std::string> names;
  for (auto const& source : sources_) {
    names.push_back(source.sourceName);
  }
  return names;
}
