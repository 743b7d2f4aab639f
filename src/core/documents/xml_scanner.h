#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "core/documents/xml_table.h"

namespace mox::core {

/// How deep elements may be nested, the root being 1. Whoever walks a document may recurse.
constexpr int kMaxXmlDepth = 256;

/// How long a document may be, in bytes.
constexpr std::size_t kMaxXmlBytes = std::size_t{64} << 20;

/// How many elements and attributes a document may have: each costs the tree some sixty bytes.
constexpr std::size_t kMaxXmlParts = std::size_t{8} << 20;

/// What a text held, and whether it can be read by its table alone.
struct ScannedXml {
  std::shared_ptr<XmlTable> table;
  bool needsParser = false;  // it holds what only the parser judges
};

/// Walks over a whole UTF-8 text once and throws DocumentError, with line and column, where it is
/// not well-formed, declares a DOCTYPE, uses an entity, or goes beyond a bound. It stands in front
/// of a parser that is fast because it lets much of this pass, and notes what it found, so that who
/// only reads needs no parser.
ScannedXml scanXml(std::string text);

/// The same for who takes the pieces: see moxXMLPieces. False as soon as there is what only the
/// parser judges.
bool scanXmlPieces(std::string_view text, moxXMLPieces::Visit const& visit);

}  // namespace mox::core
