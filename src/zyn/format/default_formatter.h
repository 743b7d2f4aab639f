#pragma once

#include <memory>

#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/matrix/data_matrix_types.h"

/// A new formatter for cells of which nobody said how they are written: the plain one of their kind
/// of values, days as "%d/%m/%Y". Empty for blobs, as bytes are nothing to look at.
std::shared_ptr<moxGenericFormatter> newFormatterFor(moxDataMatrixTypes::Types type);
