#include "zyn/datasources/filter_data_source.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "mox/core/xml.h"
#include "zyn/datasources/data_source_look_up.h"
#include "zyn/datasources/depth_guard.h"
#include "zyn/datasources/filter_data_source_execution.h"
#include "zyn/datasources/filter_data_source_xml.h"
#include "zyn/datasources/related_data_sources.h"

bool FilterDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  filter_data_source_xml::read(*this, *node);
  return true;
}

bool FilterDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  filter_data_source_xml::write(*this, *node);
  return true;
}

/// Columns that stand in the place of the source's are known without the source.
std::vector<moxDataSourceColumnType> FilterDataSource::getColumns() const {
  if (tipoRetornoSelect_ != kAdiciona) {
    return columns_.namesAndTypes();
  }
  DepthGuard const guard(getName());
  auto const source = findDataSource(dataSourceName_);
  return withOwnColumns(source ? source->getColumns() : std::vector<moxDataSourceColumnType>());
}

std::vector<moxDataSourceColumnType> FilterDataSource::getRelatedColumns(
    std::vector<moxNamedDataSource> const& sources) const {
  if (tipoRetornoSelect_ != kAdiciona) {
    return columns_.namesAndTypes();
  }
  return withOwnColumns(relatedColumnsOf(sources, dataSourceName_));
}

std::vector<moxDataSourceColumnType> FilterDataSource::withOwnColumns(
    std::vector<moxDataSourceColumnType> columns) const {
  auto own = columns_.namesAndTypes();
  columns.insert(columns.end(), std::make_move_iterator(own.begin()),
                 std::make_move_iterator(own.end()));
  return columns;
}

std::vector<std::shared_ptr<moxDataSource const>> FilterDataSource::getRelatedDataSources(
    bool deep) const {
  return relatedDataSources(getName(), {dataSourceName_}, deep);
}

std::shared_ptr<moxDataSourceExecution> FilterDataSource::createExecution() const {
  return std::make_shared<FilterDataSourceExecution>(shared_from_this());
}

/// An empty condition in the list would be met by runs, which take what is there.
void FilterDataSource::setFiltersSpec(std::vector<Spec> const& specs) {
  if (std::find(specs.begin(), specs.end(), nullptr) != specs.end()) {
    throw std::invalid_argument("a condition of a filter source must not be empty");
  }
  filtersSpec_ = specs;
}
