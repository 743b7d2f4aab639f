#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "core/documents/xml_tree.h"
#include "mox/core/xml.h"
#include "mox/core/xml_table.h"

namespace mox::core {

/// An element, and a share in the tree that it stands in.
class XmlNode : public moxXMLNode, public moxXMLTableSource {
 public:
  /// `depth` is 1 for the root, and an empty `node` is the root as well: it is asked for only when
  /// it is needed.
  XmlNode(std::shared_ptr<XmlTree> tree, pugi::xml_node node, int depth)
      : tree_(std::move(tree)), node_(node), depth_(depth) {}

  std::shared_ptr<moxXMLNode> childByIndex(int index, std::string_view elementName,
                                           std::string_view attributeName,
                                           std::string_view attributeValue) const override;
  std::shared_ptr<moxXMLNode> addChild(std::string_view name) override;
  std::string readAttribute(std::string_view name) const override;
  void writeAttribute(std::string_view name, std::string_view value) override;
  std::string readText() const override;
  void writeText(std::string_view text) override;
  std::string elementName() const override { return node().name(); }
  void setElementName(std::string_view name) override;
  void clear() override;
  std::shared_ptr<moxXMLTable const> table() const override {
    return node_ ? nullptr : tree_->table();
  }
  int line() const override { return tree_->lineOf(node()); }

 private:
  static constexpr std::uint64_t kNever = ~std::uint64_t{0};
  static constexpr std::size_t kListed = 12;

  /// What a child is looked for by.
  struct Wanted {
    std::string_view elementName;
    std::string_view attributeName;
    std::string_view attributeValue;
  };

  struct Child {
    pugi::xml_node node;
    char const* name;
  };

  /// The last child of a name that was found: the next one is looked for from there.
  struct Walk {
    std::string elementName;
    std::string attributeName;
    std::string attributeValue;
    int index = 0;
    std::size_t position = 0;  // in children_

    bool isFor(Wanted const& wanted) const;
  };

  struct Attribute {
    char const* name;
    char const* value;
  };

  /// The attributes as they stand, the first ones of many. Each step along the parser's own list is
  /// several calls into its library, and most attributes are read.
  struct Attributes {
    std::uint64_t changes = kNever;  // valid while the tree's number is the same
    std::size_t count = 0;
    std::size_t next = 0;      // looked at first: most are read in the order in which they stand
    pugi::xml_attribute more;  // the first one that is not listed
    std::array<Attribute, kListed> list;  // `count` of them are set
  };

  pugi::xml_node node() const {
    if (!node_) {
      node_ = tree_->root();
    }
    return node_;
  }
  void listAttributes() const;
  bool listNextChild() const;
  Child const* childAt(std::size_t position) const;
  static bool matches(Child const& child, Wanted const& wanted);
  pugi::xml_node find(int index, Wanted const& wanted) const;
  void keepWalk(int index, std::size_t position, Wanted const& wanted) const;

  std::shared_ptr<XmlTree> tree_;
  mutable pugi::xml_node node_;
  int depth_;
  mutable std::uint64_t childrenChanges_ = kNever;  // as Attributes' changes
  mutable std::vector<Child> children_;  // elements, from the first one on as far as asked for
  mutable std::unique_ptr<Walk> walk_;   // over children_
  mutable Attributes attributes_;
};

/// Throws DocumentError unless the text can stand as a name. For all that write one.
void requireXmlName(std::string_view name);

}  // namespace mox::core
