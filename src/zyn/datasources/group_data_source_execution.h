#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/group_data_source.h"
#include "zyn/datasources/definition_execution.h"

class GroupWiring;
class moxDataMatrix;

/// The run of one group. Its members run in a context of their own, which lives as long as the one
/// that the group runs in; only the result enters the latter.
class GroupDataSourceExecution final
    : public DefinitionExecution<moxGroupDataSource, moxGroupDataSourceExecution> {
 public:
  using ConstMember = std::shared_ptr<moxDadoDataSource const>;
  using NamedMatrix = std::pair<std::string, std::shared_ptr<moxDataMatrix>>;

  using DefinitionExecution::DefinitionExecution;

  std::string name() const override { return "moxGroupDataSourceExecution"; }

  /// Members run with the units of the context, and report no progress. False also for a group
  /// whose result comes from no member. Throws what wiring and running the members throws.
  bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                          std::string const& targetName) const override;

  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override;

  void setManageFiltersData(std::vector<ManageFilterData> const& managers) override {
    managers_ = managers;
  }
  void addManageFiltersData(ManageFilterData const& manager) override {
    managers_.push_back(manager);
  }
  void setFiltersDataSource(std::vector<FilterDataSource> const& filterSources) override;

  /// An empty filter source would narrow nothing, unseen: std::invalid_argument.
  void addFiltersDataSource(FilterDataSource filterSource) override;

  /// Members that run ahead of the definition's own. None may be empty: std::invalid_argument.
  void setDataSourcesComposicao(std::vector<ConstMember> const& members);

  /// Matrices that the members read, by name; of two under one name the first counts. None may be
  /// empty: std::invalid_argument.
  void setDataMatrixComposicao(std::vector<NamedMatrix> const& matrices);

 private:
  void wire(GroupWiring& wiring) const;
  void run(moxDataSourceExecutionContext const& context, GroupWiring const& wiring,
           moxDataSourceExecutionContext& child) const;

  std::vector<ConstMember> addedMembers_;
  std::vector<NamedMatrix> givenMatrices_;
  std::vector<ManageFilterData> managers_;
  std::vector<FilterDataSource> filterSources_;
};
