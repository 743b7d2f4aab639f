#pragma once

#include <memory>
#include <string>

#include "zyn/datasources/definition_execution.h"
#include "zyn/datasources/join_data_source.h"

/// A run of a join: the sources' matrices are taken from the context, joined, and the result is
/// registered. True also when the name of the result is taken, unless a source has no rows.
class JoinDataSourceExecution final : public DefinitionExecution<JoinDataSource> {
 public:
  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxJoinDataSourceExecution"; }
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;
};
