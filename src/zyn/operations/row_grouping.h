#pragma once

#include <cstdint>
#include <vector>

#include "zyn/matrix/column_copy.h"
#include "zyn/matrix/key_groups.h"

/// The groups of the first `rows` rows, by keys that are columns of the module's own with that many
/// rows at least. Each row stays in the group of the row before it when the keys agree with those
/// of the group's first row; else it goes to the first such group; else it begins a new one.
/// Without keys all rows are one group.
///
/// Only a NaN, which agrees with every number, makes a difference between staying and the first
/// group. Without one the rows are hashed; with one each different key looks through the groups
/// once.
KeyGroups groupRows(std::vector<MatrixColumn> const& keys, std::uint32_t rows);
