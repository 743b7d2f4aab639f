#include "cli/output/formatted_column.h"

#include "cli/output/column_visit.h"
#include "cli/output/shown_column.h"
#include "mox/zyn/format/generic_formatter.h"

namespace mox::cli {

namespace {

/// One cursor serves all cells: the writers ask for them row by row, so moving it costs nothing.
class FormattedColumn final : public ShownColumn {
 public:
  FormattedColumn(std::shared_ptr<moxDataMatrixColumn const> values,
                  std::shared_ptr<moxIterator> cell)
      : ShownColumn(std::move(values)),
        cell_(std::move(cell)),
        formatter_(ShownColumn::getFormatter()) {}

  std::string name() const override { return "zynFormattedColumn"; }

  std::string getValue(unsigned int row) const override {
    return cell_->goTo(row) ? formatter_->asString(cell_) : std::string();
  }

 private:
  std::shared_ptr<moxIterator> cell_;
  std::shared_ptr<moxGenericFormatter const> formatter_;
};

}  // namespace

std::vector<std::shared_ptr<moxDataMatrixColumn const>> formattedColumnsOf(
    moxDataMatrix const& matrix) {
  auto columns = columnsOf(matrix);
  auto const firstRow = matrix.begin();  // a row has a cursor a column
  for (unsigned int i = 0; firstRow && i < columns.size(); ++i) {
    if (columns[i]->getFormatter()) {
      columns[i] = std::make_shared<FormattedColumn>(columns[i], firstRow->getIterator(i));
    }
  }
  return columns;
}

moxDataMatrixTypes::Types typeOfValues(moxDataMatrixColumn const& column) {
  auto const* const shown = dynamic_cast<ShownColumn const*>(&column);
  return shown != nullptr ? shown->typeOfValues() : column.getType();
}

}  // namespace mox::cli
