#include "zyn/datasources/column_tags.h"

std::optional<moxDataMatrixTypes::Types> columnTypeOfTag(std::string_view tag) {
  for (auto const& row : kColumnTags) {
    if (tag == row.tag) {
      return row.type;
    }
  }
  return {};
}

char const* tagOfColumnType(moxDataMatrixTypes::Types type) {
  for (auto const& row : kColumnTags) {
    if (row.type == type) {
      return row.tag;
    }
  }
  return nullptr;
}
