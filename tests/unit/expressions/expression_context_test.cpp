#include "mox/zyn/expressions/expression_context.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/expressions/expression_operation.h"
#include "mox/zyn/expressions/expression_providers.h"
#include "mox/zyn/expressions/expression_value_stack.h"
#include "support/test_host.h"

namespace {

struct Outcome {
  double value;
  bool ok;

  bool operator==(Outcome const&) const = default;
  friend std::ostream& operator<<(std::ostream& out, Outcome const& outcome) {
    return out << outcome.value << (outcome.ok ? " (ok)" : " (no value)");
  }
};

class ExpressionContext : public testing::Test {
 protected:
  Outcome run() {
    bool ok = false;
    double const value = context_->exec(&ok);
    return {value, ok};
  }

  Outcome valueOf(std::string const& text) {
    EXPECT_TRUE(context_->parse(text)) << text << ": " << context_->getError();
    return run();
  }

  std::string errorOf(std::string const& text) {
    EXPECT_FALSE(context_->parse(text)) << text;
    return context_->getError();
  }

  std::string divisionErrorOf(std::string const& text) {
    EXPECT_TRUE(context_->parse(text)) << text;
    try {
      context_->exec(nullptr);
    } catch (moxExpressionContext::DivByZero const& error) {
      return error.errorMessage();
    }
    return "no failure";
  }

