#include "zyn/datasources/group_data_source.h"

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/datasources/depth_guard.h"
#include "zyn/datasources/group_data_source_execution.h"
#include "zyn/datasources/group_wiring.h"
#include "zyn/items/definition_error.h"
#include "zyn/items/polymorphic_list.h"

namespace {

constexpr char const* kName = "name";
constexpr char const* kOutputSource = "outputSource";
constexpr char const* kFilterSource = "filterSource";
constexpr char const* kMembers = "DataSources";

using Member = std::shared_ptr<moxDadoDataSource>;

Member newMember(moxXMLNode const& element) {
  auto member = moxApp->get<moxDadoDataSource>(element.elementName());
  if (!member) {
    throw definitionError("Membro de grupo inválido: " + element.elementName(), element,
                          "the class of this name is no member of a group");
  }
  return member;
}

/// Empty when the member's source refuses its element. A class that nobody has registered passes as
/// it is: without one of its members the whole group gives something else.
Member readMember(std::shared_ptr<moxXMLNode> const& element) {
  try {
    auto member = newMember(*element);
    return member->load(element) ? member : nullptr;
  } catch (moxPluginNotFound const&) {
    throw;
  } catch (moxError const& error) {
    throw itemFailure(error, *element);
  }
}

}  // namespace

bool GroupDataSource::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  setName(node->readAttribute(kName));
  outputSource_ = node->readAttribute(kOutputSource);
  filterSource_ = node->readAttribute(kFilterSource);
  auto const list = node->childByIndex(0, kMembers);
  for (int i = 0; auto const element = list ? list->childByIndex(i) : nullptr; ++i) {
    auto member = readMember(element);
    if (!member) {
      return false;
    }
    dataSources_.append(std::move(member));
  }
  return true;
}

bool GroupDataSource::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kName, getName());
  node->writeAttribute(kOutputSource, outputSource_);
  node->writeAttribute(kFilterSource, filterSource_);
  polymorphic_list::save(dataSources_.all(), *node->addChild(kMembers));
  return true;
}

std::vector<moxDataSourceColumnType> GroupDataSource::getColumns() const {
  DepthGuard const guard(getName());
  for (auto const& member : dataSources().get()) {
    if (member && member->getName() == outputSource_) {
      auto const source = member->getDataSource();
      return source ? source->getColumns() : std::vector<moxDataSourceColumnType>();
    }
  }
  return {};
}

std::vector<std::shared_ptr<moxFilterSpecification const>> GroupDataSource::getFilters() const {
  DepthGuard const guard(getName());
  GroupWiring wiring(getName());
  wiring.addMembersOf(*this);
  auto const execution = wiring.executionOf(filterSource_);
  return execution ? execution->getFilters()
                   : std::vector<std::shared_ptr<moxFilterSpecification const>>();
}

std::shared_ptr<moxDataSourceExecution> GroupDataSource::createExecution() const {
  return std::make_shared<GroupDataSourceExecution>(shared_from_this());
}
