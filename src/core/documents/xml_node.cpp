#include "core/documents/xml_node.h"

#include <new>

#include "core/documents/document_error.h"
#include "core/documents/utf8.h"
#include "core/documents/xml_names.h"
#include "core/documents/xml_scanner.h"

namespace mox::core {

namespace {

/// Whether a text that ends in a NUL is `wanted`. Most names differ at once, so that looking for
/// the end first would be most of the work.
bool isText(char const* text, std::string_view wanted) {
  for (char const c : wanted) {
    if (*text != c || c == '\0') {
      return false;
    }
    ++text;
  }
  return *text == '\0';
}

/// The value of the first one of that name from `at` on; empty when there is none.
std::string_view attributeFrom(pugi::xml_attribute at, std::string_view name) {
  while (at && !isText(at.name(), name)) {
    at = at.next_attribute();
  }
  return at.value();
}

std::string requireXmlText(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    throw DocumentError("XML", "a text with a NUL in it cannot be written");
  }
  if (findInvalidUtf8(text) != std::string_view::npos) {
    throw DocumentError("XML", "a text that is not UTF-8 cannot be written");
  }
  return std::string(text);
}

void requireMemory(bool done) {
  if (!done) {
    throw std::bad_alloc();
  }
}

void removeText(pugi::xml_node node) {
  for (pugi::xml_node child = node.first_child(); child;) {
    pugi::xml_node const next = child.next_sibling();
    if (child.type() != pugi::node_element) {
      node.remove_child(child);
    }
    child = next;
  }
}

}  // namespace

void requireXmlName(std::string_view name) {
  if (!isXmlName(name) || findInvalidUtf8(name) != std::string_view::npos) {
    constexpr std::size_t kShown = 60;
    std::string shown;
    for (char const c : name.substr(0, kShown)) {
      shown += c >= ' ' && c <= '~' ? c : '?';
    }
    throw DocumentError("XML", "\"" + shown + "\" cannot be the name of an element or attribute");
  }
}

std::shared_ptr<moxXMLNode> XmlNode::childByIndex(int index, std::string_view elementName,
                                                  std::string_view attributeName,
                                                  std::string_view attributeValue) const {
  if (index < 0) {
    return {};
  }
  if (childrenChanges_ != tree_->changes()) {
    children_.clear();
    walk_.reset();
    childrenChanges_ = tree_->changes();
  }
  pugi::xml_node const found = find(index, {elementName, attributeName, attributeValue});
  if (!found) {
    return {};
  }
  return std::make_shared<XmlNode>(tree_, found, depth_ + 1);
}

bool XmlNode::Walk::isFor(Wanted const& wanted) const {
  return elementName == wanted.elementName && attributeName == wanted.attributeName &&
         attributeValue == wanted.attributeValue;
}

pugi::xml_node XmlNode::find(int index, Wanted const& wanted) const {
  if (wanted.elementName.empty() && wanted.attributeName.empty()) {
    auto const* const child = childAt(static_cast<std::size_t>(index));
    return child != nullptr ? child->node : pugi::xml_node();
  }
  bool const goOn = walk_ && walk_->index <= index && walk_->isFor(wanted);
  std::size_t position = goOn ? walk_->position : 0;
  int left = goOn ? index - walk_->index : index;  // matches to pass over
  for (; auto const* const child = childAt(position); ++position) {
    if (matches(*child, wanted) && left-- == 0) {
      keepWalk(index, position, wanted);
      return child->node;
    }
  }
  return {};
}

// A look at one first child, in the middle of a walk over others, does not end that walk, and
// begins none: the next one of the name is found from the start as well.
void XmlNode::keepWalk(int index, std::size_t position, Wanted const& wanted) const {
  if (index == 0) {
    return;
  }
  if (!walk_ || !walk_->isFor(wanted)) {
    walk_ = std::make_unique<Walk>(Walk{std::string(wanted.elementName),
                                        std::string(wanted.attributeName),
                                        std::string(wanted.attributeValue)});
  }
  walk_->index = index;
  walk_->position = position;
}

bool XmlNode::matches(Child const& child, Wanted const& wanted) {
  return (wanted.elementName.empty() || isText(child.name, wanted.elementName)) &&
         (wanted.attributeName.empty() ||
          attributeFrom(child.node.first_attribute(), wanted.attributeName) ==
              wanted.attributeValue);
}

/// The child element with that number; null when there are fewer.
XmlNode::Child const* XmlNode::childAt(std::size_t position) const {
  while (position >= children_.size()) {
    if (!listNextChild()) {
      return nullptr;
    }
  }
  return &children_[position];
}

/// Lists one more element, if there is one: also one that was added since.
bool XmlNode::listNextChild() const {
  auto at = children_.empty() ? node().first_child() : children_.back().node.next_sibling();
  while (at && at.type() != pugi::node_element) {
    at = at.next_sibling();
  }
  if (!at) {
    return false;
  }
  children_.push_back({at, at.name()});
  return true;
}

std::shared_ptr<moxXMLNode> XmlNode::addChild(std::string_view name) {
  requireXmlName(name);
  if (depth_ >= kMaxXmlDepth) {
    throw DocumentError("XML",
                        "elements cannot be nested deeper than " + std::to_string(kMaxXmlDepth));
  }
  pugi::xml_node const child = node().append_child(std::string(name).c_str());
  requireMemory(!child.empty());
  return std::make_shared<XmlNode>(tree_, child, depth_ + 1);
}

std::string XmlNode::readAttribute(std::string_view name) const {
  auto& known = attributes_;
  if (known.changes != tree_->changes()) {
    listAttributes();
  }
  for (std::size_t tried = 0, at = known.next; tried < known.count; ++tried, ++at) {
    at = at < known.count ? at : 0;
    if (isText(known.list[at].name, name)) {
      known.next = at + 1;
      return known.list[at].value;
    }
  }
  return std::string(attributeFrom(known.more, name));
}

void XmlNode::listAttributes() const {
  auto& known = attributes_;
  known.count = 0;
  known.next = 0;
  auto at = node().first_attribute();
  for (; at && known.count < kListed; at = at.next_attribute()) {
    known.list[known.count++] = {at.name(), at.value()};
  }
  known.more = at;
  known.changes = tree_->changes();
}

void XmlNode::writeAttribute(std::string_view name, std::string_view value) {
  requireXmlName(name);
  std::string const checked = requireXmlText(value);
  std::string const key(name);
  pugi::xml_attribute attribute = node().attribute(key.c_str());
  if (!attribute) {
    attribute = node().append_attribute(key.c_str());
  }
  requireMemory(attribute.set_value(checked.c_str()));
  tree_->noteChange();
}

std::string XmlNode::readText() const {
  std::string text;
  for (pugi::xml_node const child : node().children()) {
    if (child.type() != pugi::node_element) {
      text += child.value();
    }
  }
  return text;
}

void XmlNode::writeText(std::string_view text) {
  std::string const checked = requireXmlText(text);
  removeText(node());
  if (!checked.empty()) {
    requireMemory(node().prepend_child(pugi::node_pcdata).set_value(checked.c_str()));
  }
}

void XmlNode::setElementName(std::string_view name) {
  requireXmlName(name);
  requireMemory(node().set_name(std::string(name).c_str()));
  tree_->noteChange();
}

void XmlNode::clear() {
  tree_->clear(node());
}

}  // namespace mox::core