  TestHost host_;
  std::shared_ptr<moxExpressionContext> context_ =
      host_.get<moxExpressionContext>("moxExpressionContext");
};

Outcome ok(double value) {
  return {value, true};
}

constexpr Outcome kNoValue = {0.0, false};

TEST_F(ExpressionContext, IsRegisteredUnderTheNameItTells) {
  EXPECT_EQ(context_->name(), "moxExpressionContext");
  EXPECT_NE(host_.get<moxExpressionContext>("moxExpressionContext"), context_);
}

TEST_F(ExpressionContext, ProductsBindTighterThanSums) {
  EXPECT_EQ(valueOf("1+2*3"), ok(7));
}

TEST_F(ExpressionContext, ParenthesesGoFirst) {
  EXPECT_EQ(valueOf("(1+2)*3"), ok(9));
}

TEST_F(ExpressionContext, PowersWorkFromTheRight) {
  EXPECT_EQ(valueOf("2^3^2"), ok(512));
}

TEST_F(ExpressionContext, PowersBindTighterThanProducts) {
  EXPECT_EQ(valueOf("2*3^2"), ok(18));
}

TEST_F(ExpressionContext, DifferencesWorkFromTheLeft) {
  EXPECT_EQ(valueOf("7-2-1"), ok(4));
}

TEST_F(ExpressionContext, ReminderIsThatOfDoubles) {
  EXPECT_EQ(valueOf("7%2"), ok(1));
  EXPECT_EQ(valueOf("7.5%2"), ok(1.5));
  EXPECT_EQ(valueOf("(0-7)%2"), ok(-1));
}

TEST_F(ExpressionContext, ReminderOfZeroIsNoFailure) {
  Outcome const outcome = valueOf("7%0");

  EXPECT_TRUE(outcome.ok);
  EXPECT_TRUE(std::isnan(outcome.value));
}

TEST_F(ExpressionContext, DivisionByZeroIsAFailureOfItsOwn) {
  EXPECT_EQ(divisionErrorOf("1/0"), "Divisão por zero.");
  EXPECT_EQ(divisionErrorOf("1/0.0"), "Divisão por zero.");
  EXPECT_EQ(divisionErrorOf("1/(0*(0-1))"), "Divisão por zero.") << "of the negative zero as well";
}

TEST_F(ExpressionContext, ADivisionByZeroBelowTheTopIsOneAsWell) {
  EXPECT_EQ(divisionErrorOf("(1/0) 5"), "Divisão por zero.");
}

TEST_F(ExpressionContext, FloorCutsDecimalPlacesTowardsZero) {
  EXPECT_EQ(valueOf("floor(2.567,2)"), ok(2.56));
  EXPECT_EQ(valueOf("floor(0-2.5,0)"), ok(-2));
}

TEST_F(ExpressionContext, AMinusSignInAParameterLeavesTheStackAsItWas) {
  EXPECT_EQ(valueOf("floor(-2.5,0)"), ok(2.5)) << "the sign ends the evaluation at its value";
}

TEST_F(ExpressionContext, RoundGivesWholeNumbersWhateverThePlaces) {
  EXPECT_EQ(valueOf("round(2.567,2)"), ok(3));
  EXPECT_EQ(valueOf("round(2.567,0)"), ok(3));
  EXPECT_EQ(valueOf("round(2.5,0)"), ok(3));
  EXPECT_EQ(valueOf("round(0-2.5,0)"), ok(-3)) << "halves go away from zero";
}

TEST_F(ExpressionContext, CeilGivesWholeNumbersWhateverThePlaces) {
  EXPECT_EQ(valueOf("ceil(2.1,2)"), ok(3));
  EXPECT_EQ(valueOf("ceil(0-2.1,2)"), ok(-2));
}

TEST_F(ExpressionContext, AbsDropsTheSign) {
  EXPECT_EQ(valueOf("abs(0-3)"), ok(3));
}

TEST_F(ExpressionContext, PlacesAreCutAndKeptBetweenNoneAndEighteen) {
  EXPECT_EQ(valueOf("floor(2.567,2.9)"), ok(2.56));
  EXPECT_EQ(valueOf("floor(2.567,0-3)"), ok(2));
  EXPECT_EQ(valueOf("floor(1.5,400)"), ok(1.5));
  EXPECT_EQ(valueOf("floor(2.5,0%0)"), ok(2)) << "no number of places is none";
}

TEST_F(ExpressionContext, FunctionNamesAreLowerCase) {
  EXPECT_EQ(errorOf("Floor(1,2)"), "Símbolo não identificado \"Floor\"");
}

TEST_F(ExpressionContext, AnOpenParenthesisIsAnError) {
  EXPECT_EQ(errorOf("(1+2"), "Erro na contagem de parênteses.");
}

TEST_F(ExpressionContext, AParenthesisTooManyIsAnError) {
  EXPECT_EQ(errorOf("1+2)"), "Contagem incorreta de parênteses");
}

TEST_F(ExpressionContext, ACommaOutsideParenthesesIsAnError) {
  EXPECT_EQ(errorOf("1,2"), "Separador de parâmetro fora de chamada de função.");
}

TEST_F(ExpressionContext, AFunctionWithoutParenthesisIsAnError) {
  EXPECT_EQ(errorOf("abs 2"), "Função sem abertura de parênteses.");
  EXPECT_EQ(errorOf("abs"), "Função sem abertura de parênteses.");
}

TEST_F(ExpressionContext, AnUnknownNameIsAnError) {
  EXPECT_EQ(errorOf("xyz"), "Símbolo não identificado \"xyz\"");
}

TEST_F(ExpressionContext, AnEmptyTextIsAnExpressionWithoutAValue) {
  EXPECT_EQ(valueOf(""), kNoValue);
  EXPECT_EQ(valueOf(" \t\r\n"), kNoValue);
  EXPECT_EQ(context_->getError(), "");
}

TEST_F(ExpressionContext, AContextThatHasParsedNothingHasNoValue) {
  EXPECT_EQ(run(), kNoValue);
}

TEST_F(ExpressionContext, ThereIsNoSignBeforeAValue) {
  EXPECT_EQ(valueOf("-1"), ok(1));
  EXPECT_EQ(valueOf("2*-1"), ok(2)) << "the product runs ahead of the sign, and finds one value";
  EXPECT_EQ(valueOf("2*(-1)"), ok(1)) << "2-1, where the evaluation ends as the product lacks one";
}

TEST_F(ExpressionContext, OperatorsWithoutValuesGiveNone) {
  EXPECT_EQ(valueOf("+"), kNoValue);
  EXPECT_EQ(valueOf("()"), kNoValue);
  EXPECT_EQ(valueOf("abs()"), kNoValue);
}

TEST_F(ExpressionContext, AFunctionThatLacksAValueHasTakenTheOthers) {
  EXPECT_EQ(valueOf("floor(2)"), kNoValue);
}

TEST_F(ExpressionContext, SurplusValuesBelowTheTopAreIgnored) {
  EXPECT_EQ(valueOf("2 3"), ok(3));
}

TEST_F(ExpressionContext, TheResultMayBeAskedForWithoutAskingWhetherThereIsOne) {
  context_->parse("1+1");
  EXPECT_EQ(context_->exec(nullptr), 2.0);
}

TEST_F(ExpressionContext, NumbersAreReadAsFarAsTheyGo) {
  EXPECT_EQ(valueOf("1.2.3"), ok(1.2));
  EXPECT_EQ(valueOf("."), ok(0));
  EXPECT_EQ(valueOf(".5"), ok(0.5));
  EXPECT_EQ(valueOf("5."), ok(5));
}

TEST_F(ExpressionContext, ThereAreNoExponentsInNumbers) {
  EXPECT_EQ(errorOf("1e5"), "Símbolo não identificado \"e5\"");
}

TEST_F(ExpressionContext, ANumberTooLargeIsTheLargestDouble) {
  EXPECT_EQ(valueOf(std::string(400, '9')), ok(std::numeric_limits<double>::max()));
}

TEST_F(ExpressionContext, ANumberOfManyPlacesIsReadExactly) {
  EXPECT_EQ(valueOf("0." + std::string(400, '3')), ok(1.0 / 3));
}

TEST_F(ExpressionContext, ParsingAgainTakesThePlaceOfTheExpressionBefore) {
  valueOf("1+1");
  EXPECT_EQ(valueOf("5"), ok(5));
  errorOf("xyz");
  EXPECT_EQ(valueOf("6"), ok(6));
  EXPECT_EQ(context_->getError(), "");
}

TEST_F(ExpressionContext, AFailedParseKeepsWhatWasUnderstood) {
  errorOf("1+2)");
  EXPECT_EQ(run(), ok(3));
  errorOf("4 xyz");
  EXPECT_EQ(run(), ok(4));
}

TEST_F(ExpressionContext, AHundredThousandParenthesesAreNoTrouble) {
  constexpr std::size_t kDepth = 100'000;
  std::string const open(kDepth, '(');
  std::string const close(kDepth, ')');

  EXPECT_EQ(valueOf(open + "1" + close), ok(1));
  EXPECT_EQ(errorOf(open + "1"), "Erro na contagem de parênteses.");
  EXPECT_EQ(errorOf("1" + close), "Contagem incorreta de parênteses");
}

TEST_F(ExpressionContext, AHundredThousandOpenOperationsAreNoTrouble) {
  constexpr int kDepth = 100'000;
  std::string text;
  for (int i = 0; i < kDepth; ++i) {
    text += "abs(1+(";
  }
  text += "1" + std::string(std::size_t{2} * kDepth, ')');

  EXPECT_EQ(valueOf(text), ok(kDepth + 1));
}

/// A value that pushes what stands in a test's variable.
class Variable final : public moxExpressionOperation {
 public:
  explicit Variable(double const& value) : value_(value) { ++alive; }
  ~Variable() override { --alive; }

