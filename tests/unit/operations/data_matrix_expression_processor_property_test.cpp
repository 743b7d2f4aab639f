#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "mox/zyn/expressions/expression_context.h"
#include "mox/zyn/expressions/expression_operation.h"
#include "mox/zyn/expressions/expression_providers.h"
#include "mox/zyn/expressions/expression_value_stack.h"
#include "mox/zyn/matrix/data_matrix_expression_processor.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

// The processor against the plainest version of it: row by row, and expression by expression, over
// lists of optional numbers.
namespace {

constexpr int kTables = 20'000;
constexpr int kLongTables = 150;  // over several blocks

using Number = std::optional<double>;

struct PlainColumn {
  std::string name;
  bool isInt = false;
  bool isForeign = false;
  bool isText = false;  // counts as 0
  std::vector<Number> cells;
};

struct Entry {
  std::string name;
  std::string expression;
  moxColumnExpression::Tipo tipo;
  int decimals;
  moxColumnExpression::Op operation;
};

struct Table {
  std::vector<PlainColumn> columns;
  std::vector<Entry> entries;
  bool zeroIsNull = false;

  std::size_t rows() const {
    std::size_t rows = columns.front().cells.size();
    for (auto const& column : columns) {
      rows = std::min(rows, column.cells.size());
    }
    return rows;
  }
};

/// Numbers, expressions and whole tables by chance.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : random_(seed) {}

  Table table(std::size_t mostRows) {
    Table table;
    std::size_t const rows = pick(20) == 0 ? 0 : 1 + pick(mostRows);
    for (std::size_t i = 0, count = 1 + pick(4); i < count; ++i) {
      table.columns.push_back(column(pick(8) == 0 ? "c0" : "c" + std::to_string(i), rows));
    }
    for (std::size_t i = 0, count = 1 + pick(4); i < count; ++i) {
      std::string const name = pick(10) == 0 ? "c1" : "n" + std::to_string(i);
      table.entries.push_back({name, expression(i), static_cast<moxColumnExpression::Tipo>(pick(3)),
                               static_cast<int>(pick(5)) - 2,
                               static_cast<moxColumnExpression::Op>(pick(3))});
    }
    table.zeroIsNull = pick(3) == 0;
    return table;
  }

 private:
  std::size_t pick(std::size_t below) { return random_() % below; }

  PlainColumn column(std::string name, std::size_t rows) {
    PlainColumn made{std::move(name), pick(2) == 0, pick(15) == 0, pick(20) == 0, {}};
    std::size_t const surplus = pick(6) == 0 ? pick(5) : 0;
    bool const hasNulls = pick(3) != 0;
    for (std::size_t row = 0; row < rows + surplus; ++row) {
      bool const isNull = hasNulls && pick(6) == 0;
      made.cells.push_back(isNull ? Number() : Number(made.isInt ? wholeNumber() : number()));
    }
    return made;
  }

  double wholeNumber() {
    return pick(20) == 0 ? static_cast<int>(random_()) : static_cast<int>(pick(9)) - 3;
  }

  double number() {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    switch (pick(24)) {
      case 0:
        return std::nan("");
      case 1:
        return pick(2) == 0 ? kInfinity : -kInfinity;
      case 2:
        return -0.0;
      case 3:
        return std::bit_cast<double>(random_());
      case 4:
        return static_cast<double>(pick(1000)) + 0.5;
      default:
        return static_cast<double>(pick(2000)) / 100 - 7;
    }
  }

  /// A text that is an expression as a rule; sometimes a piece is lost or doubled.
  std::string expression(std::size_t index) {
    std::string text = sum(index, 3);
    if (pick(25) == 0 && !text.empty()) {
      std::size_t const place = pick(text.size());
      pick(2) == 0 ? text.erase(place, 1) : text.insert(place, 1, text[pick(text.size())]);
    }
    return text;
  }

  std::string sum(std::size_t index, int depth) {
    std::string text = value(index, depth);
    for (std::size_t i = pick(3); i > 0; --i) {
      text += operation() + value(index, depth);
    }
    return text;
  }

