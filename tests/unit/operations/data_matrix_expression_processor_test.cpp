#include "mox/zyn/matrix/data_matrix_expression_processor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/expressions/expression_context.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "mox/zyn/matrix/data_matrix_union.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

using Tipo = moxColumnExpression::Tipo;
using Op = moxColumnExpression::Op;

constexpr Tipo kInt = moxColumnExpression::kInteiro;
constexpr Tipo kDouble = moxColumnExpression::kDecimal;
constexpr Op kRound = moxColumnExpression::kArredonda;
constexpr Op kCut = moxColumnExpression::kTrunca;
constexpr int kAllDecimals = -1;

class DataMatrixExpressionProcessor : public testing::Test {
 protected:
  void add(std::string const& name, std::string const& expression, Tipo tipo = kDouble,
           int decimals = kAllDecimals, Op operation = kRound) {
    processor_->addColumn(name, expression, tipo, decimals, operation);
  }

  std::shared_ptr<moxDataMatrix> processed(std::shared_ptr<moxDataMatrix> const& input) {
    processor_->processDataMatrix(input);
    return input;
  }

  std::string errorOf(std::shared_ptr<moxDataMatrix> const& input) {
    try {
      processor_->processDataMatrix(input);
    } catch (moxError const& error) {
      details_ = error.errorDetails();
      return error.errorMessage();
    }
    return "no failure";
  }

  TestHost host_;
  std::shared_ptr<moxDataMatrixExpressionProcessor> processor_ =
      host_.get<moxDataMatrixExpressionProcessor>("moxDataMatrixExpressionProcessor");
  std::vector<std::string> details_;  // of the last failure
};

TEST_F(DataMatrixExpressionProcessor, IsRegisteredUnderTheNameItTells) {
  EXPECT_EQ(processor_->name(), "moxDataMatrixExpressionProcessor");
}

TEST_F(DataMatrixExpressionProcessor, AddsAColumnComputedFromTheCurrentRow) {
  add("dobro", "valor(0)*2");

  EXPECT_THAT(processed(matrix({{"valor", doubles(1.5, 2)}})),
              isMatrix({{"valor", doubles(1.5, 2)}, {"dobro", doubles(3, 4)}}));
}

TEST_F(DataMatrixExpressionProcessor, AnEarlierRowThatDoesNotExistIsZero) {
  add("antes", "valor(1)");

  EXPECT_THAT(processed(matrix({{"valor", ints(5, 6, 7)}})),
              isMatrix({{"valor", ints(5, 6, 7)}, {"antes", doubles(0, 5, 6)}}));
}

TEST_F(DataMatrixExpressionProcessor, ANegativeOffsetLooksAhead) {
  add("depois", "valor(0-1)");

  EXPECT_THAT(processed(matrix({{"valor", ints(5, 6, 7)}})),
              isMatrix({{"valor", ints(5, 6, 7)}, {"depois", doubles(6, 7, 0)}}));
}

TEST_F(DataMatrixExpressionProcessor, ANullCountsAsZero) {
  add("mais", "valor(0)+1");

  EXPECT_THAT(processed(matrix({{"valor", doubles(4, null)}})),
              isMatrix({{"valor", doubles(4, null)}, {"mais", doubles(5, 1)}}));
}

TEST_F(DataMatrixExpressionProcessor, WhatStandsUnderANullIsNotSeen) {
  auto const input = matrix({{"valor", ints(4, 5)}});
  input->columnAt(0)->begin()->setNull();
  add("mais", "valor(0)+1");

  EXPECT_THAT(processed(input), isMatrix({{"valor", ints(null, 5)}, {"mais", doubles(1, 6)}}));
}

