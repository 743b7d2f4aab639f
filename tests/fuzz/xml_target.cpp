#include "fuzz/targets.h"

#include "core/documents/xml_document.h"
#include "fuzz/promise.h"

namespace mox::fuzz {

namespace {

void walk(moxXMLNode const& node) {
  require(node.line() > 0, "an element that was read has a line");
  node.readText();
  for (int i = 0; auto const child = node.childByIndex(i); ++i) {
    walk(*child);
  }
}

}  // namespace

void readXml(std::string_view bytes) {
  mox::core::XmlDocument document;
  if (!accepted([&] { document.parse(blobOver(bytes)); })) {
    return;
  }
  walk(*document.root());
  for (int const indent : {0, 1}) {
    std::string const text = document.writeText(indent, 1);
    mox::core::XmlDocument again;
    require(accepted([&] { again.loadText(text); }), "what was written can be read");
    require(again.writeText(indent, 1) == text, "reading and writing gives the same text");
    require(again.writeText(0, 0) == document.writeText(0, 0), "layout changes no content");
  }
}

}  // namespace mox::fuzz
