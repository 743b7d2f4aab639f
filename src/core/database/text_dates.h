#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "mox/core/date.h"
#include "mox/core/datetime.h"

namespace mox::core {

/// Reads exactly "YYYY-MM-DD", or that with "HH:MM:SS" behind a blank or a "T" and a fraction of
/// digits, which is dropped. Nothing for any other text, and for a day that the calendar has not.
/// Allocates nothing.
std::optional<datetime_t> parseIsoDate(std::string_view text) noexcept;

/// The same with the empty moment for nothing: for loops over many cells.
datetime_t isoDateOrEmpty(std::string_view text) noexcept;

/// Reads what MariaDB takes for a date: also parts without leading zeros, any punctuation between
/// them, two digits of a year (70 to 99 are 19xx), and undivided digits (YYYYMMDD, YYMMDD, with
/// hhmmss behind). What follows the last part is ignored. Nothing for a day that the calendar has
/// not.
std::optional<datetime_t> parseDateText(std::string_view text) noexcept;

/// "YYYY-MM-DD" and "YYYY-MM-DD HH:MM:SS"; an empty text for the empty date.
std::string isoText(date_t const& date);
std::string isoText(datetime_t const& moment);

}  // namespace mox::core
