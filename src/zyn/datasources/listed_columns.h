#pragma once

#include <stdexcept>
#include <string>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/matrix/data_matrix_types.h"

/// Definitions that list columns of other sources have an element for each, named like the class of
/// the column, which tells the kind of its values.

/// An element that is named like none of these classes. Callers who know the table behind it catch
/// std::out_of_range; who reads files of definitions catches moxError, which tells the place.
class UnknownColumnClass final : public std::out_of_range, public moxDefaultErrorImpl<moxError> {
 public:
  explicit UnknownColumnClass(moxXMLNode const& element);
};

/// The kind that the element stands for. Throws UnknownColumnClass for another element, also for
/// that of a blob: blobs are no part of such lists.
moxDataMatrixTypes::Types listedColumnType(moxXMLNode const& element);

/// The name of the element. Throws std::out_of_range for a kind that has none.
char const* listedColumnElement(moxDataMatrixTypes::Types type);
