#pragma once

#include "zyn/operations/computed_column.h"

/// Computes the columns row by row, through cursors: the road for columns of foreign make.
///
/// Throws as moxDataMatrixExpressionProcessor does.
void runRowByRow(ComputedColumns& columns);
