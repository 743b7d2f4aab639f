#include "zyn/datasources/managed_filters.h"

#include <algorithm>

#include "mox/zyn/datasources/sql_data_source_column.h"
#include "mox/zyn/filters/filter_specification.h"
#include "zyn/datasources/statement_tokens.h"

namespace {

using ManageFilterData = moxManageFilterDataSource::ManageFilterData;
using RelatedFilter = ManageFilterData::RelatedFiltersData;

/// The table as the query calls it; where the manager is silent, that of the definition's filter on
/// the same column.
std::string tableOf(RelatedFilter const& related, std::string const& column,
                    moxSQLDataSource const& definition) {
  if (!related.tableName.empty()) {
    return related.tableName;
  }
  for (auto const& filter : definition.getFilters()) {
    auto const filtered = filter->getSQLDataSourceColumn();
    if (filtered && filter->getColumn() == column) {
      return filtered->getTableName();
    }
  }
  return {};
}

}  // namespace

bool speaksOf(ManageFilterData const& manager, std::string const& column) {
  return std::any_of(manager.related.begin(), manager.related.end(),
                     [&](auto const& related) { return related.filterNameRelac == column; }) ||
         std::any_of(manager.avaliable.begin(), manager.avaliable.end(),
                     [&](auto const& avaliable) { return avaliable.filterName == column; });
}

ManagedFilters::ManagedFilters(std::vector<ManageFilterData> const& managers,
                               moxDataSourceExecutionContext const& context)
    : managers_(managers) {
  for (auto const& manager : managers_) {
    for (auto const& filter : context.getDataSourceFilters(manager.name)) {
      auto column = filter->getColumnName();
      if (speaksOf(manager, column)) {
        filters_.push_back({filter, std::move(column), &manager.name});
      }
    }
  }
}

bool ManagedFilters::bindToken(std::string const& token, StatementFilters& statement) {
  if (filters_.empty()) {
    return false;
  }
  bool bound = false;
  for (auto const& manager : managers_) {
    bound = bindRelated(manager, token, statement) || bound;
    bound = bindAvaliable(manager, token, statement) || bound;
  }
  return bound;
}

void ManagedFilters::addConditions(moxSQLDataSource const& definition,
                                   StatementFilters& statement) {
  if (filters_.empty()) {
    return;
  }
  for (auto const& manager : managers_) {
    for (auto const& related : manager.related) {
      auto const* const managed =
          holdsToken(related.columnName) ? nullptr : find(related.filterNameRelac);
      if (managed == nullptr) {
        continue;
      }
      auto const& column =
          related.columnNameOrigin.empty() ? related.columnName : related.columnNameOrigin;
      noteRename(*managed, tableOf(related, column, definition), column);
      statement.addCondition(managed->filter, moxRunOrigin::kManager, *managed->manager);
    }
  }
}

std::vector<StatementFilters::Filter> ManagedFilters::unused() const {
  std::vector<StatementFilters::Filter> unused;
  for (auto const& managed : filters_) {
    if (std::none_of(renames_.begin(), renames_.end(),
                     [&](Rename const& rename) { return rename.filter == managed.filter; })) {
      unused.push_back(managed.filter);
    }
  }
  return unused;
}

void ManagedFilters::rename() const {
  for (auto const& rename : renames_) {
    rename.filter->setColumnName(rename.table, rename.statementColumn);
  }
}

void ManagedFilters::restoreNames() const {
  for (auto const& rename : renames_) {
    rename.filter->setColumnName(rename.table, rename.ownColumn);
  }
}

ManagedFilters::Managed const* ManagedFilters::find(std::string const& column) const {
  auto const found = std::find_if(filters_.begin(), filters_.end(),
                                  [&](Managed const& managed) { return managed.column == column; });
  return found == filters_.end() ? nullptr : &*found;
}

/// The context hands filters out as constant, and tells that a run may rename them.
void ManagedFilters::noteRename(Managed const& managed, std::string const& table,
                                std::string const& column) {
  renames_.push_back({std::const_pointer_cast<moxDataMatrixSQLFilter>(managed.filter), table,
                      managed.column, column});
}

bool ManagedFilters::bindAs(std::string const& givenColumn, std::string const& token,
                            StatementFilters& statement) {
  auto const* const managed = find(givenColumn);
  if (managed == nullptr) {
    return false;
  }
  noteRename(*managed, {}, token);
  statement.addParameter(managed->filter, token, moxRunOrigin::kManager, *managed->manager);
  return true;
}

bool ManagedFilters::bindRelated(ManageFilterData const& manager, std::string const& token,
                                 StatementFilters& statement) {
  return std::any_of(manager.related.begin(), manager.related.end(), [&](auto const& related) {
    return related.columnName == token && bindAs(related.filterNameRelac, token, statement);
  });
}

bool ManagedFilters::bindAvaliable(ManageFilterData const& manager, std::string const& token,
                                   StatementFilters& statement) {
  return std::any_of(manager.avaliable.begin(), manager.avaliable.end(), [&](auto const& entry) {
    return entry.filterName == token && bindAs(token, token, statement);
  });
}
