#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "mox/core/xml.h"
#include "mox/core/xml_table.h"
#include "zyn/frame/cast_memory.h"

/// An element that is only read, or none. It stands in the document's table where there is one,
/// which costs no object and no call into the framework; elsewhere it is a node. Table or node must
/// outlive it.
class XmlElement {
 public:
  XmlElement() = default;
  XmlElement(moxXMLTable const& table, std::uint32_t number) : table_(&table), number_(number) {}
  explicit XmlElement(moxXMLNode const& node) : node_(&node) {}
  explicit XmlElement(std::shared_ptr<moxXMLNode> node)
      : node_(node.get()), owned_(std::move(node)) {}

  explicit operator bool() const { return table_ != nullptr || node_ != nullptr; }
  bool isInTable() const { return table_ != nullptr; }

  /// The element as a node; for one in a table made anew. Not for an element that was made of a
  /// reference.
  std::shared_ptr<moxXMLNode> node() const {
    return table_ != nullptr ? table_->nodeOf(number_) : owned_;
  }

  std::string name() const {
    return table_ != nullptr ? std::string(table_->nameOf(own())) : node_->elementName();
  }
  int line() const { return table_ != nullptr ? table_->lineOf(number_) : node_->line(); }

  /// What `use` makes of the attribute's text, without a copy of it.
  template <class Use>
  auto withAttribute(std::string_view name, Use const& use) const {
    return table_ != nullptr ? use(find(name)) : use(std::string_view(node_->readAttribute(name)));
  }

  /// As moxXMLNode::readAttribute.
  std::string attribute(std::string_view name) const {
    return table_ != nullptr ? std::string(find(name)) : node_->readAttribute(name);
  }

  /// The same without a copy where there is a table; else it is put into `room`. Good as long as
  /// both.
  std::string_view attribute(std::string_view name, std::string& room) const {
    return table_ != nullptr ? find(name) : room = node_->readAttribute(name);
  }

  /// As moxXMLNode::readText.
  std::string text() const {
    if (table_ == nullptr) {
      return node_->readText();
    }
    return own().isMixed != 0 ? node()->readText() : std::string(table_->textOf(own()));
  }

  std::string_view text(std::string& room) const {
    bool const isInOnePiece = table_ != nullptr && own().isMixed == 0;
    return isInOnePiece ? table_->textOf(own()) : room = text();
  }

  /// The first child of the name, any one for an empty name.
  XmlElement child(std::string_view name = {}) const {
    if (table_ == nullptr) {
      return XmlElement(node_->childByIndex(0, name));
    }
    auto const* const all = table_->elements();
    std::uint32_t at = number_ + 1;
    while (at < all[number_].end && !isNamed(all[at], name)) {
      at = all[at].end;
    }
    return at < all[number_].end ? XmlElement(*table_, at) : XmlElement();
  }

  /// Hands every child of the name to `visit`, all for an empty name, as long as that gives true,
  /// or nothing.
  template <class Visit>
  void eachChild(std::string_view name, Visit const& visit) const {
    if (table_ == nullptr) {
      for (int i = 0; auto child = node_->childByIndex(i, name); ++i) {
        if (!goesOn(visit, XmlElement(std::move(child)))) {
          return;
        }
      }
      return;
    }
    auto const* const all = table_->elements();
    for (std::uint32_t at = number_ + 1; at < all[number_].end; at = all[at].end) {
      if (isNamed(all[at], name) && !goesOn(visit, XmlElement(*table_, at))) {
        return;
      }
    }
  }

 private:
  moxXMLTable::Element const& own() const { return table_->elements()[number_]; }

  /// Whether two names are equal. Names are short, and to compare them is much of what reading a
  /// table costs: without a call for most of them.
  static bool isSame(std::string_view one, std::string_view other) {
    if (one.size() != other.size()) {
      return false;
    }
    if (one.size() >= 8 && one.size() <= 16) {
      return isSameAtEnds<std::uint64_t>(one, other);
    }
    if (one.size() >= 4 && one.size() < 8) {
      return isSameAtEnds<std::uint32_t>(one, other);
    }
    return one == other;
  }

  /// The same for two of one length, between one word and two, by the words at their ends.
  template <class Word>
  static bool isSameAtEnds(std::string_view one, std::string_view other) {
    std::size_t const tail = one.size() - sizeof(Word);
    return wordAt<Word>(one.data()) == wordAt<Word>(other.data()) &&
           wordAt<Word>(one.data() + tail) == wordAt<Word>(other.data() + tail);
  }

  template <class Word>
  static Word wordAt(char const* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
  }

  bool isNamed(moxXMLTable::Element const& element, std::string_view name) const {
    return name.empty() || isSame(table_->nameOf(element), name);
  }

  template <class Visit>
  static bool goesOn(Visit const& visit, XmlElement const& child) {
    if constexpr (std::is_void_v<decltype(visit(child))>) {
      visit(child);
      return true;
    } else {
      return visit(child);
    }
  }

  /// Most attributes are read in the order in which they stand.
  std::string_view find(std::string_view name) const {
    auto const* const element = table_->elements() + number_;
    auto const* const list = table_->attributes() + element[0].firstAttribute;
    std::uint32_t const count = element[1].firstAttribute - element[0].firstAttribute;
    for (std::uint32_t tried = 0, at = next_; tried < count; ++tried, ++at) {
      at = at < count ? at : 0;
      if (isSame(table_->nameOf(list[at]), name)) {
        next_ = at + 1;
        return table_->valueOf(list[at]);
      }
    }
    return {};
  }

  moxXMLTable const* table_ = nullptr;
  std::uint32_t number_ = 0;        // in the table
  mutable std::uint32_t next_ = 0;  // attribute that is looked at first
  moxXMLNode const* node_ = nullptr;
  std::shared_ptr<moxXMLNode> owned_;  // node_, unless that is another's
};

/// Second face of objects that are loaded from nodes and can do it from a table as well.
class LoadedFromElement {
 public:
  virtual ~LoadedFromElement() = default;

  /// As load of the element as a node. Precondition: there is an element.
  virtual bool loadElement(XmlElement const& element) = 0;
};

/// Loads an object of whatever library.
template <class T>
bool loadFrom(T& object, XmlElement const& element) {
  auto* const direct = element.isInTable() ? castOf<LoadedFromElement>(&object) : nullptr;
  return direct != nullptr ? direct->loadElement(element) : object.load(element.node());
}

/// Hands `use` the node's element, in the table if the node's document still has one.
template <class Use>
auto withElementOf(moxXMLNode const& node, Use const& use) {
  auto const* const source = dynamic_cast<moxXMLTableSource const*>(&node);
  auto const table = source != nullptr ? source->table() : nullptr;
  return use(table ? XmlElement(*table, 0) : XmlElement(node));
}
