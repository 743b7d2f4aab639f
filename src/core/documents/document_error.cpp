#include "core/documents/document_error.h"

#include <algorithm>

namespace mox::core {

namespace {

bool startsCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

}  // namespace

TextPosition positionAt(std::string_view text, std::size_t offset) {
  std::string_view const before = text.substr(0, std::min(offset, text.size()));
  std::size_t const lineBreak = before.rfind('\n');
  std::size_t const lineStart = lineBreak == std::string_view::npos ? 0 : lineBreak + 1;
  TextPosition where;
  where.line += static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  where.column += static_cast<std::size_t>(std::count_if(
      before.begin() + static_cast<std::ptrdiff_t>(lineStart), before.end(), startsCharacter));
  return where;
}

DocumentError::DocumentError(std::string_view kind, TextPosition where, std::string const& what)
    : moxDefaultErrorImpl<moxError>(std::string(kind) + " document, line " +
                                    std::to_string(where.line) + ", column " +
                                    std::to_string(where.column) + ": " + what + ".") {}

DocumentError::DocumentError(std::string_view kind, std::string const& what)
    : moxDefaultErrorImpl<moxError>(std::string(kind) + " document: " + what + ".") {}

}  // namespace mox::core
