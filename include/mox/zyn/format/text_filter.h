#pragma once

#include <string>

#include "mox/zyn/format/text_formatter.h"

/// Cleans texts for systems that take little: accents off, upper case, no blanks at the ends; then
/// prefix and suffix, also around an empty text. Registered as "moxTextFilter". In XML its settings
/// are the attributes `name` (the description), `prefix`, `suffix`, and `upper`, `asciiOnly` and
/// `trim`, which are "1" or "0" and off by default.
class moxTextFilter : public virtual moxTextAsString {
 public:
  /// With `enable`, letters lose their accents, and then everything is removed that `pattern`
  /// matches, an ECMAScript regular expression; "[^a-zA-Z0-9 ]" from the start. The pattern is
  /// not kept in XML and must be the program's own: a pattern can make matching as slow, and
  /// as deep, as its author likes. A pattern that is none makes asString throw std::regex_error.
  virtual void setAsciiOnly(bool enable, std::string const& pattern) = 0;

  /// Whether white space is removed at both ends.
  virtual void setTrim(bool enable) = 0;
};
