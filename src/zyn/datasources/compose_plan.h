#pragma once

#include <vector>

#include "mox/zyn/datasources/data_source_execution_context.h"

/// Which entries of a list must be executed in a run that only puts statements together, one flag
/// an entry: those whose rows the statement of a later one is made of. Never one that changes data.
std::vector<bool> entriesNeededForStatements(std::vector<moxDataSourceToProcess> const& list);

/// Whether the entry can be put together without being executed. A group passes it on to its
/// members.
bool hasStatement(moxDataSourceToProcess const& entry);
