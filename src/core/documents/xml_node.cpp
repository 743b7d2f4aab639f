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

pugi::xml_attribute findAttribute(pugi::xml_attribute from, pugi::xml_attribute until,
                                  std::string_view name) {
  auto at = from;
  while (at != until && !isText(at.name(), name)) {
    at = at.next_attribute();
  }
  return at != until ? at : pugi::xml_attribute();
}

std::string_view attributeOf(pugi::xml_node node, std::string_view name) {
  return findAttribute(node.first_attribute(), {}, name).value();
}

/// What a child is looked for by.
struct Wanted {
  std::string_view elementName;
  std::string_view attributeName;
  std::string_view attributeValue;

  bool matches(pugi::xml_node node) const {
    return node.type() == pugi::node_element &&
           (elementName.empty() || isText(node.name(), elementName)) &&
           (attributeName.empty() || attributeOf(node, attributeName) == attributeValue);
  }

  /// The first match from `node` on among its siblings.
  pugi::xml_node firstFrom(pugi::xml_node node) const {
    while (node && !matches(node)) {
      node = node.next_sibling();
    }
    return node;
  }
};

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
  Wanted const wanted{elementName, attributeName, attributeValue};
  bool const sameWalk = walk_.index >= 0 && walk_.changes == tree_->changes() &&
                        walk_.elementName == elementName && walk_.attributeName == attributeName &&
                        walk_.attributeValue == attributeValue;
  bool const goOn = sameWalk && walk_.index <= index;
  int found = goOn ? walk_.index : 0;
  pugi::xml_node at = goOn ? walk_.at : wanted.firstFrom(node_.first_child());
  while (at && found < index) {
    at = wanted.firstFrom(at.next_sibling());
    ++found;
  }
  if (!at) {
    return {};
  }
  // A look at one first child, in the middle of a walk over others, does not end that walk.
  if (index > 0 || walk_.index < 0) {
    walk_ = {std::string(elementName),
             std::string(attributeName),
             std::string(attributeValue),
             found,
             at,
             tree_->changes()};
  }
  return std::make_shared<XmlNode>(tree_, at, depth_ + 1);
}

std::shared_ptr<moxXMLNode> XmlNode::addChild(std::string_view name) {
  requireXmlName(name);
  if (depth_ >= kMaxXmlDepth) {
    throw DocumentError("XML",
                        "elements cannot be nested deeper than " + std::to_string(kMaxXmlDepth));
  }
  pugi::xml_node const child = node_.append_child(std::string(name).c_str());
  requireMemory(!child.empty());
  return std::make_shared<XmlNode>(tree_, child, depth_ + 1);
}

std::string XmlNode::readAttribute(std::string_view name) const {
  auto const first = node_.first_attribute();
  auto const start = next_.changes == tree_->changes() && next_.at ? next_.at : first;
  auto found = findAttribute(start, {}, name);
  if (!found && start != first) {
    found = findAttribute(first, start, name);
  }
  if (found) {
    next_ = {found.next_attribute(), tree_->changes()};
  }
  return found.value();
}

void XmlNode::writeAttribute(std::string_view name, std::string_view value) {
  requireXmlName(name);
  std::string const checked = requireXmlText(value);
  std::string const key(name);
  pugi::xml_attribute attribute = node_.attribute(key.c_str());
  if (!attribute) {
    attribute = node_.append_attribute(key.c_str());
  }
  requireMemory(attribute.set_value(checked.c_str()));
  tree_->noteChange();
}

std::string XmlNode::readText() const {
  std::string text;
  for (pugi::xml_node const child : node_.children()) {
    if (child.type() != pugi::node_element) {
      text += child.value();
    }
  }
  return text;
}

void XmlNode::writeText(std::string_view text) {
  std::string const checked = requireXmlText(text);
  removeText(node_);
  if (!checked.empty()) {
    requireMemory(node_.prepend_child(pugi::node_pcdata).set_value(checked.c_str()));
  }
}

void XmlNode::setElementName(std::string_view name) {
  requireXmlName(name);
  requireMemory(node_.set_name(std::string(name).c_str()));
  tree_->noteChange();
}

void XmlNode::clear() {
  tree_->clear(node_);
}

}  // namespace mox::core
