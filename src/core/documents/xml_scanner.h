#pragma once

#include <cstddef>
#include <string_view>

namespace mox::core {

/// How deep elements may be nested, the root being 1. Whoever walks a document may recurse.
constexpr int kMaxXmlDepth = 256;

/// How long a document may be, in bytes.
constexpr std::size_t kMaxXmlBytes = std::size_t{64} << 20;

/// How many elements and attributes a document may have: each costs the tree some sixty bytes.
constexpr std::size_t kMaxXmlParts = std::size_t{8} << 20;

/// Walks over a whole UTF-8 text once and throws DocumentError, with line and column, where it is
/// not well-formed, declares a DOCTYPE, uses an entity, or goes beyond a bound. It stands in front
/// of a parser that is fast because it lets much of this pass.
void checkXml(std::string_view text);

}  // namespace mox::core
