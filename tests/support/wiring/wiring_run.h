#pragma once

#include <string>
#include <vector>

#include "mox/core/database_connection.h"
#include "support/test_host.h"
#include "support/wiring/wiring.h"

namespace mox_test::wiring {

/// Makes the tables anew, with their rows.
void makeTables(moxDatabaseConnection& database, Tables const& tables);

/// Runs a wiring through the module and compares it with the plain reference. A flat one is run
/// twice: with executions that are put together by hand, where every member is compared, and as a
/// group. Gives what differs, with all that a reader needs; empty when nothing does.
std::string differences(TestHost& host, Tables const& tables, Wiring const& wiring);

/// Runs `count` wirings from `firstSeed` on, and as many from the same tables as `perTables` says;
/// gives the first differences, with their seeds. MOX_WIRING_SEED in the environment names one seed
/// to run instead.
std::string differencesOf(TestHost& host, unsigned firstSeed, unsigned count,
                          unsigned perTables = 50);

}  // namespace mox_test::wiring
