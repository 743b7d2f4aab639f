#pragma once

#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

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

  pugi::xml_node root() const { return root_; }

  /// Line of an element in the text that was read, 0 when it was not read as it is.
  int lineOf(pugi::xml_node element) const;

  /// Empties an element of everything.
  void clear(pugi::xml_node element);

  /// Whoever remembers a place among the elements must forget it when this number has changed.
  std::uint64_t changes() const { return changes_; }
  void noteChange() { ++changes_; }

 private:
  XmlTree() = default;

  std::string text_;  // the parser works in it and points into it
  pugi::xml_document document_;
  pugi::xml_node root_;
  pugi::xml_node aside_;                   // second child of the document, never written
  std::vector<std::uint32_t> lineBreaks_;  // offsets in the text, ascending
  std::uint64_t changes_ = 0;
};

}  // namespace mox::core
