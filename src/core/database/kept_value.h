#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "core/database/mark_value.h"

namespace mox::core {

struct KeptBytes {
  std::string bytes;
};

/// A value for a mark that owns its texts and bytes, for statements that keep it until they are
/// executed.
using KeptValue = std::variant<MarkNull, int, double, std::string, KeptBytes, date_t, datetime_t>;

}  // namespace mox::core
