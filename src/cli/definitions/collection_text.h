#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mox::cli {

/// What stands between the tags of a document's root element, as it is written there; empty for an
/// element that is closed in its own tag. Precondition: UTF-8 that a parser found well-formed, and
/// without a DOCTYPE.
std::string_view contentOfRoot(std::string_view text);

/// One collection of many: the root element of the library, and inside it the contents of the given
/// documents, in order and as they are written, comments included. White space around each content
/// is made a line end. Precondition: as contentOfRoot, for each.
std::string mergedCollection(std::string_view library, std::vector<std::string> const& documents);

}  // namespace mox::cli
