#include "zyn/datasources/offered_filters.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace {

using ManageFilterData = moxManageFilterDataSource::ManageFilterData;
using Specification = std::shared_ptr<moxFilterSpecification const>;

bool offers(ManageFilterData const& manager, std::string const& column) {
  return std::any_of(manager.avaliable.begin(), manager.avaliable.end(),
                     [&](auto const& entry) { return entry.filterName == column; });
}

std::vector<Specification> offeredByManagers(std::vector<Specification> const& definitions,
                                             std::vector<ManageFilterData> const& managers) {
  std::vector<Specification> filters;
  for (auto const& manager : managers) {
    std::copy_if(definitions.begin(), definitions.end(), std::back_inserter(filters),
                 [&](Specification const& filter) { return offers(manager, filter->getColumn()); });
  }
  return filters;
}

/// Whether the filter source has a condition of its own, or none on purpose, where the user would
/// give one.
bool answers(moxFilterDataSource const& filterSource, Specification const& specification) {
  auto const column = specification->getSQLDataSourceColumn();
  if (!column) {
    return false;
  }
  auto const conditions = filterSource.getFiltersSpec();
  return std::any_of(conditions.begin(), conditions.end(), [&](auto const& condition) {
    auto const origin = condition->getColumnOrigin();
    return origin.tableName == column->getTableName() &&
           origin.columnName == column->getColumnName();
  });
}

}  // namespace

std::vector<Specification> offeredFilters(
    std::vector<Specification> const& definitions, std::vector<ManageFilterData> const& managers,
    std::vector<std::shared_ptr<moxFilterDataSource const>> const& filterSources) {
  auto filters = managers.empty() ? definitions : offeredByManagers(definitions, managers);
  if (!filterSources.empty()) {
    std::erase_if(filters, [&](Specification const& specification) {
      return answers(*filterSources.front(), specification);
    });
  }
  return filters;
}