/// A thousand values, of which every third is a null that covers what it was.
std::shared_ptr<moxDataMatrix> matrixThatCoversValues(TestHost& host) {
  auto const column = host.get<moxDataMatrixDoubleColumn>("moxDataMatrixDoubleColumn");
  column->setName("valor");
  for (int row = 0; row < 1000; ++row) {
    column->appendValue(row + 1);
  }
  auto const cursor = column->begin();
  for (unsigned int row = 0; row < 1000; row += 3) {
    cursor->goTo(row);
    cursor->setNull();
  }
  auto matrix = host.get<moxDataMatrix>("moxDataMatrix");
  matrix->addColumn(column);
  return matrix;
}

TEST_F(DataMatrixExpressionProcessor, WhatStandsUnderNullsIsNotSeenInCopiesEither) {
  auto const input = matrixThatCoversValues(host_);
  auto const sorter = host_.get<moxDataMatrixSorter>("moxDataMatrixSorter");
  sorter->pushSortColumn("valor", false);
  auto const both = host_.get<moxDataMatrixUnion>("moxDataMatrixUnion");
  both->pushSourceDataMatrix(input, {"valor"});
  both->pushSourceDataMatrix(input, {"valor"});
  add("mais", "valor(0)+1");

  for (auto const& matrix : {input, sorter->transform(input), both->process("")}) {
    auto const result = processed(matrix);
    auto const valor = matrix->columnByName("valor");
    auto const mais =
        std::dynamic_pointer_cast<moxDataMatrixDoubleColumn>(matrix->columnByName("mais"));
    for (unsigned int row = 0; row < valor->numRows(); ++row) {
      auto const& doubles = dynamic_cast<moxDataMatrixDoubleColumn&>(*valor);
      ASSERT_EQ(mais->getValue(row), valor->isNull(row) ? 1 : doubles.getValue(row) + 1);
    }
  }
}

TEST_F(DataMatrixExpressionProcessor, AZeroCanBecomeANull) {
  add("d", "valor(0)");
  add("i", "valor(0)", kInt);
  processor_->setConvertZeroToNull(true);

  EXPECT_THAT(processed(matrix({{"valor", doubles(0, -0.0, 0.5, 1)}})),
              isMatrix({{"valor", doubles(0, -0.0, 0.5, 1)},
                        {"d", doubles(null, null, 0.5, 1)},
                        {"i", ints(null, null, null, 1)}}));
}

TEST_F(DataMatrixExpressionProcessor, AZeroThatComesOfCuttingDecimalsStays) {
  add("d", "valor(0)", kDouble, 0, kCut);
  processor_->setConvertZeroToNull(true);

  EXPECT_THAT(processed(matrix({{"valor", doubles(0.5, 0)}})),
              isMatrix({{"valor", doubles(0.5, 0)}, {"d", doubles(0, null)}}));
}

TEST_F(DataMatrixExpressionProcessor, AZeroStaysAZeroUnlessToldOtherwise) {
  add("d", "valor(0)");

  EXPECT_THAT(processed(matrix({{"valor", ints(0)}})),
              isMatrix({{"valor", ints(0)}, {"d", doubles(0)}}));
}

TEST_F(DataMatrixExpressionProcessor, RoundsHalvesAwayFromZeroInFloatingPoint) {
  add("centavos", "valor(0)", kDouble, 2, kRound);
  add("inteiros", "valor(0)", kDouble, 0, kRound);

  EXPECT_THAT(processed(matrix({{"valor", doubles(1.005, -1.5, 2.5)}})),
              isMatrix({{"valor", doubles(1.005, -1.5, 2.5)},
                        {"centavos", doubles(std::round(1.005 * 100) / 100, -1.5, 2.5)},
                        {"inteiros", doubles(1, -2, 3)}}));
}

TEST_F(DataMatrixExpressionProcessor, CutsDecimalsTowardsZero) {
  add("inteiros", "valor(0)", kDouble, 0, kCut);
  add("outro", "valor(0)", kDouble, 1, static_cast<Op>(7));

  EXPECT_THAT(processed(matrix({{"valor", doubles(-1.55, 2.59)}})),
              isMatrix({{"valor", doubles(-1.55, 2.59)},
                        {"inteiros", doubles(-1, 2)},
                        {"outro", doubles(-1.5, 2.5)}}));
}

