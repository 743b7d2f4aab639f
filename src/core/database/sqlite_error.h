#pragma once

#include <string>

struct sqlite3;

namespace mox::core {

/// Throws what the line reports of its last failure: SQLite's message and extended code, with the
/// statement as a detail. `status` is what the failed call gave.
[[noreturn]] void throwSqliteError(sqlite3* line, int status, std::string const& statement);

}  // namespace mox::core
