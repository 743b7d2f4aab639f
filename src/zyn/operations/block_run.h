#pragma once

#include "zyn/operations/computed_column.h"

/// Computes the columns block by block, each block column by column; the cells, and the failure
/// when there is one, are those of a run row by row. False, and nothing done, when some expression
/// cannot run that way.
///
/// Throws as moxDataMatrixExpressionProcessor does.
bool runOverBlocks(ComputedColumns& columns);
