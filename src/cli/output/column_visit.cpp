#include "cli/output/column_visit.h"

namespace mox::cli {

bool hasTimes(moxDataMatrixTypedColumn<datetime_t> const& column) {
  constexpr std::time_t kSecondsADay = 86400;
  for (unsigned int row = 0; row < column.numRows(); ++row) {
    datetime_t const moment = column.getValue(row);
    if (moment && moment.asTime_t() % kSecondsADay != 0) {
      return true;
    }
  }
  return false;
}

std::string_view bytesOf(std::shared_ptr<moxReadBlob> const& blob) {
  if (!blob || blob->size() == 0) {
    return {};
  }
  return {blob->data(), blob->size()};
}

std::vector<std::shared_ptr<moxDataMatrixColumn const>> columnsOf(moxDataMatrix const& matrix) {
  std::vector<std::shared_ptr<moxDataMatrixColumn const>> columns;
  for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
    columns.push_back(matrix.columnAt(i));
  }
  return columns;
}

}  // namespace mox::cli
