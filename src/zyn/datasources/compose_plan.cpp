#include "zyn/datasources/compose_plan.h"

#include <cstddef>
#include <string>

#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "zyn/datasources/object_data_source_execution.h"

namespace {

using List = std::vector<moxDataSourceToProcess>;

/// A group reads only what its own members make.
bool isGroup(moxDataSourceToProcess const& entry) {
  return dynamic_cast<moxGroupDataSourceExecution const*>(entry.second.second.get()) != nullptr;
}

moxSQLDataSourceExecution const* sqlExecution(moxDataSourceToProcess const& entry) {
  return dynamic_cast<moxSQLDataSourceExecution const*>(entry.second.second.get());
}

/// It has no rows that another could need, and a run that only shows statements must leave the data
/// as they are.
bool changesData(moxDataSourceToProcess const& entry) {
  return dynamic_cast<ObjectDataSourceExecution const*>(entry.second.second.get()) != nullptr;
}

/// An entry without a name may bear any: it takes that of its definition when it runs.
void markNamed(List const& list, std::size_t end, std::string const& name,
               std::vector<bool>& needed) {
  for (std::size_t i = 0; i < end; ++i) {
    if (list[i].first == name || list[i].first.empty()) {
      needed[i] = !changesData(list[i]);
    }
  }
}

void markAll(List const& list, std::size_t end, std::vector<bool>& needed) {
  for (std::size_t i = 0; i < end; ++i) {
    needed[i] = !changesData(list[i]);
  }
}

}  // namespace

bool hasStatement(moxDataSourceToProcess const& entry) {
  return sqlExecution(entry) != nullptr || isGroup(entry) || changesData(entry);
}

std::vector<bool> entriesNeededForStatements(List const& list) {
  std::vector<bool> needed(list.size(), false);
  for (std::size_t i = list.size(); i-- > 0;) {  // an entry reads only what stands before it
    if (auto const* const sql = sqlExecution(list[i])) {
      auto const filterSource = sql->getFilterDataSource();
      if (!filterSource.empty()) {
        markNamed(list, i, filterSource, needed);
      }
    } else if (needed[i] && !isGroup(list[i])) {
      markAll(list, i, needed);  // what it reads is known to nobody else
      return needed;
    }
  }
  return needed;
}
