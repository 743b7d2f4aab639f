#include "core/documents/xml_table.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/documents/utf8.h"
#include "core/documents/xml_names.h"
#include "core/documents/xml_node.h"

namespace mox::core {

namespace {

struct Entity {
  std::string_view name;
  char character;
};

constexpr std::array<Entity, 5> kEntities = {
    {{"amp;", '&'}, {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}}};

std::uint32_t numberOf(std::string_view digits, std::uint32_t base) {
  std::uint32_t number = 0;
  for (char const c : digits) {
    auto const digit = c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
    number = number * base + static_cast<std::uint32_t>(digit);
  }
  return number;
}

/// Appends the character of the reference at the beginning of `rest`, which follows its "&"; gives
/// the reference's length. The scanner has let it pass.
std::size_t expandReference(std::string& out, std::string_view rest) {
  for (auto const& entity : kEntities) {
    if (rest.starts_with(entity.name)) {
      out += entity.character;
      return entity.name.size();
    }
  }
  bool const isHexadecimal = rest.starts_with("#x");
  std::size_t const first = isHexadecimal ? 2 : 1;
  std::size_t const end = rest.find(';');
  appendUtf8(out, numberOf(rest.substr(first, end - first), isHexadecimal ? 16 : 10));
  return end + 1;
}

/// A text as XML means it: references stand for characters, line ends of all kinds for one LF. In
/// an attribute every white space is a blank.
void appendMeant(std::string& out, std::string_view text, bool isAttribute) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    char const c = text[at];
    if (c == '&') {
      at += expandReference(out, text.substr(at + 1));
    } else if (c == '\r') {
      out += isAttribute ? ' ' : '\n';
      at += text.substr(at + 1).starts_with('\n') ? 1 : 0;
    } else {
      out += isAttribute && isXmlSpace(c) ? ' ' : c;
    }
  }
}

bool readsOtherwise(std::string_view text) {
  return text.find('&') != std::string_view::npos || text.find('\r') != std::string_view::npos;
}

}  // namespace

std::vector<std::uint32_t> lineBreaksOf(std::string_view text) {
  std::vector<std::uint32_t> offsets;
  for (std::size_t at = text.find('\n'); at != std::string_view::npos;
       at = text.find('\n', at + 1)) {
    offsets.push_back(static_cast<std::uint32_t>(at));
  }
  return offsets;
}

// Room for what documents hold: memory that is never written costs nothing.
XmlTable::XmlTable(std::string text) : owned_(std::move(text)), content_(owned_) {
  constexpr std::size_t kBytesAnElement = 64;
  constexpr std::size_t kBytesAnAttribute = 24;
  list_.reserve(content_.size() / kBytesAnElement + 2);
  attributeList_.reserve(content_.size() / kBytesAnAttribute + 1);
}

std::unique_ptr<XmlTable> XmlTable::ofPieces(std::string_view text) {
  std::unique_ptr<XmlTable> table(new XmlTable());
  table->content_ = text;
  return table;
}

void XmlTable::decodeValue(Attribute& attribute, std::string_view value) {
  attribute.valueAt = static_cast<std::uint32_t>(values_.size());
  appendMeant(values_, value, true);
  attribute.valueSize =
      static_cast<std::uint32_t>(values_.size() - attribute.valueAt) & 0x7FFFFFFFU;
  attribute.isDecoded = 1;
}

void XmlTable::text(std::uint32_t number, std::string_view piece, bool isBlank) {
  auto& element = list_[number];
  bool const hasChildren = number + 1 < list_.size();
  if (isBlank && hasChildren) {
    return;
  }
  if (hasChildren || element.textSize != 0) {
    element.isMixed = 1;
    return;
  }
  if (readsOtherwise(piece)) {
    element.textAt = static_cast<std::uint32_t>(values_.size());
    appendMeant(values_, piece, false);
    element.textSize = static_cast<std::uint32_t>(values_.size() - element.textAt) & 0x7FFFFFFFU;
    element.isDecoded = 1;
  } else {
    element.textAt = offsetOf(piece);
    element.textSize = static_cast<std::uint32_t>(piece.size()) & 0x7FFFFFFFU;
  }
}

void XmlTable::finish() {
  close(open(0, 0, 0), 0);
  text_ = content_.data();
  decoded_ = values_.data();
  elements_ = list_.data();
  attributes_ = attributeList_.data();
}

void XmlTable::keepRoot() {
  attributeList_.resize(list_[1].firstAttribute);
  list_.resize(1);
}

std::shared_ptr<moxXMLNode> XmlTable::nodeOf(std::uint32_t number) const {
  auto const& element = list_[number];
  std::size_t const begin = element.nameAt - 1;  // with the "<"
  auto tree = XmlTree::ofPart(std::string(content_.substr(begin, element.tagsEnd - begin)),
                              lineOf(number) - 1);
  auto const root = tree->root();
  return std::make_shared<XmlNode>(std::move(tree), root, static_cast<int>(element.depth));
}

int XmlTable::lineOf(std::uint32_t number) const {
  if (lineBreaks_.empty()) {
    lineBreaks_ = lineBreaksOf(content_);
  }
  auto const line = std::lower_bound(lineBreaks_.begin(), lineBreaks_.end(), list_[number].nameAt);
  return static_cast<int>(line - lineBreaks_.begin()) + 1;
}

}  // namespace mox::core