TEST_F(DataMatrixExpressionProcessor, IntsDropDecimalsAndKeepToTheirLimits) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  add("i", "valor(0)", kInt, 2, kRound);

  auto const result = processed(
      matrix({{"valor", doubles(-2.9, 2.9, 1e300, -kInfinity, std::nan(""), 2147483647.5)}}));

  EXPECT_THAT(result->columnByName("i")->getType(), moxDataMatrixTypes::Int);
  auto const& column =
      dynamic_cast<moxDataMatrixTypedColumn<int> const&>(*result->columnByName("i"));
  std::vector<int> found;
  for (unsigned int row = 0; row < 6; ++row) {
    found.push_back(column.getValue(row));
  }
  EXPECT_EQ(found,
            (std::vector<int>{-2, 2, 2147483647, std::numeric_limits<int>::min(), 0, 2147483647}));
}

TEST_F(DataMatrixExpressionProcessor, AnyKindButTheFirstIsADouble) {
  add("d", "1.5", static_cast<Tipo>(9));

  EXPECT_THAT(processed(matrix({{"k", ints(1)}})), isMatrix({{"k", ints(1)}, {"d", doubles(1.5)}}));
}

TEST_F(DataMatrixExpressionProcessor, AnExpressionMayUseAnEarlierColumn) {
  add("dobro", "valor(0)*2");
  add("soma", "dobro(0)+dobro(1)");

  EXPECT_THAT(processed(matrix({{"valor", ints(1, 2)}})),
              isMatrix({{"valor", ints(1, 2)}, {"dobro", doubles(2, 4)}, {"soma", doubles(2, 6)}}));
}

TEST_F(DataMatrixExpressionProcessor, RowsOfAnEarlierColumnThatAreNotComputedYetAreZero) {
  add("dobro", "valor(0)*2");
  add("depois", "dobro(0-1)");

  EXPECT_THAT(
      processed(matrix({{"valor", ints(1, 2, 3)}})),
      isMatrix(
          {{"valor", ints(1, 2, 3)}, {"dobro", doubles(2, 4, 6)}, {"depois", doubles(0, 0, 0)}}));
}

TEST_F(DataMatrixExpressionProcessor, AColumnMayUseItsOwnEarlierRows) {
  add("total", "total(1)+valor(0)");

  EXPECT_THAT(processed(matrix({{"valor", ints(1, 2, null, 4)}})),
              isMatrix({{"valor", ints(1, 2, null, 4)}, {"total", doubles(1, 3, 3, 7)}}));
}

TEST_F(DataMatrixExpressionProcessor, OwnRowsThatAreNotComputedYetAreZero) {
  add("n", "n(0)+n(0-1)+1");

  EXPECT_THAT(processed(matrix({{"valor", ints(1, 2)}})),
              isMatrix({{"valor", ints(1, 2)}, {"n", doubles(1, 1)}}));
}

TEST_F(DataMatrixExpressionProcessor, OwnRowsReadWithCuttingAreThoseThatWereKept) {
  add("n", "n(1)+1.9", kInt);

  EXPECT_THAT(processed(matrix({{"valor", ints(1, 2, 3)}})),
              isMatrix({{"valor", ints(1, 2, 3)}, {"n", ints(1, 2, 3)}}));
}

TEST_F(DataMatrixExpressionProcessor, OffsetsMayBeComputed) {
  add("de", "valor(passo(0))");
  add("soma", "soma(passo(0))+1");

  EXPECT_THAT(processed(matrix({{"valor", ints(5, 6, 7, 8)}, {"passo", doubles(0, 1.9, 9, -1)}})),
              isMatrix({{"valor", ints(5, 6, 7, 8)},
                        {"passo", doubles(0, 1.9, 9, -1)},
                        {"de", doubles(5, 5, 0, 0)},
                        {"soma", doubles(1, 2, 1, 1)}}));
}