  /// Divisions are rare, as every other one would be by zero somewhere.
  std::string operation() {
    constexpr char const* kOperations[] = {"+", "-", "*", "+", " - ", "*", "^", "%", "/"};
    return kOperations[pick(9)];
  }

  std::string value(std::size_t index, int depth) {
    switch (pick(depth > 0 ? 10 : 6)) {
      case 0:
      case 1:
        return constant();
      case 6:
        return "(" + sum(index, depth - 1) + ")";
      case 7:
        return "abs(" + sum(index, depth - 1) + ")";
      case 8:
        return placesFunction(index, depth - 1);
      case 9:
        return columnName(index) + "(" + sum(index, depth - 1) + ")";
      default:
        return columnName(index) + "(" + offset() + ")";
    }
  }

  std::string constant() {
    constexpr char const* kConstants[] = {"0",   "1",  "2",   "3",    "0.5",  "10",
                                          "1.5", ".7", "100", "0.01", "1.2.3"};
    return kConstants[pick(11)];
  }

  std::string placesFunction(std::size_t index, int depth) {
    constexpr char const* kFunctions[] = {"floor(", "round(", "ceil("};
    std::string const places = pick(4) == 0 ? sum(index, depth) : constant();
    return kFunctions[pick(3)] + sum(index, depth) + "," + places + ")";
  }

  std::string offset() {
    constexpr char const* kOffsets[] = {"0", "0",   "0",   "0",  "1",   "1",
                                        "2", "0-1", "1.9", "40", "1030"};
    return kOffsets[pick(11)];
  }

  /// Of a column before, itself, or seldom one that is not there.
  std::string columnName(std::size_t index) {
    if (pick(3) == 0) {
      return "n" + std::to_string(pick(60) == 0 ? index + 1 : pick(index + 1));
    }
    return "c" + std::to_string(pick(60) == 0 ? 9 : pick(2));
  }

  std::mt19937_64 random_;
};

/// What the plain version reads: all columns, and the row where it stands.
struct PlainState {
  std::vector<PlainColumn> columns;
  std::size_t row = 0;
};

class PlainRead final : public moxExpressionOperation {
 public:
  PlainRead(PlainState const& state, std::size_t column) : state_(state), column_(column) {}

  bool leftAssociative() const override { return false; }
  int precedence() const override { return 0; }
  bool isOperator() const override { return false; }
  bool isFunction() const override { return true; }

  bool exec(moxExpressionValueStack* stack) override {
    double offset = 0;
    if (!stack->pop(&offset)) {
      return false;
    }
    PlainColumn const& column = state_.columns[column_];
    double const target = static_cast<double>(state_.row) - std::trunc(offset);
    bool const isRow = target >= 0 && target < static_cast<double>(column.cells.size());
    Number const found = isRow ? column.cells[static_cast<std::size_t>(target)] : Number();
    stack->push(column.isText ? 0.0 : found.value_or(0.0));
    return true;
  }

 private:
  PlainState const& state_;
  std::size_t column_;
};

class PlainProvider final : public moxExpressionFunctionProvider {
 public:
  explicit PlainProvider(PlainState const& state) : state_(state) {}

  moxExpressionOperation* getFunction(std::string const& name) override {
    for (std::size_t i = 0; i < state_.columns.size(); ++i) {
      if (state_.columns[i].name == name) {
        return new PlainRead(state_, i);
      }
    }
    throw moxDefaultErrorImpl<moxError>("Coluna não encontrada " + name);
  }

 private:
  PlainState const& state_;
};

int plainInt(double value) {
  if (std::isnan(value)) {
    return 0;
  }
  return static_cast<int>(std::trunc(std::min(std::max(value, -2147483648.0), 2147483647.0)));
}

Number plainCell(Entry const& entry, double value, bool zeroIsNull) {
  if (entry.tipo == moxColumnExpression::kInteiro) {
    int const whole = plainInt(value);
    return whole == 0 && zeroIsNull ? Number() : Number(whole);
  }
  if (value == 0 && zeroIsNull) {
    return {};
  }
  if (entry.decimals < 0) {
    return value;
  }
  double const scale = std::pow(10.0, entry.decimals);
  return entry.operation == moxColumnExpression::kArredonda ? std::round(value * scale) / scale
                                                            : std::trunc(value * scale) / scale;
}

