#pragma once

#include <cstdint>
#include <string>
#include <vector>

class moxXMLTable;

namespace mox::cli {

/// What the elements of sources made of other sources hold that their classes pass over without a
/// word, be they items or members of groups inside of `element`: attributes and elements of other
/// names, lists that stand twice, values that are none, and what has to be there and is not. A
/// sentence each, with the file's `path` and the line ahead; in the order of the lines.
std::vector<std::string> unreadParts(moxXMLTable const& table, std::uint32_t element,
                                     std::string const& path);

}  // namespace mox::cli
