#include "cli/output/csv_export.h"

#include <charconv>
#include <stdexcept>
#include <string>

#include "cli/output/plain_formatter.h"
#include "cli/output/shown_column.h"

namespace mox::cli {

namespace {

/// A column under its number. Nothing else is asked of it.
class NumberedColumn final : public ShownColumn {
 public:
  NumberedColumn(std::shared_ptr<moxDataMatrixColumn const> column, unsigned int number)
      : ShownColumn(std::move(column)), number_(std::to_string(number)) {}

  std::string name() const override { return "zynNumberedColumn"; }
  std::string getName() const override { return number_; }
  std::string getValue(unsigned int /*row*/) const override { return {}; }

 private:
  std::string number_;
};

/// A matrix whose columns are found by their numbers. An exporter finds columns by name, and names
/// may repeat: each would be written as the first of that name. Only read.
class NumberedMatrix final : public moxDataMatrix {
 public:
  explicit NumberedMatrix(std::shared_ptr<moxDataMatrix> matrix) : matrix_(std::move(matrix)) {}

  std::string name() const override { return "zynNumberedMatrix"; }

  std::shared_ptr<moxDataMatrixColumn> columnAt(unsigned int index) override {
    return numbered(index);
  }
  std::shared_ptr<moxDataMatrixColumn const> columnAt(unsigned int index) const override {
    return numbered(index);
  }
  std::shared_ptr<moxDataMatrixColumn> columnByName(std::string const& number) override {
    return matrix_->columnAt(static_cast<unsigned int>(getColumnIndexByName(number)));
  }
  std::shared_ptr<moxDataMatrixColumn const> columnByName(
      std::string const& number) const override {
    return matrix_->columnAt(static_cast<unsigned int>(getColumnIndexByName(number)));
  }
  int getColumnIndexByName(std::string const& number) const override {
    int index = -1;
    std::from_chars(number.data(), number.data() + number.size(), index);
    return index;
  }
  unsigned int columnCount() const override { return matrix_->columnCount(); }
  unsigned int rowCount() const override { return matrix_->rowCount(); }
  std::shared_ptr<moxDataMatrixRow> begin() const override { return matrix_->begin(); }

  void addColumn(std::shared_ptr<moxDataMatrixColumn> /*column*/) override { refuse(); }
  void clearData() override { refuse(); }
  void reserve(unsigned int /*rows*/) override { refuse(); }
  bool appendNullRow() override { refuse(); }
  void dropColumn(std::shared_ptr<moxDataMatrixColumn const> /*column*/) override { refuse(); }
  void orderColumnsByName(std::vector<std::string> const& /*columnNames*/) override { refuse(); }

 private:
  [[noreturn]] static void refuse() {
    throw std::logic_error("a result that is being written does not change");
  }

  std::shared_ptr<moxDataMatrixColumn> numbered(unsigned int index) const {
    auto const column = matrix_->columnAt(index);
    return column ? std::make_shared<NumberedColumn>(column, index) : nullptr;
  }

  std::shared_ptr<moxDataMatrix> matrix_;
};

std::shared_ptr<ColumnFormatter> formatterOf(moxDataMatrixColumn const& column,
                                             std::string const& name, bool formatted) {
  auto const own = column.getFormatter();
  return formatted && own ? makeBorrowedFormatter(name, own) : makePlainFormatter(name, column);
}

void describeColumns(moxDataMatrixExporter& exporter, moxDataMatrix const& matrix, bool formatted) {
  for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
    auto const number = std::to_string(i);
    exporter.addFormatter(formatterOf(*matrix.columnAt(i), number, formatted));
    exporter.setColumnFormatter(number, number);
  }
}

}  // namespace

void exportCsv(moxDataMatrixExporter& exporter, std::shared_ptr<moxDataMatrix> const& matrix,
               OutputBuffer& out, bool formatted, CsvFormat::Choices choices) {
  exporter.setOutputFormat(CsvFormat::kRegisteredName);
  auto const format = std::dynamic_pointer_cast<CsvFormat>(exporter.getOutputFormat());
  if (!format) {
    throw std::logic_error("another format goes by the name of the program's");
  }
  format->setOutput(out);
  format->setChoices(std::move(choices));
  auto const numbered = std::make_shared<NumberedMatrix>(matrix);
  exporter.setSampleDataMatrix(numbered);
  describeColumns(exporter, *matrix, formatted);
  exporter.exportToFile({}, numbered, true, true);
}

}  // namespace mox::cli
