#include "mox/zyn/matrix/data_matrix_pivoting.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <stdexcept>

#include "core/app/application.h"
#include "mox/core/error.h"
#include "mox/zyn/format/integral_formatter.h"
#include "mox/zyn/format/text_formatter.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "support/matrix_builder.h"
#include "support/random_tables.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Matrix = std::shared_ptr<moxDataMatrix>;
using Pivoting = std::shared_ptr<moxDataMatrixPivoting>;
using Cursor = std::shared_ptr<moxIterator>;
using CellData = moxDataMatrixPivoting::CellData;

Pivoting pivoting(TestHost& host, std::vector<std::string> const& rows,
                  std::vector<std::string> const& columns, std::vector<CellData> const& cells) {
  auto made = host.get<moxDataMatrixPivoting>("moxDataMatrixPivoting");
  for (auto const& row : rows) {
    made->addRow(row);
  }
  for (auto const& column : columns) {
    made->addColumn(column, nullptr);
  }
  for (auto const& cell : cells) {
    made->addCell(cell.columnName, cell.aggregation);
  }
  return made;
}

/// What a failing process() says.
std::string failureOf(Pivoting const& engine, Matrix const& input) {
  try {
    engine->process(input, nullptr);
  } catch (moxError const& error) {
    return error.errorMessage();
  }
  return "no failure";
}

/// The cross table as a clerk would make it: all combinations first, then row by row, looking for
/// the row and through the combinations, and the unused ones struck out in the end.
class PlainPivoting {
 public:
  PlainPivoting(TestHost& host, Matrix const& input, std::vector<std::string> const& rows,
                std::vector<std::string> const& columns, std::vector<CellData> const& cells)
      : source_(aggregated(host, input, rows, columns, cells)) {
    for (auto const& row : rows) {
      auto const from = source_->columnByName(row);
      auto const to = column(row, {from->getType(), {}});
      result_->addColumn(to);
      keys_.emplace_back(from->begin(), to->begin());
    }
    combine(columns, host);
    for (auto const& combination : combinations_) {
      for (auto const& cell : cells) {
        addRecord(combination, cell.columnName, cells.size());
      }
    }
  }

  Matrix result() {
    for (unsigned int row = 0; row < source_->rowCount(); ++row) {
      take(row);
    }
    for (auto const& record : records_) {
      if (!record.used) {
        result_->dropColumn(record.target);
      }
    }
    return result_;
  }

 private:
  struct Combination {
    std::string label;
    std::vector<std::pair<Cursor, Cursor>> pairs;  // the column, the value
  };
  struct Record {
    Combination combination;
    Cursor from;
    std::shared_ptr<moxDataMatrixColumn> target;
    bool used = false;
  };

  static Matrix aggregated(TestHost& host, Matrix const& input,
                           std::vector<std::string> const& rows,
                           std::vector<std::string> const& columns,
                           std::vector<CellData> const& cells) {
    auto const engine = host.get<moxDataMatrixAggregator>("moxDataMatrixAggregator");
    for (auto const* const names : {&rows, &columns}) {
      for (auto const& name : *names) {
        engine->pushIndexColumn(name);
      }
    }
    for (auto const& cell : cells) {
      auto const function = host.get<moxCommonAggregationFunction>(cell.aggregation);
      function->setSourceColumn(cell.columnName);
      function->setTargetColumn(cell.columnName);
      engine->addFunction(function);
    }
    return engine->aggregate(input, false, "");
  }

  std::vector<Cursor> distinctValuesOf(moxDataMatrixColumn& column) const {
    std::vector<Cursor> kept;
    Cursor const cursor = column.begin();
    for (unsigned int row = 0; row < source_->rowCount(); ++row) {
      cursor->goTo(row);
      bool known = false;
      for (auto const& value : kept) {
        known = known || cursor->equals(value);
      }
      if (!known) {
        kept.push_back(cursor->clone());
      }
    }
    return kept;
  }

