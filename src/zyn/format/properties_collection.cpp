#include "zyn/format/properties_collection.h"

#include <algorithm>

#include "mox/core/application.h"
#include "mox/core/type_service.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/properties_object.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/format/value_properties.h"

namespace {

bool isOf(moxProperty const& property, std::type_info const& type) {
  return moxApp->typeService().isDerivedFrom(typeid(property), type);
}

std::shared_ptr<moxXMLNode> nodeToSave(std::shared_ptr<moxXMLNode> const& node,
                                       std::string const& group) {
  return group.empty() || !node ? node : node->addChild(group);
}

std::shared_ptr<moxXMLNode> nodeToLoad(std::shared_ptr<moxXMLNode> const& node,
                                       std::string const& group) {
  return group.empty() || !node ? node : node->childByIndex(0, group);
}

}  // namespace

bool PropertiesCollection::save(std::shared_ptr<moxXMLNode> node) const {
  bool isSaved = true;
  for (auto const& [name, group] : groups_) {
    auto const target = nodeToSave(node, name);
    isSaved = isSaved && std::all_of(group.begin(), group.end(),
                                     [&](auto const& property) { return property->save(target); });
  }
  return isSaved;
}

bool PropertiesCollection::load(std::shared_ptr<moxXMLNode> node) {
  bool isLoaded = true;
  for (auto const& [name, group] : groups_) {
    auto const source = nodeToLoad(node, name);
    isLoaded = isLoaded && std::all_of(group.begin(), group.end(), [&](auto const& property) {
                 return property->load(source);
               });
  }
  return isLoaded;
}

void PropertiesCollection::propertyChanged() {
  if (owner_ != nullptr) {
    owner_->propertyChanged();
  }
}

std::shared_ptr<moxIntProperty> PropertiesCollection::addIntProperty(std::string const& name,
                                                                     std::string const& description,
                                                                     int* target) {
  auto property = std::make_shared<IntProperty>(name, description, target);
  addCustomProperty(property);
  return property;
}

std::shared_ptr<moxDoubleProperty> PropertiesCollection::addDoubleProperty(
    std::string const& name, std::string const& description, double* target) {
  auto property = std::make_shared<DoubleProperty>(name, description, target);
  addCustomProperty(property);
  return property;
}

std::shared_ptr<moxStringProperty> PropertiesCollection::addStringProperty(
    std::string const& name, std::string const& description, std::string* target) {
  auto property = std::make_shared<StringProperty>(name, description, target);
  addCustomProperty(property);
  return property;
}

std::shared_ptr<moxTextProperty> PropertiesCollection::addTextProperty(
    std::string const& name, std::string const& description, std::string* target) {
  auto property = std::make_shared<TextProperty>(name, description, target);
  addCustomProperty(property);
  return property;
}

std::shared_ptr<moxBooleanProperty> PropertiesCollection::addBooleanProperty(
    std::string const& name, std::string const& description, bool* target) {
  auto property = std::make_shared<BooleanProperty>(name, description, target);
  addCustomProperty(property);
  return property;
}

std::shared_ptr<moxProperty> PropertiesCollection::addCustomProperty(
    std::shared_ptr<moxProperty> property) {
  if (property) {
    property->setCollection(shared_from_this());
    currentGroup_->push_back(property);
    all_.push_back(property);
  }
  return property;
}

std::vector<std::shared_ptr<moxProperty const>> PropertiesCollection::findProperties(
    std::type_info const& type) const {
  std::vector<std::shared_ptr<moxProperty const>> found;
  std::copy_if(all_.begin(), all_.end(), std::back_inserter(found),
               [&](auto const& property) { return isOf(*property, type); });
  return found;
}

std::shared_ptr<moxProperty const> PropertiesCollection::findProperty(
    std::string const& name, std::type_info const& type) const {
  auto const found = std::find_if(all_.begin(), all_.end(), [&](auto const& property) {
    return property->propertyName() == name && isOf(*property, type);
  });
  return found != all_.end() ? *found : nullptr;
}

void PropertiesCollection::detach() {
  owner_ = nullptr;
  for (auto const& property : all_) {
    if (auto* const detachable = dynamic_cast<moxDetachable*>(property.get())) {
      detachable->detach();
    }
  }
}
