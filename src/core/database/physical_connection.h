#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/database_connection.h"

namespace mox::core {

/// A statement text taken apart at its top-level semicolons.
struct StatementScript {
  std::vector<std::string> before;  // run ahead of each execution
  std::string main;                 // the one that is prepared: it has the marks and the rows
  std::vector<std::string> after;   // run once the last row was read
};

/// One open line to a database. Belongs to one thread at a time; the kinds of database implement
/// it.
class PhysicalConnection {
 public:
  virtual ~PhysicalConnection() = default;

  /// The statement keeps the line alive. Throws moxError for a text that the database refuses.
  virtual std::shared_ptr<moxDatabaseConnection::PreparedStatement> prepare(
      StatementScript script) = 0;

  /// Runs one statement that has no values and no rows to read.
  virtual void execute(std::string const& sql) = 0;

  /// Called before a statement is prepared: opens a dropped line anew when nothing is lost by it,
  /// that is, when no statement of it is alive. A drop that took temporary tables along is reported
  /// by a moxError, once.
  virtual void ensureUsable() = 0;

  /// Makes the line as new for another thread: temporary tables dropped, an open transaction rolled
  /// back. False when that cannot be done or a statement of it is alive; the line is then closed
  /// instead of lent again.
  virtual bool resetForReuse() { return false; }
};

}  // namespace mox::core