  static std::string labelOf(TestHost& host, Cursor const& value) {
    constexpr std::array kFormatters{"moxIntegralFormatter", "moxDecimalFormatter",
                                     "moxTextFormatter", "moxDateFormatter", "moxTextFormatter"};
    auto const formatter = host.get<moxGenericFormatter>(kFormatters[value->getType()]);
    if (value->getType() == moxDataMatrixTypes::Blob) {
      return "";
    }
    if (auto const date = std::dynamic_pointer_cast<moxIteratorBase<datetime_t>>(value)) {
      return value->isNull() ? "" : "05/03/2024";  // all days of the random tables
    }
    return formatter->asString(value);
  }

  void combine(std::vector<std::string> const& columns, TestHost& host) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      auto const from = source_->columnByName(columns[i]);
      std::vector<Combination> const earlier =
          i == 0 ? std::vector<Combination>(1) : std::move(combinations_);
      combinations_.clear();
      for (auto const& before : earlier) {
        for (auto const& value : distinctValuesOf(*from)) {
          Combination made = before;
          made.label += (i == 0 ? "" : " ") + labelOf(host, value);
          made.pairs.emplace_back(from->begin(), value);
          combinations_.push_back(made);
        }
      }
    }
  }

  void addRecord(Combination const& combination, std::string const& name, std::size_t cells) {
    auto const from = source_->columnByName(name);
    std::string const label = combination.label + (cells == 1 ? "" : " " + name);
    Record record{combination, from->begin(), column(label, {from->getType(), {}})};
    result_->addColumn(record.target);
    records_.push_back(record);
  }

  bool keysAgree() const {
    for (auto const& [from, to] : keys_) {
      if (!from->equals(to)) {
        return false;
      }
    }
    return true;
  }

  void goTo(unsigned int group) {
    for (auto const& pair : keys_) {
      pair.second->goTo(group);
    }
    group_ = group;
  }

  void findRow() {
    if (groups_ != 0 && keysAgree()) {
      return;
    }
    for (unsigned int group = 0; group < groups_; ++group) {
      goTo(group);
      if (keysAgree()) {
        return;
      }
    }
    result_->appendNullRow();
    goTo(groups_++);
    for (auto const& [from, to] : keys_) {
      to->set(from);
    }
  }

  void take(unsigned int row) {
    for (auto const& pair : keys_) {
      pair.first->goTo(row);
    }
    findRow();
    for (auto& record : records_) {
      bool agrees = true;
      for (auto const& [from, value] : record.combination.pairs) {
        from->goTo(row);
        agrees = agrees && from->equals(value);
      }
      if (agrees) {
        record.used = true;
        record.from->goTo(row);
        Cursor const to = record.target->begin();
        to->goTo(group_);
        to->set(record.from);
      }
    }
  }

  Matrix source_;
  Matrix result_ = matrix({});
  std::vector<std::pair<Cursor, Cursor>> keys_;
  std::vector<Combination> combinations_;
  std::vector<Record> records_;
  unsigned int groups_ = 0;
  unsigned int group_ = 0;
};

}  // namespace

TEST(DataMatrixPivoting, TurnsValuesIntoColumns) {
  TestHost host;
  auto const input = matrix({{"aluno", texts("Ana", "Bia", "Ana", "Ana")},
                             {"bimestre", ints(2, 1, 1, 2)},
                             {"nota", doubles(7.0, 8.0, 9.0, 0.5)}});

  EXPECT_THAT(
      pivoting(host, {"aluno"}, {"bimestre"}, {{"nota", "moxDoubleSum"}})->process(input, nullptr),
      isMatrix(
          {{"aluno", texts("Ana", "Bia")}, {"2", doubles(7.5, null)}, {"1", doubles(9.0, 8.0)}}));
}

TEST(DataMatrixPivoting, AnEmptySourceGivesTheKeysWithoutRows) {
  TestHost host;
  auto const input = matrix({{"r", texts()}, {"c", ints()}, {"v", doubles()}});
  EXPECT_THAT(pivoting(host, {"r"}, {"c"}, {{"v", "moxDoubleSum"}})->process(input, nullptr),
              isMatrix({{"r", texts()}}));
}

TEST(DataMatrixPivoting, WithoutCellsThereAreTheKeysARowEach) {
  TestHost host;
  auto const input = matrix({{"r", texts("a", "b", "a")}, {"c", ints(1, 2, 3)}});
  EXPECT_THAT(pivoting(host, {"r"}, {"c"}, {})->process(input, nullptr),
              isMatrix({{"r", texts("a", "b")}}));
}