TEST_F(DataMatrixExpressionProcessor, OffsetsThatAreNoRowNumberFindNothing) {
  add("nan", "valor(0%0)");
  add("far", "valor(10^300)");
  add("ahead", "valor(0-4294967296)");

  EXPECT_THAT(
      processed(matrix({{"valor", ints(5)}})),
      isMatrix(
          {{"valor", ints(5)}, {"nan", doubles(0)}, {"far", doubles(0)}, {"ahead", doubles(0)}}));
}

TEST_F(DataMatrixExpressionProcessor, DecimalsOfAnOffsetDoNotCount) {
  add("a", "valor(1.9)");
  add("b", "valor(0-0.9)");

  EXPECT_THAT(processed(matrix({{"valor", ints(5, 6)}})),
              isMatrix({{"valor", ints(5, 6)}, {"a", doubles(0, 5)}, {"b", doubles(5, 6)}}));
}

TEST_F(DataMatrixExpressionProcessor, TextsDatesAndBlobsAreZero) {
  add("n", "t(0)+d(0)+b(0)+1");

  auto const input = matrix({{"t", texts("7")}, {"d", dates("2024-03-05")}, {"b", blobs("8")}});

  EXPECT_THAT(processed(input)->columnByName("n"), testing::NotNull());
  EXPECT_EQ(cellAt(*input->columnByName("n"), 0), Cell(1.0));
}

TEST_F(DataMatrixExpressionProcessor, TheFirstColumnOfANameIsMeant) {
  add("n", "valor(0)");
  add("n", "n(0)+10");
  add("valor", "valor(0)+100");

  EXPECT_THAT(processed(matrix({{"valor", ints(1)}, {"valor", ints(2)}})),
              isMatrix({{"valor", ints(1)},
                        {"valor", ints(2)},
                        {"n", doubles(1)},
                        {"n", doubles(11)},
                        {"valor", doubles(101)}}));
}

TEST_F(DataMatrixExpressionProcessor, FunctionsOfTheLanguageHideColumnsOfTheirNames) {
  add("n", "abs(0-3)");

  EXPECT_THAT(processed(matrix({{"abs", ints(7)}})),
              isMatrix({{"abs", ints(7)}, {"n", doubles(3)}}));
}

TEST_F(DataMatrixExpressionProcessor, OnlyRowsThatAllColumnsHaveAreComputed) {
  add("n", "longa(0)+longa(0-1)");

  EXPECT_THAT(processed(matrix({{"longa", ints(1, 2, 3)}, {"curta", ints(0, 0)}})),
              isMatrix({{"longa", ints(1, 2, 3)}, {"curta", ints(0, 0)}, {"n", doubles(3, 5)}}))
      << "but rows beyond can be read";
}

TEST_F(DataMatrixExpressionProcessor, WithoutRowsColumnsAreAddedEmpty) {
  add("n", "missing(0)", kInt);
  add("m", ")))");

  EXPECT_THAT(processed(matrix({{"valor", ints()}})),
              isMatrix({{"valor", ints()}, {"n", ints()}, {"m", doubles()}}));
}

TEST_F(DataMatrixExpressionProcessor, WithoutExpressionsTheMatrixStays) {
  EXPECT_THAT(processed(matrix({{"valor", ints(1)}})), isMatrix({{"valor", ints(1)}}));
}

TEST_F(DataMatrixExpressionProcessor, EveryRunAddsTheColumnsAnew) {
  add("n", "valor(0)");
  auto const input = matrix({{"valor", ints(1)}});
  processed(input);

  EXPECT_THAT(processed(input),
              isMatrix({{"valor", ints(1)}, {"n", doubles(1)}, {"n", doubles(1)}}));
}

TEST_F(DataMatrixExpressionProcessor, WithoutAMatrixItFails) {
  EXPECT_EQ(errorOf(nullptr), "Fonte de dados não localizada.");
}

