#include <bit>
#include <cmath>
#include <cstdint>
#include <locale>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/promise.h"
#include "fuzz/targets.h"
#include "mox/zyn/expressions/expression_context.h"
#include "mox/zyn/expressions/expression_context_utilities.h"
#include "mox/zyn/expressions/expression_operation.h"
#include "mox/zyn/expressions/expression_providers.h"
#include "mox/zyn/expressions/expression_value_stack.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_expression_processor.h"
#include "support/foreign_column.h"
#include "support/test_host.h"

namespace mox::fuzz {

namespace {

using Tokens = std::vector<std::pair<bool, std::string>>;

constexpr double kVariable = 2.5;  // the value of "x"

/// Refuses what is written in no proper order: the machine with a stack may still make something of
/// that, but nobody else can say what.
struct NotProper {};

struct DividesByZero {};

/// The language once more, as a grammar that is read downwards and evaluated on the way.
class Grammar {
 public:
  explicit Grammar(Tokens tokens) : tokens_(std::move(tokens)) {}

  double value() {
    double const found = sum();
    require(place_ == tokens_.size());
    return found;
  }

 private:
  static constexpr int kDeepest = 200;

  static void require(bool isProper) {
    if (!isProper) {
      throw NotProper();
    }
  }

  bool take(char const* text) {
    bool const isNext =
        place_ < tokens_.size() && !tokens_[place_].first && tokens_[place_].second == text;
    place_ += isNext ? 1 : 0;
    return isNext;
  }

  double sum() {
    double left = product();
    while (true) {
      if (take("+")) {
        left = left + product();
      } else if (take("-")) {
        left = left - product();
      } else {
        return left;
      }
    }
  }

  double product() {
    double left = power();
    while (true) {
      if (take("*")) {
        left = left * power();
      } else if (take("/")) {
        left = quotient(left, power());
      } else if (take("%")) {
        left = std::fmod(left, power());
      } else {
        return left;
      }
    }
  }

  static double quotient(double left, double right) {
    if (right == 0) {
      throw DividesByZero();
    }
    return left / right;
  }

  double power() {
    double const base = atom();
    if (!take("^")) {
      return base;
    }
    require(++depth_ < kDeepest);
    double const exponent = power();
    --depth_;
    return std::pow(base, exponent);
  }

  double atom() {
    require(place_ < tokens_.size() && ++depth_ < kDeepest);
    double const found = tokens_[place_].first ? number() : named();
    --depth_;
    return found;
  }

  double number() {
    std::istringstream stream(tokens_[place_++].second);
    stream.imbue(std::locale::classic());
    double found = 0;
    stream >> found;
    return found;
  }

  double named() {
    if (take("(")) {
      double const found = sum();
      require(take(")"));
      return found;
    }
    if (take("x")) {
      require(calls_ == 0);  // in a call the first name would go to the function
      return kVariable;
    }
    return take("abs") ? std::fabs(parameters(1).front()) : withPlaces();
  }

  double withPlaces() {
    if (take("floor")) {
      auto const given = parameters(2);
      return std::trunc(given[0] * scale(given[1])) / scale(given[1]);
    }
    if (take("round")) {
      auto const given = parameters(2);
      return std::round(given[0] * scale(given[1]) / scale(given[1]));
    }
    require(take("ceil"));
    auto const given = parameters(2);
    return std::ceil(given[0] * scale(given[1]) / scale(given[1]));
  }

  std::vector<double> parameters(std::size_t count) {
    ++calls_;
    require(take("("));
    std::vector<double> found = {sum()};
    while (take(",")) {
      found.push_back(sum());
    }
    require(take(")") && found.size() == count);
    --calls_;
    return found;
  }

  static double scale(double places) {
    double made = 1;
    for (int i = 1; i <= 18 && places >= i; ++i) {
      made *= 10;
    }
    return made;
  }