TEST(DataMatrixPivoting, EqualLabelsOfDifferentValuesGiveTwoColumnsOfOneName) {
  TestHost host;
  auto const input = matrix({{"c", doubles(1.25, 1.5, null)}, {"v", ints(1, 2, 3)}});
  auto const engine = pivoting(host, {}, {}, {{"v", "moxIntegralSum"}});
  engine->addColumn("c", host.get<moxGenericFormatter>("moxTextFormatter"));
  EXPECT_THAT(engine->process(input, nullptr),
              isMatrix({{"", ints(1)}, {"", ints(2)}, {"", ints(3)}}));
}

TEST(DataMatrixPivoting, CombinationsThatDoNotOccurLeaveNoColumn) {
  TestHost host;
  auto const input =
      matrix({{"p", texts("a", "b", "a")}, {"q", texts("x", "x", "y")}, {"v", ints(1, 2, 3)}});
  EXPECT_THAT(pivoting(host, {}, {"p", "q"}, {{"v", "moxIntegralSum"}})->process(input, nullptr),
              isMatrix({{"a x", ints(1)}, {"a y", ints(3)}, {"b x", ints(2)}}));
}

TEST(DataMatrixPivoting, LabelsAreJoinedByABlank) {
  TestHost host;
  auto const input = matrix({{"ano", ints(2024)}, {"mes", texts("Janeiro")}, {"v", ints(1)}});
  EXPECT_THAT(
      pivoting(host, {}, {"ano", "mes"}, {{"v", "moxIntegralSum"}})->process(input, nullptr),
      isMatrix({{"2024 Janeiro", ints(1)}}));
}

TEST(DataMatrixPivoting, SeveralCellsAreNamedBehindTheLabel) {
  TestHost host;
  auto const input =
      matrix({{"r", ints(1, 1)}, {"c", ints(7, 8)}, {"v", ints(4, 6)}, {"t", texts("x", "y")}});
  EXPECT_THAT(pivoting(host, {"r"}, {"c"}, {{"v", "moxIntegralAvg"}, {"t", "moxTextLast"}})
                  ->process(input, nullptr),
              isMatrix({{"r", ints(1)},
                        {"7 v", ints(4)},
                        {"7 t", texts("x")},
                        {"8 v", ints(6)},
                        {"8 t", texts("y")}}));
}

TEST(DataMatrixPivoting, TwoCellsOnAColumnShareTheFirstAggregation) {
  TestHost host;
  auto const input = matrix({{"c", ints(7, 7)}, {"v", ints(4, 6)}});
  EXPECT_THAT(pivoting(host, {}, {"c"}, {{"v", "moxIntegralSum"}, {"v", "moxIntegralMin"}})
                  ->process(input, nullptr),
              isMatrix({{"7 v", ints(10)}, {"7 v", ints(10)}}));
}

TEST(DataMatrixPivoting, WithoutColumnsThereAreOnlyTheKeys) {
  TestHost host;
  auto const input = matrix({{"r", ints(1, 2)}, {"v", ints(4, 6)}});
  EXPECT_THAT(pivoting(host, {"r"}, {}, {{"v", "moxIntegralSum"}})->process(input, nullptr),
              isMatrix({{"r", ints(1, 2)}}));
}

TEST(DataMatrixPivoting, WithoutRowKeysThereIsOneRow) {
  TestHost host;
  auto const input = matrix({{"c", texts("x", null)}, {"v", ints(4, 6)}});
  EXPECT_THAT(pivoting(host, {}, {"c"}, {{"v", "moxIntegralSum"}})->process(input, nullptr),
              isMatrix({{"x", ints(4)}, {"", ints(6)}}));
}

TEST(DataMatrixPivoting, ANullIsAKeyAndAValue) {
  TestHost host;
  auto const input =
      matrix({{"r", ints(null, 1, null)}, {"c", ints(null, null, 5)}, {"v", ints(1, 2, 3)}});
  EXPECT_THAT(pivoting(host, {"r"}, {"c"}, {{"v", "moxIntegralSum"}})->process(input, nullptr),
              isMatrix({{"r", ints(null, 1)}, {"", ints(1, 2)}, {"5", ints(3, null)}}));
}

