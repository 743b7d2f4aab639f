#include "zyn/operations/operation_errors.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/app/settings.h"
#include "mox/core/error.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "mox/zyn/matrix/data_matrix_pivoting.h"
#include "mox/zyn/matrix/data_matrix_union.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

class OperationErrors : public testing::Test {
 protected:
  void limit(std::string const& key, std::string const& value) {
    dynamic_cast<mox::core::Settings&>(host_.application().settings()).set("limits", key, {value});
  }

  template <class Action>
  std::string failureOf(Action const& action) {
    try {
      action();
    } catch (moxError const& error) {
      details_ = error.errorDetails();
      return error.errorMessage();
    }
    return "no failure";
  }

  std::shared_ptr<moxDataMatrixPivoting> pivoting() {
    auto made = host_.get<moxDataMatrixPivoting>("moxDataMatrixPivoting");
    made->addRow("linha");
    made->addColumn("coluna", nullptr);
    made->addCell("valor", "moxIntegralSum");
    return made;
  }

  TestHost host_;
  std::vector<std::string> details_;  // of the last failure
};

}  // namespace

TEST_F(OperationErrors, AUnionOfTooManyRowsIsRefused) {
  limit("rows", "3");
  auto const engine = host_.get<moxDataMatrixUnion>("moxDataMatrixUnion");
  engine->pushSourceDataMatrix(matrix({{"a", ints(1, 2, 3)}}), {"a"});
  EXPECT_EQ(engine->process("")->rowCount(), 3U);

  engine->pushSourceDataMatrix(matrix({{"a", ints(4)}}), {"a"});
  EXPECT_EQ(failureOf([&] { engine->process(""); }),
            "Resultado grande demais: 4 linhas, e o limite é 3.");
  EXPECT_EQ(details_, (std::vector<std::string>{"setting: [limits] rows",
                                                "narrow the sources, or raise the limit"}));
}

TEST_F(OperationErrors, AnAggregationOfTooManyGroupsIsRefused) {
  limit("rows", "2");
  auto const engine = host_.get<moxDataMatrixAggregator>("moxDataMatrixAggregator");
  engine->pushIndexColumn("k");
  EXPECT_EQ(engine->aggregate(matrix({{"k", ints(1, 2, 1)}}), false, "")->rowCount(), 2U);
  EXPECT_EQ(failureOf([&] {
              engine->aggregate(matrix({{"k", ints(1, 2, 3)}}), false, "");
            }),
            "Resultado grande demais: 3 linhas, e o limite é 2.");
}

TEST_F(OperationErrors, ACrossTableOfTooManyRowsOrColumnsIsRefused) {
  auto const input = matrix({{"linha", ints(1, 2)}, {"coluna", ints(7, 8)}, {"valor", ints(1, 2)}});
  limit("rows", "1");
  EXPECT_EQ(failureOf([&] { pivoting()->process(input, nullptr); }),
            "Resultado grande demais: 2 linhas, e o limite é 1.");

  limit("rows", "2");
  limit("columns", "2");
  EXPECT_EQ(failureOf([&] { pivoting()->process(input, nullptr); }),
            "Resultado grande demais: 3 colunas, e o limite é 2.")
      << "keys count as well";
}

TEST_F(OperationErrors, ACrossTableOfTooManyCellsIsRefused) {
  auto const input = matrix({{"linha", ints(1, 2)}, {"coluna", ints(7, 8)}, {"valor", ints(1, 2)}});
  limit("cells", "6");
  EXPECT_EQ(pivoting()->process(input, nullptr)->columnCount(), 3U);

  limit("cells", "5");
  EXPECT_EQ(failureOf([&] { pivoting()->process(input, nullptr); }),
            "Resultado grande demais: 6 células, e o limite é 5.");
  EXPECT_EQ(details_.front(), "setting: [limits] cells");
}

TEST_F(OperationErrors, ATableOfMoreCellsThanMemoryIsRefusedUnasked) {
  constexpr int kRows = 20'100;
  constexpr int kColumns = 9'999;
  std::vector<std::optional<int>> rows;
  std::vector<std::optional<int>> columns;
  for (int i = 0; i < kRows; ++i) {
    rows.emplace_back(i);
    columns.emplace_back(i % kColumns);
  }
  auto const input =
      matrix({{"linha", ints(rows)}, {"coluna", ints(columns)}, {"valor", ints(rows)}});

  EXPECT_EQ(failureOf([&] { pivoting()->process(input, nullptr); }),
            "Resultado grande demais: 201000000 células, e o limite é 200000000.");
}

TEST_F(OperationErrors, ALimitThatIsNoNumberIsAsIfNoneWereSet) {
  for (std::string const value : {"", "muitas", "-1", "99999999999999999999999"}) {
    limit("rows", value);
    refuseTooManyRows(100'000'000);
    EXPECT_EQ(failureOf([] { refuseTooManyRows(100'000'001); }),
              "Resultado grande demais: 100000001 linhas, e o limite é 100000000.")
        << value;
  }
}

TEST_F(OperationErrors, NoLimitAllowsMoreRowsThanAColumnCounts) {
  limit("rows", "9999999999");
  refuseTooManyRows(2147483647);
  EXPECT_EQ(failureOf([] { refuseTooManyRows(2147483648); }),
            "Resultado grande demais: 2147483648 linhas, e o limite é 2147483647.");
}
