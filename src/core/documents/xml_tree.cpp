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

std::vector<std::uint32_t> lineBreaksOf(std::string_view text) {
  std::vector<std::uint32_t> offsets;
  for (std::size_t at = text.find('\n'); at != std::string_view::npos;
       at = text.find('\n', at + 1)) {
    offsets.push_back(static_cast<std::uint32_t>(at));
  }
  return offsets;
}

}  // namespace

XmlTree::XmlTree(std::string const& rootName) {
  root_ = document_.append_child(rootName.c_str());
  if (!root_) {
    throw std::bad_alloc();
  }
}

std::shared_ptr<XmlTree> XmlTree::read(std::string text) {
  checkXml(text);
  std::shared_ptr<XmlTree> tree(new XmlTree());
  tree->text_ = std::move(text);
  tree->lineBreaks_ = lineBreaksOf(tree->text_);
  pugi::xml_parse_result const result = tree->document_.load_buffer_inplace(
      tree->text_.data(), tree->text_.size(), kParsing, pugi::encoding_utf8);
  if (result.status == pugi::status_out_of_memory) {
    throw std::bad_alloc();
  }
  tree->root_ = tree->document_.document_element();
  if (!result || !tree->root_) {
    auto const& breaks = tree->lineBreaks_;
    auto const line = std::upper_bound(breaks.begin(), breaks.end(), result.offset);
    throw DocumentError("XML",
                        "it cannot be read near line " + std::to_string(line - breaks.begin() + 1));
  }
  return tree;
}

int XmlTree::lineOf(pugi::xml_node element) const {
  std::ptrdiff_t const offset = element.offset_debug();
  if (text_.empty() || offset < 0) {
    return 0;
  }
  auto const line =
      std::lower_bound(lineBreaks_.begin(), lineBreaks_.end(), static_cast<std::uint32_t>(offset));
  return static_cast<int>(line - lineBreaks_.begin()) + 1;
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