TEST(DataMatrixPivoting, ANaNAgreesWithEveryNumber) {
  TestHost host;
  auto const input =
      matrix({{"r", ints(1, 1, 2)}, {"c", doubles(1.0, 2.0, kNaN)}, {"v", ints(1, 2, 3)}});
  EXPECT_THAT(pivoting(host, {"r"}, {"c"}, {{"v", "moxIntegralSum"}})->process(input, nullptr),
              isMatrix({{"r", ints(1, 2)}, {"1", ints(1, 3)}, {"2", ints(2, 3)}}));
}

TEST(DataMatrixPivoting, LabelsAreMadeByTheFormatter) {
  TestHost host;
  auto const formatter = host.get<moxGenericFormatter>("moxIntegralFormatter");
  formatter->setPrefix("turma ");
  auto const engine = pivoting(host, {}, {}, {{"v", "moxIntegralSum"}});
  engine->addColumn("c", formatter);
  EXPECT_THAT(engine->process(matrix({{"c", ints(3)}, {"v", ints(1)}}), nullptr),
              isMatrix({{"turma 3", ints(1)}}));
}

TEST(DataMatrixPivoting, WithoutAFormatterLabelsAreThoseOfTheKindOfValues) {
  TestHost host;
  auto const input = matrix({{"i", ints(1234)},
                             {"n", doubles(12.25)},
                             {"t", texts("x")},
                             {"d", dates("2024-03-05 10:20:30")},
                             {"b", blobs("y")},
                             {"v", ints(1)}});
  EXPECT_THAT(pivoting(host, {}, {"i", "n", "t", "d", "b"}, {{"v", "moxIntegralSum"}})
                  ->process(input, nullptr),
              isMatrix({{"1234 12 x 05/03/2024 ", ints(1)}}));
}

TEST(DataMatrixPivoting, LabelsMayHoldAnyBytes) {
  TestHost host;
  std::string const odd("\0\xff\n;", 4);
  auto const input = matrix({{"", texts(odd, "")}, {"v", ints(1, 2)}});
  EXPECT_THAT(pivoting(host, {}, {""}, {{"v", "moxIntegralSum"}})->process(input, nullptr),
              isMatrix({{odd, ints(1)}, {"", ints(2)}}));
}

TEST(DataMatrixPivoting, TellsWhichColumnOfTheSourceEachKeyCopies) {
  TestHost host;
  auto const input = matrix({{"a", ints(1)}, {"b", texts("x")}, {"v", ints(1)}});
  std::vector<moxDataMatrixPivoting::Relation> relations(1);
  auto const result =
      pivoting(host, {"b", "a"}, {"v"}, {{"v", "moxIntegralSum"}})->process(input, &relations);
  ASSERT_EQ(relations.size(), 3U);
  EXPECT_EQ(relations[1].first, input->columnAt(1));
  EXPECT_EQ(relations[1].second, result->columnAt(0));
  EXPECT_EQ(relations[2].first, input->columnAt(0));
  EXPECT_EQ(relations[2].second, result->columnAt(1));
}

TEST(DataMatrixPivoting, TellsWhichColumnIsMissing) {
  TestHost host;
  auto const input = matrix({{"a", ints(1)}});
  EXPECT_EQ(failureOf(pivoting(host, {"linha"}, {"coluna"}, {}), input),
            "Coluna linha não localizada.");
  EXPECT_EQ(failureOf(pivoting(host, {"a"}, {"coluna"}, {{"nota", "moxDoubleSum"}}), input),
            "Coluna coluna não localizada.");
  EXPECT_EQ(failureOf(pivoting(host, {"a"}, {"a"}, {{"nota", "moxDoubleSum"}}), input),
            "Coluna nota não localizada.");
}

TEST(DataMatrixPivoting, AnUnknownAggregationIsNotFound) {
  TestHost host;
  auto const input = matrix({{"a", ints(1)}});
  EXPECT_THROW(pivoting(host, {"a"}, {}, {{"a", "moxNoSuch"}})->process(input, nullptr),
               moxPluginNotFound);
  EXPECT_THROW(pivoting(host, {"a"}, {}, {{"a", "moxDataMatrix"}})->process(input, nullptr),
               moxPluginNotFound);
  EXPECT_THROW(pivoting(host, {}, {}, {})->process(nullptr, nullptr), std::invalid_argument);
}