  bool leftAssociative() const override { return false; }
  int precedence() const override { return 0; }
  bool isOperator() const override { return false; }
  bool isFunction() const override { return false; }
  bool exec(moxExpressionValueStack* stack) override {
    stack->push(value_);
    return true;
  }

  inline static int alive = 0;

 private:
  double const& value_;
};

class Variables final : public moxExpressionVariableProvider {
 public:
  moxExpressionOperation* getVariable(std::string const& name) override {
    auto const found = values.find(name);
    return found == values.end() ? nullptr : new Variable(found->second);
  }

  std::map<std::string, double> values;
};

/// A function of one value that doubles it, and remembers what it was given as parameter.
class Twice final : public moxExpressionOperation {
 public:
  explicit Twice(std::vector<std::string>& parameters) : parameters_(parameters) { ++alive; }
  ~Twice() override { --alive; }

  bool leftAssociative() const override { return false; }
  int precedence() const override { return 0; }
  bool isOperator() const override { return false; }
  bool isFunction() const override { return true; }
  bool exec(moxExpressionValueStack* stack) override {
    double value = 0;
    bool const isThere = stack->pop(&value);
    stack->push(2 * value);
    return isThere;
  }
  void setParameter(std::string const& parameter) override { parameters_.push_back(parameter); }

  inline static int alive = 0;

 private:
  std::vector<std::string>& parameters_;
};

/// Knows "twice", refuses "broken" with a failure, and knows nothing else.
class Functions final : public moxExpressionFunctionProvider {
 public:
  moxExpressionOperation* getFunction(std::string const& name) override {
    asked.push_back(name);
    if (name == "broken") {
      throw moxDefaultErrorImpl<moxError>("quebrada");
    }
    return name == "twice" || name == "abs" ? new Twice(parameters) : nullptr;
  }

