#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mox::core {

/// A statement as SQLite takes it.
struct SqliteText {
  std::vector<std::string> ahead;  // statements that are to run ahead of it
  std::string statement;
};

/// Turns a single statement in MariaDB's dialect into one for SQLite. What SQLite reads the same
/// stays as it is, byte by byte:
/// - `create or replace temporary table T ...` creates the table behind a `drop table if exists
///   temp.T`;
/// - `drop temporary table [if exists] T` drops `temp.T`;
/// - a literal 'Y/M/D' directly inside `between ... and ...` becomes 'YYYY-MM-DD' if it is a day of
///   the calendar;
/// - backslashes in a literal are read, as SQLite knows no escapes; comments from "#" on become a
///   blank;
/// - two minus signs in a row that open no comment are kept apart, as SQLite would read one.
/// Throws moxError for a statement that is cut off inside a literal: SQLite, which knows no
/// escapes, may see its end earlier.
SqliteText rewriteForSqlite(std::string_view statement);

}  // namespace mox::core
