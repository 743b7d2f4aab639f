#include "zyn/format/owned_properties.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"

std::shared_ptr<moxPropertiesCollection> LazyProperties::newCollection() {
  return moxApp->get<moxPropertiesCollection>("moxPropertiesCollection");
}

LazyProperties::~LazyProperties() {
  if (!collection_) {
    return;
  }
  collection_->setObject(nullptr);
  if (auto* const detachable = dynamic_cast<moxDetachable*>(collection_.get())) {
    detachable->detach();
  }
}
