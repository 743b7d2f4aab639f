#pragma once

#include <string_view>
#include <variant>

#include "mox/core/date.h"
#include "mox/core/datetime.h"

namespace mox::core {

struct MarkNull {};

struct MarkBytes {
  std::string_view bytes;
};

/// A value for a mark of a statement. Days and moments are not empty; texts and bytes belong to the
/// caller.
using MarkValue =
    std::variant<MarkNull, int, double, std::string_view, MarkBytes, date_t, datetime_t>;

}  // namespace mox::core
