#include "zyn/format/formatter_property.h"

#include <utility>

#include "mox/core/application.h"
#include "mox/core/type_service.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/items/formatter_zyn_item.h"
#include "mox/zyn/items/zyn_cache.h"
#include "zyn/frame/registered.h"

namespace {

constexpr char const* kReferenceElement = "moxZYNFormatter";
constexpr char const* kReferenceName = "description";

std::shared_ptr<moxGenericFormatter const> formatterOfItem(std::string const& description) {
  auto const cache = registeredOrNone<moxZYNCache>("moxZYNCache");
  auto const item = cache ? cache->getCollection(description) : nullptr;
  auto const formatterItem = std::dynamic_pointer_cast<moxFormatterZYNItem const>(item);
  return formatterItem ? formatterItem->getFormatter() : nullptr;
}

}  // namespace

FormatterProperty::FormatterProperty() : allowedType_(&typeid(moxGenericFormatter)) {}

void FormatterProperty::setup(std::string const& name, std::string const& description,
                              std::shared_ptr<moxGenericFormatter const>* target,
                              bool allowReplace) {
  setNames(name, description);
  target_ = target;
  allowReplace_ = allowReplace;
}

void FormatterProperty::detach() {
  std::lock_guard const lock(mutex_);
  target_ = nullptr;
}

bool FormatterProperty::getExterno() const {
  std::lock_guard const lock(mutex_);
  return external_;
}

std::shared_ptr<moxGenericFormatter const> FormatterProperty::formatter() const {
  std::lock_guard const lock(mutex_);
  if (target_ == nullptr) {
    return {};
  }
  if (external_ && !externalLoaded_) {
    externalLoaded_ = true;
    if (auto found = formatterOfItem(externalName_)) {
      *target_ = std::move(found);
    }
  }
  return *target_;
}

void FormatterProperty::store(Formatter formatter, bool external) const {
  std::lock_guard const lock(mutex_);
  external_ = external;
  if (target_ != nullptr) {
    *target_ = std::move(formatter);
  }
}

void FormatterProperty::setNewFormatter(std::shared_ptr<moxGenericFormatter const> formatter,
                                        bool external) const {
  if (!allowReplace_) {
    return;
  }
  if (formatter) {
    auto const& made = *formatter;
    if (!moxApp->typeService().isDerivedFrom(typeid(made), *allowedType_)) {
      return;
    }
  }
  store(std::move(formatter), external);
  tellOwner();
}

bool FormatterProperty::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  auto const saved = formatter();
  if (!saved) {
    return true;
  }
  auto const child = node->addChild(propertyName());
  if (getExterno()) {
    child->addChild(kReferenceElement)->writeAttribute(kReferenceName, saved->getDescription());
  } else {
    saved->save(child->addChild(saved->name()));
  }
  return true;
}

bool FormatterProperty::load(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  {
    std::lock_guard const lock(mutex_);
    if (target_ != nullptr) {
      target_->reset();
    }
  }
  auto const child = node->childByIndex(0, propertyName());
  if (!child) {
    return true;
  }
  auto const element = child->childByIndex(0);
  if (!element) {
    return false;
  }
  return element->elementName() == kReferenceElement ? loadReference(*element)
                                                     : loadEmbedded(element);
}

// False because the formatter itself is not there before somebody asks for it.
bool FormatterProperty::loadReference(moxXMLNode const& reference) const {
  std::lock_guard const lock(mutex_);
  external_ = true;
  externalName_ = reference.readAttribute(kReferenceName);
  return false;
}

bool FormatterProperty::loadEmbedded(std::shared_ptr<moxXMLNode> const& element) const {
  auto const loaded = registeredOrNone<moxGenericFormatter>(element->elementName());
  if (!loaded) {
    return false;
  }
  bool const isUsable = loaded->load(element);
  store(isUsable ? loaded : nullptr, false);
  if (isUsable) {
    tellOwner();
  }
  return isUsable;
}
