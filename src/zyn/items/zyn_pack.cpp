#include "zyn/items/zyn_pack.h"

#include <iterator>

#include "mox/core/xml.h"
#include "zyn/items/polymorphic_list.h"

namespace {

constexpr char const* kDescription = "name";

}  // namespace

bool zynPack::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  description_ = node->readAttribute(kDescription);
  auto skipped = polymorphic_list::load<moxZYNPackItem>(
      *node, [this](std::shared_ptr<moxZYNPackItem> item) { items_.append(std::move(item)); });
  skipped_.insert(skipped_.end(), std::make_move_iterator(skipped.begin()),
                  std::make_move_iterator(skipped.end()));
  return true;
}

bool zynPack::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute(kDescription, description_);
  polymorphic_list::save(items_.all(), *node);
  return true;
}
