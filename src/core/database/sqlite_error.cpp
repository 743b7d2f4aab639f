#include "core/database/sqlite_error.h"

#include <sqlite3.h>

#include <new>

#include "core/database/database_error.h"

namespace mox::core {

void throwSqliteError(sqlite3* line, int status, std::string const& statement) {
  if ((status & 0xFF) == SQLITE_NOMEM) {
    throw std::bad_alloc();
  }
  // A misuse leaves no message of its own on the line: the one that stands there belongs to another
  // call.
  bool const ownMessage = (sqlite3_errcode(line) & 0xFF) == (status & 0xFF);
  std::string const message = ownMessage ? sqlite3_errmsg(line) : sqlite3_errstr(status);
  int const code = ownMessage ? sqlite3_extended_errcode(line) : status;
  throw DatabaseError(message, std::to_string(code), statement);
}

}  // namespace mox::core
