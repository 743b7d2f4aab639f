#include "core/documents/xml_document.h"

#include "core/documents/document_error.h"
#include "core/documents/text_decoder.h"
#include "core/documents/xml_scanner.h"
#include "core/documents/xml_writer.h"
#include "mox/core/blob.h"

namespace mox::core {

namespace {

/// Asked ahead of any copy.
void requireSize(std::size_t size) {
  if (size > kMaxXmlBytes) {
    throw DocumentError("XML", "it is longer than " + std::to_string(kMaxXmlBytes) + " bytes");
  }
}

}  // namespace

void XmlDocument::create(std::string_view rootName) {
  requireXmlName(rootName);
  show(std::make_shared<XmlTree>(std::string(rootName)));
}

void XmlDocument::parse(moxReadBlob const& content) {
  requireSize(content.size());
  show(XmlTree::read(decodeXml(std::string_view(content.data(), content.size()))));
}

void XmlDocument::loadText(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  requireSize(text.size());
  text.remove_prefix(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
  show(XmlTree::read(std::string(text)));
}

std::string XmlDocument::writeText(int indent, int declaration) const {
  return writeXml(tree_->root(), indent != 0, declaration != 0);
}

bool XmlDocument::readPieces(moxReadBlob const& content, Visit const& visit) const {
  requireSize(content.size());
  std::string room;
  return scanXmlPieces(decodeXml(std::string_view(content.data(), content.size()), room), visit);
}

void XmlDocument::show(std::shared_ptr<XmlTree> tree) {
  root_ = std::make_shared<XmlNode>(tree, pugi::xml_node(), 1);
  tree_ = std::move(tree);
}

}  // namespace mox::core
