#include "zyn/operations/export_row.h"

namespace DME::Internals {

ExportColumn::ExportColumn(std::shared_ptr<moxDataMatrixColumn> const& column,
                           std::shared_ptr<moxGenericFormatter const> formatter, std::string header)
    : cursor_(column->begin()),
      header_(header.empty() ? column->getName() : std::move(header)),
      formatter_(std::move(formatter)),
      text_(column, formatter_) {}

std::shared_ptr<moxDataMatrixExporterColumn> ExportRow::column(unsigned int index) const {
  return index < columns_.size() ? columns_[index] : nullptr;
}

bool ExportRow::next() {
  if (row_ + 1 >= rowCount()) {
    return false;
  }
  ++row_;
  for (auto const& column : columns_) {
    column->goTo(row_);
  }
  return true;
}

}  // namespace DME::Internals