TEST_F(DataMatrixExpressionProcessor, ALaterColumnIsNotFound) {
  add("a", "b(0)");
  add("b", "valor(0)");
  auto const input = matrix({{"valor", ints(1, 2)}});

  EXPECT_EQ(errorOf(input), "Coluna não encontrada b");
  EXPECT_THAT(input, isMatrix({{"valor", ints(1, 2)}, {"a", doubles(null, null)}}))
      << "the columns added so far stay";
}

TEST_F(DataMatrixExpressionProcessor, AnExpressionThatIsNoneFailsAtTheFirstRow) {
  add("a", "valor(0)");
  add("b", "valor(0)+1)");
  add("c", "valor(0)");
  auto const input = matrix({{"valor", ints(1, 2)}});

  EXPECT_EQ(errorOf(input),
            "Erro ao processar expressão para coluna 'b': Contagem incorreta de parênteses");
  EXPECT_EQ(details_, (std::vector<std::string>{"Coluna: b", "Expressão: valor(0)+1)"}));
  EXPECT_THAT(input, isMatrix({{"valor", ints(1, 2)},
                               {"a", doubles(1, null)},
                               {"b", doubles(null, null)},
                               {"c", doubles(null, null)}}));
}

TEST_F(DataMatrixExpressionProcessor, AnExpressionWithoutAValueFailsAtTheFirstRow) {
  add("a", "valor()");

  EXPECT_EQ(errorOf(matrix({{"valor", ints(1)}})), "Erro ao processar expressão para coluna 'a': ");
}

TEST_F(DataMatrixExpressionProcessor, EveryFailureIsOfTheClassThatCallersCatch) {
  for (std::string const expression : {"missing(0)", "valor(0)+1)", "valor()"}) {
    auto const processor =
        host_.get<moxDataMatrixExpressionProcessor>("moxDataMatrixExpressionProcessor");
    processor->addColumn("a", expression, kDouble, kAllDecimals, kRound);
    EXPECT_THROW(processor->processDataMatrix(matrix({{"valor", ints(1)}})),
                 moxDefaultErrorImpl<moxError>)
        << expression;
  }
}

TEST_F(DataMatrixExpressionProcessor, APlainNameIsNoColumn) {
  add("a", "1 valor");

  EXPECT_EQ(errorOf(matrix({{"valor", ints(1)}})),
            "Erro ao processar expressão para coluna 'a': Função sem abertura de parênteses.");
}

TEST_F(DataMatrixExpressionProcessor, WhatAFailureFindsOnTheStackIsTheValue) {
  add("a", "5+valor()");

  EXPECT_THAT(processed(matrix({{"valor", ints(1)}})),
              isMatrix({{"valor", ints(1)}, {"a", doubles(0)}}))
      << "5 is the offset, and the sum lacks a value";
}

TEST_F(DataMatrixExpressionProcessor, ADivisionByZeroEndsWithTheCellsBeforeIt) {
  add("a", "valor(0)");
  add("b", "6/valor(0)");
  add("c", "b(0)+1");
  auto const input = matrix({{"valor", ints(2, 3, 0, 6)}});

  EXPECT_THROW(processor_->processDataMatrix(input), moxExpressionContext::DivByZero);
  EXPECT_THAT(input, isMatrix({{"valor", ints(2, 3, 0, 6)},
                               {"a", doubles(2, 3, 0, null)},
                               {"b", doubles(3, 2, null, null)},
                               {"c", doubles(4, 3, null, null)}}));
}

TEST_F(DataMatrixExpressionProcessor, TheFirstDivisionByZeroInOrderOfRowsCounts) {
  add("a", "1/valor(0)");
  add("b", "1/outro(0)");
  add("c", "1");
  auto const input = matrix({{"valor", ints(1, 1, 0)}, {"outro", ints(1, 0, 1)}});

  EXPECT_EQ(errorOf(input), "Divisão por zero.");
  EXPECT_THAT(input, isMatrix({{"valor", ints(1, 1, 0)},
                               {"outro", ints(1, 0, 1)},
                               {"a", doubles(1, 1, null)},
                               {"b", doubles(1, null, null)},
                               {"c", doubles(1, null, null)}}));
}

