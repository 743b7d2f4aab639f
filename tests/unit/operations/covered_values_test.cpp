#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "mox/zyn/matrix/data_matrix_expression_processor.h"
#include "mox/zyn/matrix/data_matrix_join.h"
#include "mox/zyn/matrix/data_matrix_pivoting.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "mox/zyn/matrix/data_matrix_union.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"
#include "zyn/operations/matrix_joining.h"

using namespace mox_test;

// A null may cover the value that stood there before. Whatever makes a matrix of another carries
// such values along or drops them; nobody who reads the result may take one for a cell.
namespace {

using Matrix = std::shared_ptr<moxDataMatrix>;

class CoveredValues : public testing::Test {
 protected:
  /// Numbers in two columns, the second of which is null in every other row, over a 7.
  static Matrix table() {
    auto made = matrix({{"k", ints(4, 3, 2, 1)}, {"v", doubles(7, 0.5, 7, 1.5)}});
    auto const cursor = made->columnByName("v")->begin();
    for (unsigned int const row : {0U, 2U}) {
      cursor->goTo(row);
      cursor->setNull();
    }
    return made;
  }

  /// What an expression reads in a column of the result.
  Matrix read(Matrix const& result, std::string const& columnName) {
    auto const processor =
        host_.get<moxDataMatrixExpressionProcessor>("moxDataMatrixExpressionProcessor");
    processor->addColumn("lido", columnName + "(0)", moxColumnExpression::kDecimal, -1,
                         moxColumnExpression::kArredonda);
    processor->processDataMatrix(result);
    result->orderColumnsByName({"lido"});
    return result;
  }

  TestHost host_;
};

}  // namespace

TEST_F(CoveredValues, AreNotSeenWhereTheyStand) {
  EXPECT_THAT(read(table(), "v"), isMatrix({{"lido", doubles(0, 0.5, 0, 1.5)}}));
}

TEST_F(CoveredValues, AreNotSeenBehindASorter) {
  auto const sorter = host_.get<moxDataMatrixSorter>("moxDataMatrixSorter");
  sorter->pushSortColumn("k", false);
  EXPECT_THAT(read(sorter->transform(table()), "v"), isMatrix({{"lido", doubles(1.5, 0, 0.5, 0)}}));
}

TEST_F(CoveredValues, AreNotSeenBehindAUnion) {
  auto const engine = host_.get<moxDataMatrixUnion>("moxDataMatrixUnion");
  engine->pushSourceDataMatrix(matrix({{"v", doubles(2)}}), {"v"});
  engine->pushSourceDataMatrix(table(), {"v"});
  EXPECT_THAT(read(engine->process(""), "v"), isMatrix({{"lido", doubles(2, 0, 0.5, 0, 1.5)}}));
}

TEST_F(CoveredValues, AreNotSeenBesideOtherColumns) {
  auto const engine = host_.get<moxDataMatrixJoin>("moxDataMatrixJoin");
  engine->pushSourceDataMatrix(table(), {"v"});
  EXPECT_THAT(read(engine->process(), "v"), isMatrix({{"lido", doubles(0, 0.5, 0, 1.5)}}));
}

TEST_F(CoveredValues, AreNotSeenBehindAJoin) {
  MatrixJoining joining;
  joining.addSource({"keys", matrix({{"k", ints(2, 1, 4)}}), {{"k", "k"}}, {}});
  joining.addSource({"values", table(), {{"v", "v"}}, {{"k", "k"}}});
  EXPECT_THAT(read(joining.process(), "v"), isMatrix({{"lido", doubles(0, 1.5, 0)}}));
}

TEST_F(CoveredValues, AreNotSeenInKeysOfGroups) {
  auto const engine = host_.get<moxDataMatrixAggregator>("moxDataMatrixAggregator");
  engine->pushIndexColumn("v");
  EXPECT_THAT(read(engine->aggregate(table(), true, ""), "v"),
              isMatrix({{"lido", doubles(0, 0.5, 1.5)}}));
}

TEST_F(CoveredValues, AreNotSeenInACrossTable) {
  auto const engine = host_.get<moxDataMatrixPivoting>("moxDataMatrixPivoting");
  engine->addRow("v");
  engine->addColumn("v", nullptr);
  engine->addCell("v", "moxDoubleMin");
  EXPECT_THAT(read(engine->process(table(), nullptr), "v"),
              isMatrix({{"lido", doubles(0, 0.5, 1.5)}}));
}