class PlainProcessor {
 public:
  PlainProcessor(TestHost& host, Table const& table) : host_(host), table_(table) {}

  /// The failure's message, empty for none.
  std::string process() {
    state_.columns = table_.columns;
    try {
      run();
    } catch (moxError const& error) {
      return error.errorMessage();
    }
    return {};
  }

  std::vector<PlainColumn> const& columns() const { return state_.columns; }

 private:
  void run() {
    std::size_t const rows = table_.rows();
    for (Entry const& entry : table_.entries) {
      state_.columns.push_back({entry.name, entry.tipo == moxColumnExpression::kInteiro, false,
                                false, std::vector<Number>(rows)});
      if (rows != 0) {
        contexts_.push_back(host_.get<moxExpressionContext>("moxExpressionContext"));
        contexts_.back()->addFunctionProvider(&provider_);
        isParsed_.push_back(contexts_.back()->parse(entry.expression));
      }
    }
    for (state_.row = 0; state_.row < rows; ++state_.row) {
      for (std::size_t i = 0; i < table_.entries.size(); ++i) {
        compute(i);
      }
    }
  }

  void compute(std::size_t index) {
    Entry const& entry = table_.entries[index];
    bool ok = false;
    double const value = isParsed_[index] ? contexts_[index]->exec(&ok) : 0;
    if (!ok) {
      throw moxDefaultErrorImpl<moxError>("Erro ao processar expressão para coluna '" + entry.name +
                                          "': " + contexts_[index]->getError());
    }
    state_.columns[table_.columns.size() + index].cells[state_.row] =
        plainCell(entry, value, table_.zeroIsNull);
  }

  TestHost& host_;
  Table const& table_;
  PlainState state_;
  PlainProvider provider_{state_};
  std::vector<std::shared_ptr<moxExpressionContext>> contexts_;
  std::vector<bool> isParsed_;
};

std::vector<std::optional<int>> asInts(std::vector<Number> const& cells) {
  std::vector<std::optional<int>> made;
  for (Number const& cell : cells) {
    made.push_back(cell ? std::optional(static_cast<int>(*cell)) : std::nullopt);
  }
  return made;
}

std::shared_ptr<moxDataMatrixColumn> made(PlainColumn const& plain) {
  if (plain.isText) {
    return column(plain.name, {moxDataMatrixTypes::Text,
                               std::vector<Cell>(plain.cells.size(), Cell(std::string("5")))});
  }
  if (plain.isInt) {
    auto const cells = asInts(plain.cells);
    return plain.isForeign ? std::make_shared<ForeignIntColumn>(plain.name, cells)
                           : column(plain.name, ints(cells));
  }
  return plain.isForeign ? std::make_shared<ForeignDoubleColumn>(plain.name, plain.cells)
                         : column(plain.name, doubles(plain.cells));
}

std::shared_ptr<moxDataMatrix> matrixOf(TestHost& host, Table const& table) {
  auto matrix = host.get<moxDataMatrix>("moxDataMatrix");
  for (PlainColumn const& plain : table.columns) {
    matrix->addColumn(made(plain));
  }
  return matrix;
}

std::string processedBy(TestHost& host, Table const& table,
                        std::shared_ptr<moxDataMatrix> const& matrix) {
  auto const processor =
      host.get<moxDataMatrixExpressionProcessor>("moxDataMatrixExpressionProcessor");
  for (Entry const& entry : table.entries) {
    processor->addColumn(entry.name, entry.expression, entry.tipo, entry.decimals, entry.operation);
  }
  processor->setConvertZeroToNull(table.zeroIsNull);
  try {
    processor->processDataMatrix(matrix);
  } catch (moxError const& error) {
    return error.errorMessage();
  }
  return {};
}

