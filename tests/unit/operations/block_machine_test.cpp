#include "zyn/operations/block_machine.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "mox/zyn/matrix/data_matrix_expression_processor.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

/// A few rows with the column that an expression of any size adds to them.
std::shared_ptr<moxDataMatrix> computed(TestHost& host, std::string const& expression) {
  auto const processor =
      host.get<moxDataMatrixExpressionProcessor>("moxDataMatrixExpressionProcessor");
  processor->addColumn("n", expression, moxColumnExpression::kDecimal, -1,
                       moxColumnExpression::kArredonda);
  auto input = matrix({{"valor", ints(1, 2, 4)}});
  processor->processDataMatrix(input);
  return input;
}

}  // namespace

TEST(BlockMachine, ADeepExpressionIsComputedInSmallBlocks) {
  TestHost host;
  constexpr int kDepth = 20'000;
  std::string expression;
  for (int i = 0; i < kDepth; ++i) {
    expression += "valor(0)+(";
  }
  expression += "0" + std::string(kDepth, ')');

  EXPECT_THAT(
      computed(host, expression),
      isMatrix({{"valor", ints(1, 2, 4)}, {"n", doubles(kDepth, 2.0 * kDepth, 4.0 * kDepth)}}));
}

TEST(BlockMachine, ManyDifferentRowsAreReadInSmallBlocks) {
  TestHost host;
  constexpr int kReads = 100'000;
  std::string expression = "0";
  for (int i = 0; i < kReads; ++i) {
    expression += "+valor(" + std::to_string(i) + ")";
  }

  EXPECT_THAT(computed(host, expression),
              isMatrix({{"valor", ints(1, 2, 4)}, {"n", doubles(1, 3, 7)}}));
}
