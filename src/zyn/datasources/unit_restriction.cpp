#include "zyn/datasources/unit_restriction.h"

#include "mox/core/error.h"
#include "zyn/datasources/condition_scan.h"

namespace {

constexpr char const* kWeakOperator = "há um \"or\" fora de parênteses na condição";
constexpr char const* kSetOperation =
    "há um \"union\", \"intersect\" ou \"except\" fora de parênteses";
constexpr char const* kSeveralStatements = "há mais de uma instrução no texto";
constexpr char const* kOpenEnd = "o texto termina dentro de um comentário ou de aspas";
constexpr char const* kUnbalanced = "há um parêntese sem par";
constexpr char const* kNoPlace = "a condição da unidade não ficaria no \"where\"";
constexpr char const* kNoName = "a coluna não tem nome";

[[noreturn]] void refuse(moxSQLDataSource const& definition, char const* reason) {
  throw moxDefaultErrorImpl<moxError>(
      "A consulta " + definition.getName() +
      " tem coluna de unidade e não pode ser restringida: " + reason);
}

bool takesCondition(StatementShape const& shape) {
  return shape.lastClause == StatementShape::Clause::kWhere ||
         (shape.lastClause == StatementShape::Clause::kOn && !shape.outerJoin);
}

/// Why a condition at the end of the text would not restrict all of its rows; null when it would.
char const* obstacleIn(StatementShape const& shape) {
  if (shape.openEnd) {
    return kOpenEnd;
  }
  if (!shape.balanced) {
    return kUnbalanced;
  }
  if (shape.severalStatements) {
    return kSeveralStatements;
  }
  if (shape.setOperation) {
    return kSetOperation;
  }
  if (shape.weakOperatorInCondition || shape.weakOperatorInLastClause) {
    return kWeakOperator;
  }
  return takesCondition(shape) ? nullptr : kNoPlace;
}

/// Whether the text around the statement makes it a part of a larger one.
bool addsRows(moxSQLDataSource const& definition, SQLStatementTexts const& texts) {
  return shapeOf(definition.getPrefix()).setOperation || shapeOf(texts.tail).setOperation ||
         shapeOf(definition.getSufix()).setOperationAtFirst;
}

}  // namespace

std::pair<std::string, std::string> unitColumnOf(moxSQLDataSource const& definition) {
  auto const column = definition.getUnidadeColumn().first;
  if (!column) {
    return {};
  }
  auto name = column->getColumnNameOrigin();
  if (name.empty()) {
    name = column->getColumnName();
  }
  if (name.empty()) {
    refuse(definition, kNoName);
  }
  return {column->getTableName(), name};
}

void encloseCondition(moxSQLDataSource const& definition, SQLStatementTexts& texts) {
  constexpr std::size_t kKeyWordSize = sizeof " where " - 1;
  if (texts.where.empty() || !definition.getUnidadeColumn().first) {
    return;
  }
  auto const shape = shapeOf(texts.where);
  if (!shape.balanced) {
    refuse(definition, kUnbalanced);
  }
  if (shape.weakOperator) {
    texts.where.insert(kKeyWordSize, 1, '(') += ')';
  }
}

void requireRestrictable(moxSQLDataSource const& definition, std::string const& query,
                         SQLStatementTexts const& texts, std::string const& joiningWord) {
  auto const shape = shapeOf(query + ' ' + (joiningWord.empty() ? "where" : joiningWord));
  if (char const* const reason = obstacleIn(shape)) {
    refuse(definition, reason);
  }
  if (addsRows(definition, texts)) {
    refuse(definition, kSetOperation);
  }
}