/// Bit by bit, but for a NaN, of which any is as good as another.
bool isSame(double left, double right) {
  return (std::isnan(left) && std::isnan(right)) ||
         std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

Number numberAt(moxDataMatrixColumn const& column, unsigned int row) {
  Cell const cell = cellAt(column, row);
  if (auto const* const whole = std::get_if<int>(&cell)) {
    return *whole;
  }
  return cell == Cell(null) ? Number() : Number(std::get<double>(cell));
}

testing::AssertionResult isSame(PlainColumn const& expected, moxDataMatrixColumn const& found) {
  auto const type = expected.isInt ? moxDataMatrixTypes::Int : moxDataMatrixTypes::Double;
  if (found.getName() != expected.name || found.getType() != type ||
      found.numRows() != expected.cells.size()) {
    return testing::AssertionFailure() << "another name, kind or length: " << expected.name;
  }
  for (unsigned int row = 0; row < found.numRows(); ++row) {
    Number const cell = numberAt(found, row);
    Number const wanted = expected.cells[row];
    if (cell.has_value() != wanted.has_value() || (cell && !isSame(*cell, *wanted))) {
      return testing::AssertionFailure()
             << expected.name << ", row " << row << ": " << (cell ? std::to_string(*cell) : "null")
             << " instead of " << (wanted ? std::to_string(*wanted) : "null");
    }
  }
  return testing::AssertionSuccess();
}

std::string asText(Table const& table) {
  std::string text = table.zeroIsNull ? "zeros are nulls" : "zeros stay";
  for (Entry const& entry : table.entries) {
    text += "\n" + entry.name + " = " + entry.expression + "  kind " + std::to_string(entry.tipo) +
            ", decimals " + std::to_string(entry.decimals) + ", operation " +
            std::to_string(entry.operation);
  }
  return text;
}

/// Counts what befell the tables, so that a test can tell that all of it was tried.
struct Tally {
  int fine = 0;
  int divided = 0;
  int missing = 0;
  int failed = 0;

  void add(std::string const& error) {
    if (error.empty()) {
      ++fine;
    } else if (error == "Divisão por zero.") {
      ++divided;
    } else {
      ++(error.starts_with("Coluna") ? missing : failed);
    }
  }
};

class DataMatrixExpressionProcessorProperty : public testing::Test {
 protected:
  void check(Table const& table, std::uint64_t seed) {
    PlainProcessor plain(host_, table);
    auto const expected = plain.process();
    auto const matrix = matrixOf(host_, table);
    auto const found = processedBy(host_, table, matrix);
    tally_.add(expected);
    EXPECT_EQ(found, expected) << "seed " << seed << "\n" << asText(table);
    ASSERT_EQ(matrix->columnCount(), plain.columns().size()) << "seed " << seed;
    for (std::size_t i = table.columns.size(); i < plain.columns().size(); ++i) {
      EXPECT_TRUE(isSame(plain.columns()[i], *matrix->columnAt(static_cast<unsigned int>(i))))
          << "seed " << seed << "\n"
          << asText(table);
    }
  }

  void checkMany(int count, std::size_t mostRows, std::uint64_t firstSeed) {
    for (int i = 0; i < count && !HasFailure(); ++i) {
      std::uint64_t const seed = firstSeed + static_cast<std::uint64_t>(i);
      check(Chance(seed).table(mostRows), seed);
    }
  }

  TestHost host_;
  Tally tally_;
};

TEST_F(DataMatrixExpressionProcessorProperty, IsThePlainVersionOnSmallTables) {
  checkMany(kTables, 12, 1);

  EXPECT_GT(tally_.fine, kTables / 3);
  EXPECT_GT(tally_.divided, kTables / 50);
  EXPECT_GT(tally_.missing, kTables / 200);
  EXPECT_GT(tally_.failed, kTables / 100);
}

TEST_F(DataMatrixExpressionProcessorProperty, IsThePlainVersionOnLongTables) {
  checkMany(kLongTables, 4000, 1'000'000);

  EXPECT_GT(tally_.fine, kLongTables / 5);
}

}  // namespace
