#include "zyn/datasources/aggregation_data_source.h"

#include <algorithm>
#include <cstddef>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "zyn/datasources/aggregation_data_source_execution.h"
#include "zyn/datasources/data_source_look_up.h"
#include "zyn/datasources/depth_guard.h"
#include "zyn/items/xml_attributes.h"

namespace {

constexpr char const* kAggregator = "moxDataMatrixAggregator";  // the class and its element
constexpr char const* kName = "name";
constexpr char const* kSourceName = "dataSource";
constexpr char const* kGenerateTempTable = "generateTempTable";
constexpr char const* kCountRows = "countColumn";

using Columns = std::vector<moxDataSourceColumnType>;

std::shared_ptr<moxDataMatrixAggregator> newAggregator() {
  return moxApp->get<moxDataMatrixAggregator>(kAggregator);
}

/// The first of that name, as matrices find their columns.
Columns::const_iterator findColumn(Columns const& columns, std::string const& name) {
  return std::find_if(columns.begin(), columns.end(),
                      [&](moxDataSourceColumnType const& column) { return column.first == name; });
}

/// Gives the keys, which stand ahead of the other columns, the kinds that the source tells.
void takeKindsOfKeys(moxDataSource const& source, std::size_t keys, Columns& columns) {
  auto const known = source.getColumns();
  for (std::size_t i = 0; i < std::min(keys, columns.size()); ++i) {
    auto const found = findColumn(known, columns[i].first);
    if (found != known.end()) {
      columns[i].second = found->second;
    }
  }
}

}  // namespace

AggregationDataSource::AggregationDataSource() : aggregator_(newAggregator()) {}

bool AggregationDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  setName(node->readAttribute(kName));
  dataSource_ = node->readAttribute(kSourceName);
  gerarTabelaTemporaria_ = xml_attributes::readBool(*node, kGenerateTempTable);
  countColumn_ = xml_attributes::readBool(*node, kCountRows);
  auto const aggregator = node->childByIndex(0, kAggregator);
  return aggregator && aggregator_->load(aggregator);
}

bool AggregationDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  node->writeAttribute(kSourceName, dataSource_);
  xml_attributes::writeBool(*node, kGenerateTempTable, gerarTabelaTemporaria_);
  xml_attributes::writeBool(*node, kCountRows, countColumn_);
  return aggregator_->save(node->addChild(kAggregator));
}

Columns AggregationDataSource::getColumns() const {
  DepthGuard const guard(getName());
  auto columns = aggregator_->getColumns();
  if (auto const source = findDataSource(dataSource_)) {
    takeKindsOfKeys(*source, aggregator_->getIndexes().size(), columns);
  }
  if (countColumn_) {
    columns.emplace_back(kCountColumn, moxDataMatrixTypes::Int);
  }
  return columns;
}

Columns AggregationDataSource::getRelatedColumns(
    std::vector<moxNamedDataSource> const& sources) const {
  auto const known = relatedColumnsOf(sources, dataSource_);
  if (known.empty()) {
    return {};
  }
  Columns related;
  for (auto const& index : aggregator_->getIndexes()) {
    auto const found = findColumn(known, index);
    if (found != known.end()) {
      related.push_back(*found);
    }
  }
  return related;
}

std::shared_ptr<moxDataSourceExecution> AggregationDataSource::createExecution() const {
  return std::make_shared<AggregationDataSourceExecution>(shared_from_this());
}

void AggregationDataSource::reset() {
  aggregator_ = newAggregator();
  dataSource_.clear();
}
