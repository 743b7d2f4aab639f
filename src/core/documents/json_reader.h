#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "core/documents/json_values.h"

namespace mox::core {

/// How many values a document may hold: each costs some hundred bytes once it is read.
constexpr std::size_t kMaxJsonValues = 1'000'000;

/// The one value that the text is. Throws DocumentError with line and column.
std::shared_ptr<JsonValue> readJson(std::string_view text);

}  // namespace mox::core
