#pragma once

#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "core/documents/xml_table.h"

namespace mox::core {

/// What the nodes of one document share. A node handed out once stays good until the last one is
/// dropped: elements that are cleared away are not freed but put aside.
class XmlTree {
 public:
  /// A document with one empty element.
  explicit XmlTree(std::string const& rootName);

  /// A document that was read. Throws DocumentError. `text` is UTF-8.
  static std::shared_ptr<XmlTree> read(std::string text);

  XmlTree(XmlTree const&) = delete;
  XmlTree& operator=(XmlTree const&) = delete;

  /// A document that is part of another one, where so many lines stood ahead of it. `text` is an
  /// element that was found to be right.
  static std::shared_ptr<XmlTree> ofPart(std::string text, int linesAhead);

  /// The root element. Who only reads the table has no tree of elements; the first call makes it.
  pugi::xml_node root();

  /// What was read; empty once there is a tree of elements.
  std::shared_ptr<moxXMLTable const> table() const { return table_; }

  /// Line of an element in the text that was read, 0 when it was not read as it is.
  int lineOf(pugi::xml_node element) const;

  /// Empties an element of everything.
  void clear(pugi::xml_node element);

  /// Whoever remembers a place among the elements must forget it when this number has changed.
  std::uint64_t changes() const { return changes_; }
  void noteChange() { ++changes_; }

 private:
  XmlTree() = default;
  void parse();

  std::shared_ptr<XmlTable> table_;  // until there are elements
  std::string text_;                 // the parser works in it and points into it
  pugi::xml_document document_;
  pugi::xml_node root_;
  pugi::xml_node aside_;                   // second child of the document, never written
  std::vector<std::uint32_t> lineBreaks_;  // offsets in the text, ascending
  std::uint64_t changes_ = 0;
  int linesAhead_ = 0;
};

}  // namespace mox::core
