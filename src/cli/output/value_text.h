#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "mox/core/datetime.h"

namespace mox::cli {

/// Enough for every text of formatDouble.
inline constexpr std::size_t kLongestDouble = 40;

/// Writes the shortest digits that read back as the same number, and gives the end. From 1e-5 up to
/// 1e16 they are written out, beyond with an exponent. "NaN", "Infinity" and "-Infinity" for what
/// is no finite number.
char* formatDouble(char* first, double value);

/// "YYYY-MM-DD", with `withTime` followed by " HH:MM:SS". Precondition: the moment is not empty.
std::string formatMoment(datetime_t const& moment, bool withTime);

/// Bytes as base64 with padding.
std::string base64(std::string_view bytes);

}  // namespace mox::cli
