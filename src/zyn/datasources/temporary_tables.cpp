#include "zyn/datasources/temporary_tables.h"

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "zyn/matrix/temporary_table.h"

TemporaryTables::~TemporaryTables() {
  if (std::this_thread::get_id() != thread_) {
    return;
  }
  for (auto const& name : names_) {
    dropTemporaryTable(name);
  }
}

void dropWithRun(moxDataSourceExecutionContext& context, std::string const& tableName) {
  if (auto* const owner = dynamic_cast<TemporaryTableOwner*>(&context)) {
    owner->temporaryTables().add(tableName);
  }
}
