#pragma once

#include <string>
#include <string_view>

namespace mox::core {

/// An XML file's bytes as UTF-8 without a byte order mark. The encoding is told by the mark, by the
/// way that "<?" or "<" is written, or by the declaration; without any of them it is UTF-8. Throws
/// DocumentError for an encoding that is not known. Whether the result is well-formed UTF-8 is left
/// to whoever reads on. The text is the bytes themselves where they are UTF-8, which costs nothing,
/// and otherwise stands in `room`.
std::string_view decodeXml(std::string_view bytes, std::string& room);

/// The same, as a text of its own.
std::string decodeXml(std::string_view bytes);

}  // namespace mox::core
