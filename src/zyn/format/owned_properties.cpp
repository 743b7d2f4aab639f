#include "zyn/format/owned_properties.h"

#include "mox/core/application.h"
#include "mox/zyn/format/properties_object.h"
#include "mox/zyn/frame/plugin_entry.h"

OwnedProperties::OwnedProperties(moxPropertiesObject& owner)
    : collection_(moxApp->get<moxPropertiesCollection>("moxPropertiesCollection")) {
  collection_->setObject(&owner);
}

OwnedProperties::~OwnedProperties() {
  collection_->setObject(nullptr);
  if (auto* const detachable = dynamic_cast<moxDetachable*>(collection_.get())) {
    detachable->detach();
  }
}
