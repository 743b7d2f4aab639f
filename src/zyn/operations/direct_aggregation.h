#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix.h"

class moxCommonAggregationFunction;

/// What a moxDataMatrixAggregator gives for these keys and functions, without a count: the keys,
/// then each function's column. It is had in one pass where the keys have few combinations
/// (DirectKeys) and the functions are the module's own; else the result is empty, and the
/// aggregator is to be asked.
///
/// The matrix has all columns named; a function has its source and target column set.
std::shared_ptr<moxDataMatrix> aggregatedDirectly(
    moxDataMatrix const& matrix, std::vector<std::string> const& keyNames,
    std::vector<std::shared_ptr<moxCommonAggregationFunction>> const& functions);