TEST(DataMatrixPivoting, RefusesMoreColumnsThanTheApplicationAllows) {
  TestHost host;
  std::vector<std::optional<int>> values;
  for (int i = 0; i <= 10'000; ++i) {
    values.emplace_back(i);
  }
  auto const input = matrix({{"c", ints(values)}, {"d", ints(values)}});
  EXPECT_EQ(failureOf(pivoting(host, {}, {"c", "d"}, {{"c", "moxIntegralSum"}}), input),
            "Resultado grande demais: 10001 colunas, e o limite é 10000.");
}

TEST(DataMatrixPivoting, ManyValuesOfWhichFewMeetAreNotMultiplied) {
  TestHost host;
  std::vector<std::optional<int>> values;
  for (int i = 0; i < 5'000; ++i) {
    values.emplace_back(i);
  }
  auto const input = matrix({{"c", ints(values)}, {"d", ints(values)}, {"e", ints(values)}});
  auto const result =
      pivoting(host, {}, {"c", "d", "e"}, {{"c", "moxIntegralSum"}})->process(input, nullptr);
  ASSERT_EQ(result->columnCount(), 5'000U);
  EXPECT_EQ(result->columnAt(4'999)->getName(), "4999 4999 4999");
}

TEST(DataMatrixPivoting, ListsKeepTheirOrderAndRemoveTheFirstOfAName) {
  TestHost host;
  auto const engine = pivoting(host, {"a", "b", "a"}, {"c", "d"},
                               {{"v", "moxIntegralSum"}, {"v", "moxIntegralMin"}});
  engine->removeRow("a");
  engine->removeColumn("d");
  engine->removeCell("v");
  engine->removeCell("missing");
  ASSERT_EQ(engine->getRows().size(), 2U);
  EXPECT_EQ(engine->getRows()[0].columnName, "b");
  ASSERT_EQ(engine->getColumns().size(), 1U);
  EXPECT_EQ(engine->getColumns()[0].columnName, "c");
  ASSERT_EQ(engine->getCells().size(), 1U);
  EXPECT_EQ(engine->getCells()[0].aggregation, "moxIntegralMin");
}

TEST(DataMatrixPivoting, CellsLookLikeTheColumnThatTheyAreMadeOf) {
  TestHost host;
  auto const input = matrix({{"k", texts("x")}, {"c", texts("a")}, {"v", ints(1)}});
  auto const formatter = host.get<moxGenericFormatter>("moxIntegralFormatter");
  input->columnByName("v")->setFormatter(formatter);

  auto const result =
      pivoting(host, {"k"}, {"c"}, {{"v", "moxIntegralSum"}})->process(input, nullptr);

  EXPECT_EQ(result->columnByName("a")->getFormatter(), formatter);
}

TEST(DataMatrixPivoting, GivesWhatAPlainOneGives) {
  constexpr std::array kFunctions{"moxDoubleSum", "moxIntegralSum", "moxTextAppend", "moxDateMax",
                                  "moxBlobLast",  "moxIntegralAvg", "moxTextMin"};
  TestHost host;
  RandomTables random(424242);
  for (int round = 0; round < 20000; ++round) {
    Matrix const input = random.table();
    std::vector<std::string> rows;
    std::vector<std::string> columns;
    std::vector<CellData> cells;
    for (std::size_t i = random.pick(3); i != 0; --i) {
      rows.push_back(random.columnOf(*input));
    }
    for (std::size_t i = random.pick(3); i != 0; --i) {
      columns.push_back(random.columnOf(*input));
    }
    for (std::size_t i = random.pick(3); i != 0; --i) {
      cells.push_back({random.columnOf(*input), kFunctions[random.pick(kFunctions.size())]});
    }
    Matrix const expected = PlainPivoting(host, input, rows, columns, cells).result();

    ASSERT_THAT(pivoting(host, rows, columns, cells)->process(input, nullptr), isMatrix(expected))
        << "round " << round << "\n"
        << asText(*input);
  }
}
