#include "zyn/items/zyn_collection.h"

#include "mox/core/xml.h"
#include "mox/core/xml_table.h"
#include "zyn/frame/cast_memory.h"
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
  CastMemory const casts;
  withElementOf(*node, [this](XmlElement const& element) {
    parentLibraryName_ = element.attribute(kLibrary);
    element.eachChild({}, [this](XmlElement const& child) { return readItem(child); });
  });
  return true;
}

bool zynCollection::readPieces(moxXMLPieces const& reader, moxReadBlob const& document) {
  CastMemory const casts;
  bool goesOn = true;
  return reader.readPieces(document, [&](moxXMLTable const& table, std::uint32_t number) {
    XmlElement const element(table, number);
    if (number == 0) {
      parentLibraryName_ = element.attribute(kLibrary);
    } else {
      goesOn = goesOn && readItem(element);
    }
  });
}

/// False when no further one is to be read.
bool zynCollection::readItem(XmlElement const& element) {
  return polymorphic_list::loadOne<moxZYNItem>(
      element, [this](std::shared_ptr<moxZYNItem> item) { enter(std::move(item)); }, skipped_);
}

/// Items that passed over something tell it.
void zynCollection::enter(std::shared_ptr<moxZYNItem> item) {
  if (auto const* const report = castOf<moxZYNLoadReport const>(item.get())) {
    append(skipped_, report->skippedElements());
  }
  items_.append(std::move(item));
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
