#pragma once

#include <string>

#include "mox/zyn/format/generic_formatter.h"

/// Dresses texts. Takes cells of text columns, and blobs that hold at least one byte.
class moxTextFormatter : public virtual moxGenericFormatter {
 public:
  using moxGenericFormatter::asString;

  /// The text with what the formatter puts around it.
  virtual std::string asString(std::string const& text) const = 0;
};

/// Prefix, text, suffix, and the empty text for an empty one. Registered as "moxTextFormatter". In
/// XML its settings are the attributes `description`, `prefix` and `suffix`, all empty by default.
class moxTextAsString : public virtual moxTextFormatter {};
