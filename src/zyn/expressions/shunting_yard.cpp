#include "zyn/expressions/shunting_yard.h"

#include <locale>
#include <sstream>
#include <utility>

#include "zyn/expressions/constant_value.h"

namespace moxExParser {

namespace {

/// What a stream makes of the characters: "1.2.3" is 1.2, "." is 0, and a number too large for a
/// double is the largest double.
double numberIn(std::string_view text) {
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  double value = 0;
  stream >> value;
  return value;
}

/// The first provider's answer that is none of null.
template <class Provider>
OwnedOperation askedFor(std::string const& name, std::vector<Provider*> const& providers,
                        moxExpressionOperation* (Provider::*ask)(std::string const&)) {
  for (Provider* const provider : providers) {
    if (OwnedOperation made{(provider->*ask)(name)}) {
      return made;
    }
  }
  return {};
}

/// Whether a waiting operator runs before the new one that follows it.
bool runsBefore(moxExpressionOperation const& waiting, moxExpressionOperation const& made) {
  return made.leftAssociative() ? waiting.precedence() >= made.precedence()
                                : waiting.precedence() > made.precedence();
}

}  // namespace

std::string ShuntingYard::run() {
  for (Token token = tokens_.next(); !token.text.empty(); token = tokens_.next()) {
    if (std::string error = take(token); !error.empty()) {
      return error;
    }
  }
  return finish();
}

std::string ShuntingYard::take(Token const& token) {
  if (token.isNumber) {
    output_.push_back(std::make_unique<ConstantValue>(numberIn(token.text)));
    return {};
  }
  switch (token.text.front()) {
    case ',':
      return closeParameter();
    case '(':
      waiting_.emplace_back();
      return {};
    case ')':
      return closeParenthesis();
    default:
      return takeName(std::string(token.text));
  }
}

std::string ShuntingYard::takeName(std::string const& name) {
  if (auto made =
          askedFor(name, providers_.operators, &moxExpressionOperatorProvider::getOperator)) {
    takeOperator(std::move(made));
    return {};
  }
  if (auto made =
          askedFor(name, providers_.functions, &moxExpressionFunctionProvider::getFunction)) {
    return takeFunction(std::move(made));
  }
  if (called_ != nullptr) {
    std::exchange(called_, nullptr)->setParameter(name);
    return {};
  }
  if (auto made =
          askedFor(name, providers_.variables, &moxExpressionVariableProvider::getVariable)) {
    output_.push_back(std::move(made));
    return {};
  }
  return "Símbolo não identificado \"" + name + "\"";
}

void ShuntingYard::takeOperator(OwnedOperation made) {
  while (!waiting_.empty() && waiting_.back() && waiting_.back()->isOperator() &&
         runsBefore(*waiting_.back(), *made)) {
    popToOutput();
  }
  waiting_.push_back(std::move(made));
}

std::string ShuntingYard::takeFunction(OwnedOperation function) {
  if (!tokens_.isNext('(')) {
    return "Função sem abertura de parênteses.";
  }
  called_ = function.get();
  waiting_.push_back(std::move(function));
  return {};
}

std::string ShuntingYard::closeParameter() {
  return popToParenthesis() ? "" : "Separador de parâmetro fora de chamada de função.";
}

std::string ShuntingYard::closeParenthesis() {
  if (!popToParenthesis()) {
    return "Contagem incorreta de parênteses";
  }
  waiting_.pop_back();
  if (!waiting_.empty() && waiting_.back() && waiting_.back()->isFunction()) {
    popToOutput();
  }
  called_ = nullptr;
  return {};
}

std::string ShuntingYard::finish() {
  if (popToParenthesis()) {
    return "Erro na contagem de parênteses.";
  }
  return {};
}

/// False when no parenthesis is open; then nothing waits any more.
bool ShuntingYard::popToParenthesis() {
  while (!waiting_.empty() && waiting_.back()) {
    popToOutput();
  }
  return !waiting_.empty();
}

void ShuntingYard::popToOutput() {
  output_.push_back(std::move(waiting_.back()));
  waiting_.pop_back();
}

}  // namespace moxExParser
