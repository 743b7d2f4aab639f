#pragma once

#include "mox/zyn/sql/composed_select.h"
#include "zyn/datasources/managed_filters.h"
#include "zyn/datasources/run_recorder.h"
#include "zyn/datasources/statement_filters.h"

/// Tells the recorder what is about to be sent, and why each value and condition is part of it. A
/// condition that the run did not add is the loader's own, on the business units.
void recordStatement(RunRecorder& recorder, moxComposedSelect const& select,
                     StatementFilters const& filters);

/// Tells the recorder which of the managers' filters the statement has no use for.
void recordUnused(RunRecorder& recorder, ManagedFilters const& managed);