TEST_F(DataMatrixExpressionProcessor, ADivisionByZeroGoesAheadOfTheLackOfAValue) {
  add("a", "floor(1/valor(0))");

  EXPECT_EQ(errorOf(matrix({{"valor", ints(0)}})), "Divisão por zero.");
}

TEST_F(DataMatrixExpressionProcessor, AnEntryThatFailsAheadOfADivisionByZeroIsTheFailure) {
  add("a", "(");
  add("b", "1/0");

  EXPECT_EQ(errorOf(matrix({{"valor", ints(0)}})),
            "Erro ao processar expressão para coluna 'a': Erro na contagem de parênteses.");
}

TEST_F(DataMatrixExpressionProcessor, ADivisionOfConstantsByZeroFailsAtTheFirstRow) {
  add("a", "valor(0)");
  add("b", "1/(2-2)+valor(0)");
  auto const input = matrix({{"valor", ints(1, 2)}});

  EXPECT_EQ(errorOf(input), "Divisão por zero.");
  EXPECT_THAT(
      input,
      isMatrix({{"valor", ints(1, 2)}, {"a", doubles(1, null)}, {"b", doubles(null, null)}}));
}

TEST_F(DataMatrixExpressionProcessor, ColumnsOfForeignMakeAreReadAsWell) {
  auto const input = matrix({{"k", ints(1, 2, 3)}});
  input->addColumn(std::make_shared<ForeignDoubleColumn>(
      "valor", std::vector<std::optional<double>>{1.5, std::nullopt, 3}));
  input->addColumn(std::make_shared<ForeignIntColumn>(
      "peso", std::vector<std::optional<int>>{2, 3, std::nullopt}));
  add("n", "valor(0)*peso(0)+valor(1)+n(1)", kInt);
  processor_->setConvertZeroToNull(true);
  processed(input);

  EXPECT_EQ(cellAt(*input->columnByName("n"), 0), Cell(3));
  EXPECT_EQ(cellAt(*input->columnByName("n"), 1), Cell(4));
  EXPECT_EQ(cellAt(*input->columnByName("n"), 2), Cell(4));
}

TEST_F(DataMatrixExpressionProcessor, ACursorStaysWhereItIsWhileColumnsAreAdded) {
  auto const input = matrix({{"valor", ints(1, 2, 3)}});
  auto const row = input->begin();
  row->goTo(1);
  add("valor", "valor(0)*10");
  processed(input);

  EXPECT_EQ(row->totalIterators(), 1U);
  EXPECT_EQ(row->getIterator(0)->pos(), 1U);
  EXPECT_TRUE(row->next());
  EXPECT_FALSE(row->next());
}

TEST_F(DataMatrixExpressionProcessor, BlocksJoinWithoutASeam) {
  constexpr int kRows = 5000;
  std::vector<std::optional<int>> numbers;
  std::vector<std::optional<double>> sums;
  std::vector<std::optional<double>> gaps;
  for (int row = 0; row < kRows; ++row) {
    numbers.push_back(row % 7 == 3 ? std::nullopt : std::optional(row));
    double const before =
        row < 1500 ? 0 : numbers[static_cast<std::size_t>(row) - 1500].value_or(0);
    sums.push_back(numbers.back().value_or(0) + before);
    double const ahead = row + 1100 < kRows && (row + 1100) % 7 != 3 ? row + 1100 : 0;
    gaps.push_back(ahead);
  }
  auto const input = matrix({{"k", ints(numbers)}});
  add("soma", "k(0)+k(1500)");
  add("fora", "k(0-1100)");

  EXPECT_THAT(processed(input),
              isMatrix({{"k", ints(numbers)}, {"soma", doubles(sums)}, {"fora", doubles(gaps)}}));
}

}  // namespace
