#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "compare/floor_table.h"

namespace bench {

/// What a table says of itself in a few whole numbers below 2^53, which every peer can work out:
/// a peer that gives other sums did other work.
using CheckSums = std::map<std::string, std::int64_t>;

/// Sums over the columns, whatever the order of the rows; "whole" tells whether the cells of a row
/// still stand together.
CheckSums contentSums(FloorTable const& table);

/// The same with "order": which values of the sort columns stand where. Rows with equal keys may
/// change places.
CheckSums sumsSortedByNumbers(FloorTable const& table);
CheckSums sumsSortedByCode(FloorTable const& table);

/// Throws std::runtime_error naming the first sum that differs or is not there.
void requireEqual(CheckSums const& expected, CheckSums const& found);

}  // namespace bench
