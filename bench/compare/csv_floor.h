#pragma once

#include <string>

#include "compare/floor_table.h"

namespace bench {

/// Writes number;amount;day;code;description;rating, a line a row: amounts as 1.234.567,89, days as
/// 05/03/2024, nulls as nothing. Throws std::runtime_error.
void writeCsv(FloorTable const& table, std::string const& fileName);

}  // namespace bench
