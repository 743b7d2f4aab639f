#include "mox/zyn/expressions/expression_context_utilities.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/test_host.h"

namespace {

using Tokens = std::vector<std::pair<bool, std::string>>;
using Names = std::vector<std::string>;

constexpr bool kNumber = true;
constexpr bool kOther = false;

class ExpressionContextUtilities : public testing::Test {
 protected:
  Tokens tokens(std::string const& text, bool skipSeparators = false) {
    Tokens found;
    utilities_->tokenize(text, found, skipSeparators);
    return found;
  }

  Names namesIn(std::string const& text) {
    Names found;
    utilities_->getVariablesFunctionsName(text, found);
    return found;
  }

  TestHost host_;
  std::shared_ptr<moxExpressionContextUtilities> utilities_ =
      host_.get<moxExpressionContextUtilities>("moxExpressionContextUtilities");
};

TEST_F(ExpressionContextUtilities, IsRegisteredUnderTheNameItTells) {
  EXPECT_EQ(utilities_->name(), "moxExpressionContextUtilities");
}

TEST_F(ExpressionContextUtilities, AnEmptyTextHasNoTokens) {
  EXPECT_EQ(tokens(""), Tokens());
  EXPECT_EQ(tokens(" \t\n\v\f\r"), Tokens());
}

TEST_F(ExpressionContextUtilities, WhiteSpacePartsTokens) {
  EXPECT_EQ(tokens(" a\tb \n 1"), (Tokens{{kOther, "a"}, {kOther, "b"}, {kNumber, "1"}}));
}

TEST_F(ExpressionContextUtilities, ASeparatorIsATokenByItself) {
  EXPECT_EQ(tokens("a()+-*/%,^b"), (Tokens{{kOther, "a"},
                                           {kOther, "("},
                                           {kOther, ")"},
                                           {kOther, "+"},
                                           {kOther, "-"},
                                           {kOther, "*"},
                                           {kOther, "/"},
                                           {kOther, "%"},
                                           {kOther, ","},
                                           {kOther, "^"},
                                           {kOther, "b"}}));
}

TEST_F(ExpressionContextUtilities, SeparatorsCanBeLeftOut) {
  EXPECT_EQ(tokens("a+(1*b)", true), (Tokens{{kOther, "a"}, {kNumber, "1"}, {kOther, "b"}}));
}

TEST_F(ExpressionContextUtilities, ANumberEndsAtTheFirstOtherCharacter) {
  EXPECT_EQ(tokens("12abc"), (Tokens{{kNumber, "12"}, {kOther, "abc"}}));
}

TEST_F(ExpressionContextUtilities, DigitsAndPointsBelongToAName) {
  EXPECT_EQ(tokens("a.b1"), (Tokens{{kOther, "a.b1"}}));
}

TEST_F(ExpressionContextUtilities, TheTextOfANumberIsNotChecked) {
  EXPECT_EQ(tokens("1.2.3 . .5"), (Tokens{{kNumber, "1.2.3"}, {kNumber, "."}, {kNumber, ".5"}}));
}

TEST_F(ExpressionContextUtilities, BytesBeyondAsciiBelongToNames) {
  EXPECT_EQ(tokens("média+1"), (Tokens{{kOther, "média"}, {kOther, "+"}, {kNumber, "1"}}));
}

TEST_F(ExpressionContextUtilities, TokensAreAppended) {
  Tokens found = {{kOther, "before"}};
  utilities_->tokenize("1", found, false);

  EXPECT_EQ(found, (Tokens{{kOther, "before"}, {kNumber, "1"}}));
}

TEST_F(ExpressionContextUtilities, NamesComeOnceInOrderOfFirstAppearance) {
  EXPECT_EQ(namesIn("valor(0)*2 + abs(peso(1)) - valor(1)"), (Names{"valor", "abs", "peso"}));
}

TEST_F(ExpressionContextUtilities, NamesThatAreKnownAreNotAppendedAgain) {
  Names names = {"peso"};
  utilities_->getVariablesFunctionsName("valor(0)+peso(0)", names);

  EXPECT_EQ(names, (Names{"peso", "valor"}));
}

TEST_F(ExpressionContextUtilities, ATextThatIsNoExpressionHasNamesAllTheSame) {
  EXPECT_EQ(namesIn(")a,,b(("), (Names{"a", "b"}));
}

}  // namespace
