#pragma once

#include "core/database/kept_value.h"

struct sqlite3;
struct sqlite3_stmt;

namespace mox::core {

/// The function in a "from" that lists the values bound to its mark, in one column, "value":
/// `mox_bound_list(?)`. Any number of values takes one mark, each of its own type. Given anything
/// else than a list of bindSqliteList it has no rows. Throws moxError when SQLite refuses it.
void registerSqliteBoundList(sqlite3* line);

/// What is bound to the mark: it stands where it is, and as it is, while the statement runs.
struct SqliteBoundList {
  KeptValue const* begin;
  KeptValue const* end;
};

/// Gives a list to the mark, counted from 1; the result is SQLite's status.
int bindSqliteList(sqlite3_stmt* statement, int mark, SqliteBoundList const& list);

}  // namespace mox::core
