#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "mox/core/error.h"

namespace mox::core {

/// A place in a text, both parts from 1; the column counts characters.
struct TextPosition {
  std::size_t line = 1;
  std::size_t column = 1;
};

/// The place of the byte at `offset`; beyond the end it is that of the end. `text` is UTF-8, and
/// where it is not, each stray byte counts as it falls.
TextPosition positionAt(std::string_view text, std::size_t offset);

/// A failure of reading a document: "<kind> document, line 3, column 5: <what is wrong>."
class DocumentError : public moxDefaultErrorImpl<moxError> {
 public:
  DocumentError(std::string_view kind, TextPosition where, std::string const& what);

  /// For what is wrong with the document as a whole.
  DocumentError(std::string_view kind, std::string const& what);
};

}  // namespace mox::core
