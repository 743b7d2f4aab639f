#include "zyn/expressions/shunting_yard.h"

#include <gtest/gtest.h>

#include <locale>
#include <memory>
#include <string>

#include "mox/zyn/expressions/expression_context.h"
#include "support/test_host.h"

namespace {

/// The order in which operations run, as the values tell it.
class ShuntingYard : public testing::Test {
 protected:
  double valueOf(std::string const& text) {
    EXPECT_TRUE(context_->parse(text)) << text << ": " << context_->getError();
    return context_->exec(nullptr);
  }

  TestHost host_;
  std::shared_ptr<moxExpressionContext> context_ =
      host_.get<moxExpressionContext>("moxExpressionContext");
};

TEST_F(ShuntingYard, QuotientsAreThoseOfDoublesAndWorkFromTheLeft) {
  EXPECT_EQ(valueOf("7/2"), 3.5);
  EXPECT_EQ(valueOf("24/4/3"), 2);
}

TEST_F(ShuntingYard, AllProductsBindAlikeAndTighterThanSums) {
  EXPECT_EQ(valueOf("6/2*3"), 9);
  EXPECT_EQ(valueOf("7*3%4"), 1);
  EXPECT_EQ(valueOf("7%4*3"), 9);
  EXPECT_EQ(valueOf("1+7%4"), 4);
  EXPECT_EQ(valueOf("9-6/2"), 6);
  EXPECT_EQ(valueOf("9-6+2"), 5);
}

TEST_F(ShuntingYard, PowersBindTighterThanTheProductsBehindThem) {
  EXPECT_EQ(valueOf("2^3*2"), 16);
  EXPECT_EQ(valueOf("9%2^3"), 1);
  EXPECT_EQ(valueOf("16/2^3"), 2);
}

TEST_F(ShuntingYard, AnOperatorAheadOfParenthesesWaitsForWhatFollowsThem) {
  EXPECT_EQ(valueOf("2*(3)^2"), 18);
  EXPECT_EQ(valueOf("1+(2)*3"), 7);
}

/// Writes a comma ahead of decimals and a point between groups of digits.
class PointsBetweenGroups final : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\1"; }
};

TEST_F(ShuntingYard, NumbersAreReadAlikeUnderEveryLocale) {
  std::locale const before =
      std::locale::global(std::locale(std::locale::classic(), new PointsBetweenGroups));
  double const value = valueOf("1.5+2");
  std::locale::global(before);

  EXPECT_EQ(value, 3.5);
}

TEST_F(ShuntingYard, AHundredThousandOperandsAreNoTrouble) {
  constexpr int kOperands = 100'000;
  std::string sum = "1";
  std::string tower = "1";
  for (int i = 1; i < kOperands; ++i) {
    sum += "+1";
    tower += "^1";
  }

  EXPECT_EQ(valueOf(sum), kOperands);
  EXPECT_EQ(valueOf(tower), 1);
}

TEST_F(ShuntingYard, NamesMayHoldAnyBytesButSeparatorsAndSpace) {
  using namespace std::string_literals;
  EXPECT_FALSE(context_->parse("\xff\0\"é"s));
  EXPECT_EQ(context_->getError(), "Símbolo não identificado \"\xff\0\"é\""s);
}

}  // namespace
