#include "cli/output/formatted_column.h"

#include <stdexcept>

#include "cli/output/column_visit.h"
#include "mox/zyn/format/generic_formatter.h"

namespace mox::cli {

namespace {

/// A view of texts that cannot be written to. One cursor serves all cells: the writers ask for them
/// row by row, so moving it costs nothing.
class FormattedColumn final : public moxDataMatrixTextColumn {
 public:
  FormattedColumn(std::shared_ptr<moxDataMatrixColumn const> values,
                  std::shared_ptr<moxIterator> cell)
      : values_(std::move(values)), cell_(std::move(cell)), formatter_(values_->getFormatter()) {}

  std::string name() const override { return "zynFormattedColumn"; }
  unsigned int numRows() const override { return values_->numRows(); }
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Text; }
  bool isNull(unsigned int row) const override { return values_->isNull(row); }
  std::string getName() const override { return values_->getName(); }
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return formatter_; }

  std::string getValue(unsigned int row) const override {
    return cell_->goTo(row) ? formatter_->asString(cell_) : std::string();
  }

  void reserve(int /*rows*/) override { refuse(); }
  void clear() override { refuse(); }
  std::shared_ptr<moxIterator> begin() override { refuse(); }
  void setName(std::string const& /*name*/) override { refuse(); }
  void appendNull() override { refuse(); }
  void appendValue(std::string const& /*value*/) override { refuse(); }
  void setFormatter(std::shared_ptr<moxGenericFormatter const> /*formatter*/) override { refuse(); }

  moxDataMatrixTypes::Types typeOfValues() const { return values_->getType(); }

 private:
  [[noreturn]] static void refuse() {
    throw std::logic_error("formatted texts are only read, by their rows");
  }

  std::shared_ptr<moxDataMatrixColumn const> values_;
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
  auto const* const formatted = dynamic_cast<FormattedColumn const*>(&column);
  return formatted != nullptr ? formatted->typeOfValues() : column.getType();
}

}  // namespace mox::cli
