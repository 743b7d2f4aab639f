#pragma once

#include <string>

#include "mox/zyn/sql/composed_select.h"
#include "zyn/datasources/managed_filters.h"
#include "zyn/datasources/run_recorder.h"
#include "zyn/datasources/statement_filters.h"

/// Tells the report's recorder what the source of that name is about to send, and why each value
/// and condition is part of it. A condition that the run did not add is the loader's own, on the
/// business units.
void recordStatement(RunRecorderHolder const& report, std::string const& source,
                     moxComposedSelect const& select, StatementFilters const& filters);

/// Tells the recorder which of the managers' filters the statement has no use for.
void recordUnused(RunRecorder& recorder, ManagedFilters const& managed);
