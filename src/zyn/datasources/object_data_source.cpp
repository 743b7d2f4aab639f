#include "zyn/datasources/object_data_source.h"

#include "mox/core/xml.h"
#include "zyn/datasources/filter_elements.h"
#include "zyn/datasources/object_data_source_execution.h"
#include "zyn/items/polymorphic_list.h"

namespace {

constexpr char const* kName = "name";
constexpr char const* kStatement = "Sql";
constexpr char const* kBinds = "Binds";

}  // namespace

bool ObjectDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  setName(node->readAttribute(kName));
  auto const statement = node->childByIndex(0, kStatement);
  sql_ = statement ? statement->readText() : std::string();
  if (auto const binds = node->childByIndex(0, kBinds)) {
    filter_elements::readAll(*binds, [this](auto filter) { filters_.append(std::move(filter)); });
  }
  return true;
}

bool ObjectDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  node->addChild(kStatement)->writeText(sql_);
  polymorphic_list::save(filters_.all(), *node->addChild(kBinds));
  return true;
}

std::vector<std::shared_ptr<moxFilterSpecification const>> ObjectDataSource::getFilters() const {
  return filters().get();
}

std::shared_ptr<moxDataSourceExecution> ObjectDataSource::createExecution() const {
  return std::make_shared<ObjectDataSourceExecution>(shared_from_this());
}
