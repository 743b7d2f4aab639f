#pragma once

#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "core/documents/xml_tree.h"
#include "mox/core/xml.h"

namespace mox::core {

/// An element, and a share in the tree that it stands in.
class XmlNode : public moxXMLNode {
 public:
  /// `depth` is 1 for the root.
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
  std::string elementName() const override { return node_.name(); }
  void setElementName(std::string_view name) override;
  void clear() override;
  int line() const override { return tree_->lineOf(node_); }

 private:
  /// The last child that was found and what for: the next one is looked for from there.
  struct Walk {
    std::string elementName;
    std::string attributeName;
    std::string attributeValue;
    int index = -1;  // -1: no walk yet
    pugi::xml_node at;
    std::uint64_t changes = 0;  // valid while the tree's number is the same
  };

  /// Where an attribute is looked for first: most are read in the order in which they stand.
  struct NextAttribute {
    pugi::xml_attribute at;
    std::uint64_t changes = 0;  // as Walk's
  };

  std::shared_ptr<XmlTree> tree_;
  pugi::xml_node node_;
  int depth_;
  mutable NextAttribute next_;
  mutable Walk walk_;
};

/// Throws DocumentError unless the text can stand as a name. For all that write one.
void requireXmlName(std::string_view name);

}  // namespace mox::core