  std::vector<std::string> asked;
  std::vector<std::string> parameters;
};

TEST_F(ExpressionContext, VariablesAreReadAtEveryEvaluation) {
  Variables variables;
  variables.values = {{"x", 2}, {"nota.final", 8}};
  context_->addDataProvider(&variables);

  EXPECT_EQ(valueOf("x*3+nota.final"), ok(14));
  variables.values["x"] = 5;
  EXPECT_EQ(run(), ok(23));
}

TEST_F(ExpressionContext, ANameBehindANumberIsAVariable) {
  Variables variables;
  variables.values = {{"abc", 7}, {"e5", 9}};
  context_->addDataProvider(&variables);

  EXPECT_EQ(valueOf("12abc"), ok(7));
  EXPECT_EQ(valueOf("1e5"), ok(9));
}

TEST_F(ExpressionContext, TheFirstProviderThatKnowsANameAnswers) {
  Variables first;
  Variables second;
  first.values = {{"x", 1}};
  second.values = {{"x", 2}, {"y", 3}};
  context_->addDataProvider(&first);
  context_->addDataProvider(&second);

  EXPECT_EQ(valueOf("x"), ok(1));
  EXPECT_EQ(valueOf("y"), ok(3));
}

TEST_F(ExpressionContext, TheFirstVariableOfACallGoesToTheFunction) {
  Variables variables;
  Functions functions;
  variables.values = {{"x", 4}};
  context_->addDataProvider(&variables);
  context_->addFunctionProvider(&functions);

  EXPECT_EQ(valueOf("abs(x)"), kNoValue);
  EXPECT_EQ(valueOf("twice(x 3)"), ok(6));
  EXPECT_EQ(functions.parameters, std::vector<std::string>{"x"});
  EXPECT_EQ(valueOf("twice(x x)"), ok(8)) << "only the first one";
  EXPECT_EQ(valueOf("twice(3)+x"), ok(10)) << "the wait ends with the call";
}

TEST_F(ExpressionContext, ACallInsideACallWaitsInItsPlace) {
  Variables variables;
  Functions functions;
  variables.values = {{"x", 4}};
  context_->addDataProvider(&variables);
  context_->addFunctionProvider(&functions);

  EXPECT_EQ(valueOf("twice(twice(1)+x)"), ok(12)) << "the inner call's end ended all waiting";
  EXPECT_TRUE(functions.parameters.empty());
}

TEST_F(ExpressionContext, TheWaitOfAFailedParseIsForgotten) {
  Variables variables;
  variables.values = {{"x", 4}};
  context_->addDataProvider(&variables);
  errorOf("abs(");

  EXPECT_EQ(valueOf("x"), ok(4));
}

TEST_F(ExpressionContext, OwnFunctionsCannotBeRedefined) {
  Functions functions;
  context_->addFunctionProvider(&functions);

  EXPECT_EQ(valueOf("abs(0-3)"), ok(3));
  EXPECT_TRUE(functions.asked.empty());
}

TEST_F(ExpressionContext, ProvidersAreToldInTheOrderInWhichTheyAreAsked) {
  Variables variables;
  Functions functions;
  EXPECT_TRUE(context_->getDataProvider().empty());
  ASSERT_EQ(context_->getFunctionProvider().size(), 1U) << "its own";

  context_->addDataProvider(&variables);
  context_->addFunctionProvider(&functions);
  context_->addDataProvider(nullptr);
  context_->addFunctionProvider(nullptr);

  EXPECT_EQ(context_->getDataProvider(), std::vector<moxExpressionVariableProvider*>{&variables});
  ASSERT_EQ(context_->getFunctionProvider().size(), 2U);
  EXPECT_EQ(context_->getFunctionProvider().back(), &functions);
}

TEST_F(ExpressionContext, AProvidersFailureLeavesParseAndNothingBehind) {
  Variables variables;
  Functions functions;
  variables.values = {{"x", 4}};
  context_->addDataProvider(&variables);
  context_->addFunctionProvider(&functions);

  EXPECT_THROW(context_->parse("x + twice(1) * (x - broken(0))"), moxError);
  EXPECT_EQ(valueOf("1"), ok(1));
  EXPECT_EQ(Variable::alive, 0);
  EXPECT_EQ(Twice::alive, 0);
}

TEST_F(ExpressionContext, OperationsDieWithTheContext) {
  Variables variables;
  Functions functions;
  variables.values = {{"x", 4}};
  context_->addDataProvider(&variables);
  context_->addFunctionProvider(&functions);
  context_->parse("x + twice(x) * (x");
  context_.reset();

  EXPECT_EQ(Variable::alive, 0);
  EXPECT_EQ(Twice::alive, 0);
}

TEST_F(ExpressionContext, AFunctionThatFailsEndsTheEvaluationAtWhatItLeft) {
  Functions functions;
  context_->addFunctionProvider(&functions);

  EXPECT_EQ(valueOf("twice()"), ok(0));
}

}  // namespace
