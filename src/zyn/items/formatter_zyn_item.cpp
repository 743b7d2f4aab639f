#include "zyn/items/formatter_zyn_item.h"

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/frame/plugin_entry.h"

bool FormatterZynItem::load(std::shared_ptr<moxXMLNode> node) {
  auto const element = node ? node->childByIndex(0) : nullptr;
  if (!element) {
    return false;
  }
  auto formatter = moxApp->get<moxGenericFormatter>(element->elementName());
  if (!formatter) {
    return false;
  }
  formatter_ = std::move(formatter);
  return formatter_->load(element);
}

bool FormatterZynItem::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  if (formatter_) {
    formatter_->save(node->addChild(formatter_->name()));
  } else {
    node->clear();
  }
  return true;
}

std::string FormatterZynItem::description() const {
  return formatter_ ? formatter_->getDescription() : std::string();
}

void FormatterZynItem::setFormatterPlugin(std::string const& registeredName) {
  formatter_ = moxApp->get<moxGenericFormatter>(registeredName);
}

void FormatterZynItem::setDescription(std::string const& description) {
  if (formatter_) {
    formatter_->setDescription(description);
  }
}
