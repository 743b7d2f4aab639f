#pragma once

#include <string>
#include <variant>

#include "mox/core/date.h"

namespace mox::cli {

struct NullValue {
  bool operator==(NullValue const&) const = default;
};

/// A value for a mark of a statement, with the kind by which it is bound.
using BindValue = std::variant<NullValue, int, double, std::string, date_t>;

/// Reads what `--bind` was given: "int:5", "double:2.5", "text:abc", "date:2024-03-05", "null", or
/// a bare value. A bare value is a whole number when it is written like one and fits 32 bits, else
/// a double when it is written like a number, else a text. Numbers that start with a needless zero
/// are texts: they are codes, whose zeros count; and so are whole numbers that a double would
/// round. Throws UsageError.
BindValue parseBindValue(std::string const& text);

}  // namespace mox::cli