  Tokens tokens_;
  std::size_t place_ = 0;
  int depth_ = 0;
  int calls_ = 0;
};

class Variable final : public moxExpressionOperation {
 public:
  bool leftAssociative() const override { return false; }
  int precedence() const override { return 0; }
  bool isOperator() const override { return false; }
  bool isFunction() const override { return false; }
  bool exec(moxExpressionValueStack* stack) override {
    stack->push(kVariable);
    return true;
  }
};

class Variables final : public moxExpressionVariableProvider {
 public:
  moxExpressionOperation* getVariable(std::string const& name) override {
    return name == "x" ? new Variable() : nullptr;
  }
};

bool isSame(double left, double right) {
  return (std::isnan(left) && std::isnan(right)) ||
         std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

/// What an evaluation comes to: a value, none, or a division by zero.
struct Outcome {
  std::optional<double> value;
  bool dividesByZero = false;
};

Outcome evaluate(moxExpressionContext& context) {
  try {
    bool ok = false;
    double const value = context.exec(&ok);
    require(ok || value == 0.0, "without a value the result is 0");
    return {ok ? std::optional(value) : std::nullopt, false};
  } catch (moxExpressionContext::DivByZero const& error) {
    require(error.errorMessage() == "Divisão por zero.", "the message of a division by zero");
    return {{}, true};
  }
}

std::optional<Outcome> evaluateGrammar(Tokens const& tokens) {
  try {
    return Outcome{Grammar(tokens).value(), false};
  } catch (NotProper const&) {
    return {};
  } catch (DividesByZero const&) {
    return Outcome{{}, true};
  }
}

/// The grammar stops at a division by zero and so does not see what follows it, be it proper or
/// not.
void compare(TestHost& host, std::string const& text, Outcome const& found, bool isParsed) {
  Tokens tokens;
  host.get<moxExpressionContextUtilities>("moxExpressionContextUtilities")
      ->tokenize(text, tokens, false);
  auto const expected = evaluateGrammar(tokens);
  if (!expected || (expected->dividesByZero && !found.dividesByZero)) {
    return;
  }
  require(isParsed || expected->dividesByZero, "a proper expression is understood");
  require(expected->dividesByZero == found.dividesByZero, "both divide by zero, or none");
  require(found.dividesByZero || (found.value && isSame(*found.value, *expected->value)),
          "both find the same value");
}

void readAlone(TestHost& host, std::string const& text) {
  Variables variables;
  auto const context = host.get<moxExpressionContext>("moxExpressionContext");
  context->addDataProvider(&variables);
  bool const isParsed = context->parse(text);
  require(isParsed == context->getError().empty(), "there is a reason where a text is refused");
  Outcome const found = evaluate(*context);
  Outcome const again = evaluate(*context);
  require(found.dividesByZero == again.dividesByZero &&
              found.value.has_value() == again.value.has_value() &&
              (!found.value || isSame(*found.value, *again.value)),
          "an expression can be evaluated again");
  compare(host, text, found, isParsed);
}

using Doubles = std::vector<std::optional<double>>;

std::shared_ptr<moxDataMatrixColumn> ownColumn(TestHost& host, std::string const& name,
                                               Doubles const& cells) {
  auto column = host.get<moxDataMatrixDoubleColumn>("moxDataMatrixDoubleColumn");
  column->setName(name);
  for (auto const& cell : cells) {
    cell ? column->appendValue(*cell) : column->appendNull();
  }
  return column;
}

std::shared_ptr<moxDataMatrixColumn> foreignColumn(TestHost&, std::string const& name,
                                                   Doubles const& cells) {
  return std::make_shared<mox_test::ForeignDoubleColumn>(name, cells);
}

/// Two columns that are computed by a text, and the failure if there is one. The second reads a
/// column of foreign make when `make` gives such, and has both computed row by row.
template <class Make>
std::pair<std::shared_ptr<moxDataMatrix>, std::string> computed(TestHost& host,
                                                                std::string const& text,
                                                                Make make) {
  auto matrix = host.get<moxDataMatrix>("moxDataMatrix");
  matrix->addColumn(make(host, "a", {1.5, std::nullopt, -3, 0, 1e300, 7}));
  matrix->addColumn(make(host, "x", {2, 1, std::nan(""), 5, -0.0, 3, 4}));
  auto const processor =
      host.get<moxDataMatrixExpressionProcessor>("moxDataMatrixExpressionProcessor");
  processor->addColumn("n", text, moxColumnExpression::kDecimal, -1,
                       moxColumnExpression::kArredonda);
  processor->addColumn("m", "a(0)+n(1)+x(0)", moxColumnExpression::kInteiro, 0,
                       moxColumnExpression::kTrunca);
  std::string error;
  accepted([&] {
    try {
      processor->processDataMatrix(matrix);
    } catch (moxError const& failure) {
      error = failure.errorMessage();
      throw;
    }
  });
  return {matrix, error};
}

template <class T>
bool haveSameCells(moxDataMatrixColumn const& left, moxDataMatrixColumn const& right) {
  auto const& first = dynamic_cast<moxDataMatrixTypedColumn<T> const&>(left);
  auto const& second = dynamic_cast<moxDataMatrixTypedColumn<T> const&>(right);
  bool same = left.numRows() == right.numRows();
  for (unsigned int row = 0; same && row < left.numRows(); ++row) {
    same =
        left.isNull(row) == right.isNull(row) && isSame(first.getValue(row), second.getValue(row));
  }
  return same;
}

void readWithColumns(TestHost& host, std::string const& text) {
  auto const [blocks, blockError] = computed(host, text, ownColumn);
  auto const [rows, rowError] = computed(host, text, foreignColumn);
  require(blockError == rowError, "both roads fail alike");
  require(blocks->columnCount() == rows->columnCount(), "and add the same columns");
  if (blocks->columnCount() > 2) {
    require(haveSameCells<double>(*blocks->columnAt(2), *rows->columnAt(2)), "with the same cells");
  }
  if (blocks->columnCount() > 3) {
    require(haveSameCells<int>(*blocks->columnAt(3), *rows->columnAt(3)), "in both columns");
  }
}

}  // namespace

void readExpression(std::string_view bytes) {
  TestHost host;
  std::string const text(bytes);
  readAlone(host, text);
  readWithColumns(host, text);
}

}  // namespace mox::fuzz
