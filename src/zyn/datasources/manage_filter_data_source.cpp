#include "zyn/datasources/manage_filter_data_source.h"

#include <algorithm>
#include <array>
#include <utility>

#include "mox/core/xml.h"
#include "zyn/datasources/filter_elements.h"
#include "zyn/datasources/manage_filter_data_source_execution.h"
#include "zyn/datasources/related_data_sources.h"
#include "zyn/items/polymorphic_list.h"

namespace {

using ManageFilterData = moxManageFilterDataSource::ManageFilterData;
using Avaliable = ManageFilterData::AvaliableFiltersData;
using Related = ManageFilterData::RelatedFiltersData;

constexpr char const* kName = "name";
constexpr char const* kSources = "sources";
constexpr char const* kSource = "source";
constexpr char const* kAvaliable = "avaliable";
constexpr char const* kRelated = "related";
constexpr char const* kFilter = "filter";
constexpr char const* kFilterName = "filterName";
constexpr char const* kFilters = "Filters";

struct Attribute {
  char const* name;
  std::string Related::*field;
};

constexpr std::array<Attribute, 5> kRelatedAttributes = {{
    {"tableNameOrigin", &Related::tableNameOrigin},
    {"columnNameOrigin", &Related::columnNameOrigin},
    {"tableName", &Related::tableName},
    {"columnName", &Related::columnName},
    {"filterNameRelac", &Related::filterNameRelac},
}};

Avaliable readAvaliable(moxXMLNode const& element) {
  return {element.readAttribute(kFilterName)};
}

void write(moxXMLNode& element, Avaliable const& avaliable) {
  element.writeAttribute(kFilterName, avaliable.filterName);
}

/// In old files the filter's name stands for the column's.
Related readRelated(moxXMLNode const& element) {
  Related related;
  for (auto const& attribute : kRelatedAttributes) {
    related.*attribute.field = element.readAttribute(attribute.name);
  }
  if (related.columnName.empty()) {
    related.columnName = element.readAttribute(kFilterName);
  }
  return related;
}

void write(moxXMLNode& element, Related const& related) {
  for (auto const& attribute : kRelatedAttributes) {
    element.writeAttribute(attribute.name, related.*attribute.field);
  }
}

/// What stands in all lists of that name, in one.
template <class T>
std::vector<T> readLists(moxXMLNode const& source, char const* name,
                         T (*readEntry)(moxXMLNode const&)) {
  std::vector<T> entries;
  for (int i = 0; auto const list = source.childByIndex(i, name); ++i) {
    for (int j = 0; auto const element = list->childByIndex(j, kFilter); ++j) {
      entries.push_back(readEntry(*element));
    }
  }
  return entries;
}

template <class T>
void writeList(moxXMLNode& source, char const* name, std::vector<T> const& entries) {
  if (entries.empty()) {
    return;
  }
  auto const list = source.addChild(name);
  for (auto const& entry : entries) {
    write(*list->addChild(kFilter), entry);
  }
}

std::vector<ManageFilterData> readSources(moxXMLNode const& node) {
  std::vector<ManageFilterData> sources;
  auto const list = node.childByIndex(0, kSources);
  for (int i = 0; auto const element = list ? list->childByIndex(i, kSource) : nullptr; ++i) {
    sources.push_back({element->readAttribute(kName),
                       readLists(*element, kAvaliable, readAvaliable),
                       readLists(*element, kRelated, readRelated)});
  }
  return sources;
}

void writeSources(std::vector<ManageFilterData> const& sources, moxXMLNode& node) {
  auto const list = node.addChild(kSources);
  for (auto const& source : sources) {
    auto const element = list->addChild(kSource);
    element->writeAttribute(kName, source.name);
    writeList(*element, kAvaliable, source.avaliable);
    writeList(*element, kRelated, source.related);
  }
}

}  // namespace

bool ManageFilterDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  setName(node->readAttribute(kName));
  auto read = readSources(*node);
  sources_.insert(sources_.end(), std::make_move_iterator(read.begin()),
                  std::make_move_iterator(read.end()));
  if (auto const list = node->childByIndex(0, kFilters)) {
    filter_elements::readAll(*list, [this](Filter const& filter) { addFilter(filter); });
  }
  return true;
}

bool ManageFilterDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  writeSources(sources_, *node);
  polymorphic_list::save(filters_, *node->addChild(kFilters));
  return true;
}

std::vector<std::shared_ptr<moxDataSource const>> ManageFilterDataSource::getRelatedDataSources(
    bool deep) const {
  std::vector<std::string> names;
  names.reserve(sources_.size());
  for (auto const& record : sources_) {
    names.push_back(record.name);
  }
  return relatedDataSources(getName(), names, deep);
}

std::shared_ptr<moxDataSourceExecution> ManageFilterDataSource::createExecution() const {
  return std::make_shared<ManageFilterDataSourceExecution>(shared_from_this());
}

void ManageFilterDataSource::addFilter(Filter filter) {
  if (filter && std::find(filters_.begin(), filters_.end(), filter) == filters_.end()) {
    filters_.push_back(std::move(filter));
  }
}
