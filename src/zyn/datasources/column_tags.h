#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "mox/zyn/matrix/data_matrix_types.h"

/// An element's name that stands for a kind of column: the registered name of the matrix's column
/// class. Part of the format of definitions.
struct ColumnTag {
  char const* tag;
  moxDataMatrixTypes::Types type;
};

/// Every tag, by rising number of its kind. Constant, so that definitions may be read in any number
/// of threads.
inline constexpr std::array<ColumnTag, 5> kColumnTags = {{
    {"moxDataMatrixIntColumn", moxDataMatrixTypes::Int},
    {"moxDataMatrixDoubleColumn", moxDataMatrixTypes::Double},
    {"moxDataMatrixTextColumn", moxDataMatrixTypes::Text},
    {"moxDataMatrixDateColumn", moxDataMatrixTypes::Date},
    {"moxDataMatrixBlobColumn", moxDataMatrixTypes::Blob},
}};

/// The kind that a tag stands for; empty for an unknown tag, of which each kind of source makes its
/// own.
std::optional<moxDataMatrixTypes::Types> columnTypeOfTag(std::string_view tag);

/// The tag of a kind; null for a number that is no kind.
char const* tagOfColumnType(moxDataMatrixTypes::Types type);
