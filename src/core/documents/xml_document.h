#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/documents/xml_node.h"
#include "mox/core/xml.h"
#include "mox/core/xml_table.h"

namespace mox::core {

/// An XML document over the pugixml library.
class XmlDocument : public moxXMLDocument, public moxXMLPieces {
 public:
  XmlDocument() { create("root"); }

  std::string name() const override { return "moxXMLDocument"; }
  void create(std::string_view rootName) override;
  void parse(moxReadBlob const& content) override;
  void loadText(std::string_view text) override;
  std::shared_ptr<moxXMLNode> root() const override { return root_; }
  std::string writeText(int indent, int declaration) const override;
  bool readPieces(moxReadBlob const& content, Visit const& visit) const override;

 private:
  void show(std::shared_ptr<XmlTree> tree);

  std::shared_ptr<XmlTree> tree_;
  std::shared_ptr<XmlNode> root_;
};

}  // namespace mox::core
