#include "zyn/datasources/group_data_source_execution.h"

#include <stdexcept>

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "zyn/datasources/data_source_execution_context.h"
#include "zyn/datasources/depth_guard.h"
#include "zyn/datasources/group_wiring.h"
#include "zyn/datasources/offered_filters.h"
#include "zyn/datasources/run_recorder.h"

bool GroupDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  DepthGuard const guard(definition().getName());
  auto const child = moxApp->get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  if (auto const* const own = dynamic_cast<DataSourceExecutionContext const*>(context.get())) {
    own->appendContext(child, definition().getFilterSource(), definition().getName(), targetName,
                       managers_);
  }
  auto const* const report = reportOf(*context);
  GroupWiring wiring(definition().getName(), report ? report->runRecorder() : nullptr);
  wire(wiring);
  run(*context, wiring, *child);
  auto const output = definition().getOutputSource();
  auto const matrix = child->getDataMatrix(output);
  if (!matrix) {
    recordWiring(*context, [&] { return "gives no rows: no member is called \"" + output + "\""; });
  }
  return context->registerDataMatrix(resultName(targetName), matrix);
}

void GroupDataSourceExecution::wire(GroupWiring& wiring) const {
  for (auto const& member : addedMembers_) {
    wiring.addMember(member);
  }
  wiring.addMembersOf(definition());
  auto const filterSource = definition().getFilterSource();
  for (auto const& manager : managers_) {
    wiring.ruleMember(filterSource, manager);
  }
  for (auto const& filter : filterSources_) {
    wiring.changeMember(filterSource, filter);
  }
}

void GroupDataSourceExecution::run(moxDataSourceExecutionContext const& context,
                                   GroupWiring const& wiring,
                                   moxDataSourceExecutionContext& child) const {
  for (auto const& [name, matrix] : givenMatrices_) {
    child.registerDataMatrix(name, matrix);
  }
  child.processDataSources(nullptr, wiring.list(), context.getIdUnidadeNegocio(),
                           context.getIdUnidadeMatriz());
}

std::vector<std::shared_ptr<moxFilterSpecification const>> GroupDataSourceExecution::getFilters()
    const {
  return offeredFilters(definition().getFilters(), managers_, filterSources_);
}

void GroupDataSourceExecution::setFiltersDataSource(
    std::vector<FilterDataSource> const& filterSources) {
  filterSources_.clear();
  for (auto const& filterSource : filterSources) {
    addFiltersDataSource(filterSource);
  }
}

void GroupDataSourceExecution::addFiltersDataSource(FilterDataSource filterSource) {
  if (!filterSource) {
    throw std::invalid_argument("a filter source of a group's run must not be empty");
  }
  filterSources_.push_back(std::move(filterSource));
}

void GroupDataSourceExecution::setDataSourcesComposicao(std::vector<ConstMember> const& members) {
  for (auto const& member : members) {
    if (!member) {
      throw std::invalid_argument("a member of a group's run must not be empty");
    }
  }
  addedMembers_ = members;
}

void GroupDataSourceExecution::setDataMatrixComposicao(std::vector<NamedMatrix> const& matrices) {
  for (auto const& [name, matrix] : matrices) {
    if (!matrix) {
      throw std::invalid_argument("the matrix \"" + name + "\" of a group's run must not be empty");
    }
  }
  givenMatrices_ = matrices;
}
