#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mox/core/xml_table.h"

namespace mox::core {

/// Offsets of the line ends of a text, ascending.
std::vector<std::uint32_t> lineBreaksOf(std::string_view text);

/// The elements of a text, and the text. Filled by the scanner, which knows the text to be right.
class XmlTable final : public moxXMLTable {
 public:
  explicit XmlTable(std::string text);

  /// A table that is to hold one piece of a text at a time. The text must outlive it.
  static std::unique_ptr<XmlTable> ofPieces(std::string_view text);

  XmlTable(XmlTable const&) = delete;
  XmlTable& operator=(XmlTable const&) = delete;

  std::shared_ptr<moxXMLNode> nodeOf(std::uint32_t number) const override;
  int lineOf(std::uint32_t number) const override;

  std::string_view text() const { return content_; }

  /// The text of a table that was given its own; the table is of no use behind it.
  std::string takeText() { return std::move(owned_); }

  // For the scanner. Places are offsets in the text.

  /// An element with a tag that begins with that name, below `depth - 1` others; gives its number.
  std::uint32_t open(std::size_t nameAt, std::size_t nameSize, std::size_t depth) {
    auto const number = static_cast<std::uint32_t>(list_.size());
    auto& element = list_.emplace_back();
    element.nameAt = static_cast<std::uint32_t>(nameAt);
    element.nameSize = static_cast<std::uint32_t>(nameSize);
    element.firstAttribute = static_cast<std::uint32_t>(attributeList_.size());
    element.depth = static_cast<std::uint32_t>(depth) & 0x7FFFFFFFU;
    return number;
  }

  /// `isPlain` says that the value holds nothing that reads otherwise than it stands.
  void attribute(std::size_t nameAt, std::size_t nameSize, std::string_view value, bool isPlain) {
    auto& attribute = attributeList_.emplace_back();
    attribute.nameAt = static_cast<std::uint32_t>(nameAt);
    attribute.nameSize = static_cast<std::uint32_t>(nameSize);
    attribute.valueAt = offsetOf(value);
    attribute.valueSize = static_cast<std::uint32_t>(value.size()) & 0x7FFFFFFFU;
    if (!isPlain) {
      decodeValue(attribute, value);
    }
  }

  /// A piece of the element's own text. White space is to be told only right before the end tag.
  void text(std::uint32_t number, std::string_view piece, bool isBlank);

  /// Something else stands inside: its text can then be in pieces.
  void mix(std::uint32_t number) { list_[number].isMixed = 1; }
  void close(std::uint32_t number, std::size_t tagsEnd) {
    list_[number].end = static_cast<std::uint32_t>(list_.size());
    list_[number].tagsEnd = static_cast<std::uint32_t>(tagsEnd);
  }

  /// To be called behind the last one, and before anybody reads.
  void finish();

  /// Forgets all but the root, its attributes and the texts ahead of the next element.
  void keepRoot();

 private:
  XmlTable() = default;
  void decodeValue(Attribute& attribute, std::string_view value);

  std::uint32_t offsetOf(std::string_view part) const {
    return static_cast<std::uint32_t>(part.data() - content_.data());
  }

  std::string owned_;  // empty for a text that somebody else holds
  std::string_view content_;
  std::string values_;  // those that read otherwise than they stand
  std::vector<Element> list_;
  std::vector<Attribute> attributeList_;
  mutable std::vector<std::uint32_t> lineBreaks_;  // made when the first line is asked for
};

}  // namespace mox::core
