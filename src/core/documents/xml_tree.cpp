#include "core/documents/xml_tree.h"

#include <algorithm>
#include <new>

#include "core/documents/document_error.h"
#include "core/documents/xml_scanner.h"

namespace mox::core {

namespace {

// A text of white space alone is kept where it is all that an element holds; between tags it is
// layout.
constexpr unsigned kParsing = pugi::parse_cdata | pugi::parse_escapes |
                              pugi::parse_wconv_attribute | pugi::parse_eol |
                              pugi::parse_ws_pcdata_single;

}  // namespace

XmlTree::XmlTree(std::string const& rootName) {
  root_ = document_.append_child(rootName.c_str());
  if (!root_) {
    throw std::bad_alloc();
  }
}

std::shared_ptr<XmlTree> XmlTree::read(std::string text) {
  auto scanned = scanXml(std::move(text));
  std::shared_ptr<XmlTree> tree(new XmlTree());
  tree->table_ = std::move(scanned.table);
  if (scanned.needsParser) {
    tree->root();
  }
  return tree;
}

std::shared_ptr<XmlTree> XmlTree::ofPart(std::string text, int linesAhead) {
  std::shared_ptr<XmlTree> tree(new XmlTree());
  tree->text_ = std::move(text);
  tree->linesAhead_ = linesAhead;
  tree->parse();
  return tree;
}

pugi::xml_node XmlTree::root() {
  if (table_) {
    text_ = table_.use_count() == 1 ? table_->takeText() : std::string(table_->text());
    table_.reset();
    parse();
  }
  return root_;
}

void XmlTree::parse() {
  lineBreaks_ = lineBreaksOf(text_);
  pugi::xml_parse_result const result =
      document_.load_buffer_inplace(text_.data(), text_.size(), kParsing, pugi::encoding_utf8);
  if (result.status == pugi::status_out_of_memory) {
    throw std::bad_alloc();
  }
  root_ = document_.document_element();
  if (!result || !root_) {
    auto const line = std::upper_bound(lineBreaks_.begin(), lineBreaks_.end(), result.offset);
    throw DocumentError(
        "XML", "it cannot be read near line " + std::to_string(line - lineBreaks_.begin() + 1));
  }
}

int XmlTree::lineOf(pugi::xml_node element) const {
  std::ptrdiff_t const offset = element.offset_debug();
  if (text_.empty() || offset < 0) {
    return 0;
  }
  auto const line =
      std::lower_bound(lineBreaks_.begin(), lineBreaks_.end(), static_cast<std::uint32_t>(offset));
  return static_cast<int>(line - lineBreaks_.begin()) + 1 + linesAhead_;
}

void XmlTree::clear(pugi::xml_node element) {
  if (!aside_) {
    aside_ = document_.append_child(pugi::node_element);
  }
  while (pugi::xml_node const child = element.first_child()) {
    if (child.type() == pugi::node_element) {
      aside_.append_move(child);
    } else {
      element.remove_child(child);
    }
  }
  element.remove_attributes();
  noteChange();
}

}  // namespace mox::core
