#pragma once

#include <memory>
#include <string>

#include "mox/zyn/datasources/object_data_source.h"
#include "zyn/datasources/definition_execution.h"
#include "zyn/datasources/statement_tokens.h"

/// One execution of a statement that changes data.
class ObjectDataSourceExecution final : public DefinitionExecution<moxObjectDataSource> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxObjectDataSourceExecution"; }

  /// Executes the statement with the values of the context's filters. Registers no matrix. In a run
  /// that only puts statements together nothing is executed, whoever may need what it does. Always
  /// true. Throws what the database throws, and moxError "Quantidade de valores inválida para o
  /// filtro " with the column for a filter that has more values, or fewer, than its place takes.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;

  /// The statement with a mark for each token, and the tokens' names. What stands behind the last
  /// token stays: a condition there may be all that keeps a statement from the other rows.
  TokenizedStatement parse(std::string const& sql) const { return parseTokens(sql); }
};
