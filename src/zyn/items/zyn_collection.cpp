#include "zyn/items/zyn_collection.h"

#include <typeinfo>

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
  withElementOf(*node, [this](XmlElement const& element) { read(element); });
  return true;
}

/// Whether items of that class tell what they passed over.
bool zynCollection::appendReport(moxZYNItem const& item) {
  auto const* const report = dynamic_cast<moxZYNLoadReport const*>(&item);
  if (report != nullptr) {
    append(skipped_, report->skippedElements());
  }
  return report != nullptr;
}

void zynCollection::read(XmlElement const& element) {
  parentLibraryName_ = element.attribute(kLibrary);
  std::type_info const* silent = nullptr;  // class of the last one that reports nothing
  append(skipped_,
         polymorphic_list::load<moxZYNItem>(element, [&](std::shared_ptr<moxZYNItem> item) {
           auto const* const object = item.get();
           if (object != nullptr && (silent == nullptr || typeid(*object) != *silent)) {
             silent = appendReport(*object) ? silent : &typeid(*object);
           }
           items_.append(std::move(item));
         }));
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
