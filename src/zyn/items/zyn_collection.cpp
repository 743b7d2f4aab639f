#include "zyn/items/zyn_collection.h"

#include "mox/core/xml.h"
#include "zyn/items/polymorphic_list.h"

namespace {

constexpr char const* kLibrary = "parentLibraryName";

using SkippedElements = std::vector<moxZYNSkippedElement>;

void append(SkippedElements& list, SkippedElements const& more) {
  list.insert(list.end(), more.begin(), more.end());
}

}  // namespace

bool zynCollection::serialize(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->setElementName(name());
  node->writeAttribute(kLibrary, parentLibraryName_);
  polymorphic_list::save(items_.all(), *node);
  return true;
}

bool zynCollection::unserialize(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  parentLibraryName_ = node->readAttribute(kLibrary);
  append(skipped_,
         polymorphic_list::load<moxZYNItem>(*node, [this](std::shared_ptr<moxZYNItem> item) {
           if (auto const* const report = dynamic_cast<moxZYNLoadReport const*>(item.get())) {
             append(skipped_, report->skippedElements());
           }
           items_.append(std::move(item));
         }));
  return true;
}

std::shared_ptr<moxZYNItem> zynCollection::findItem(std::string const& description) const {
  for (auto const& item : items_.all()) {
    if (item && item->description() == description) {
      return item;
    }
  }
  return {};
}

SkippedElements zynCollection::skippedElements() const {
  SkippedElements list = skipped_;
  for (auto& element : list) {
    element.library = parentLibraryName_;
    element.file = file_;
  }
  return list;
}
