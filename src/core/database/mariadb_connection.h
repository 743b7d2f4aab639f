#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <mysql.h>

#include "core/database/database_url.h"
#include "core/database/physical_connection.h"

namespace mox::core {

class MariadbStatement;

/// Opens a line to the server that a URL of the kind kMariadb names. Throws a moxError of one
/// sentence, with the client's or the server's number as its code, when the server cannot be
/// reached or refuses.
std::shared_ptr<PhysicalConnection> openMariadb(DatabaseUrl const& url,
                                                std::string const& password);

/// One line to a MariaDB server, spoken with in the binary protocol. Belongs to one thread at a
/// time.
///
/// A line carries one conversation: rows that a statement has not read yet stand on it and block
/// every other request. The statement that they belong to is the line's reader; before anything
/// else is sent, it takes its remaining rows off the line and keeps them (freeLine).
class MariadbConnection : public PhysicalConnection,
                          public std::enable_shared_from_this<MariadbConnection> {
 public:
  MariadbConnection(DatabaseUrl url, std::string password);
  ~MariadbConnection() override;

  MariadbConnection(MariadbConnection const&) = delete;
  MariadbConnection& operator=(MariadbConnection const&) = delete;

  std::shared_ptr<moxDatabaseConnection::PreparedStatement> prepare(
      StatementScript script) override;
  void execute(std::string const& sql) override;
  void ensureUsable() override;
  bool resetForReuse() override;

  // For the statements of this line.

  MYSQL* handle() { return mysql_; }

  /// Makes the line ready for a request: its reader, if any, keeps its remaining rows, and
  /// statements that were let go meanwhile are closed.
  void freeLine();

  /// The statement whose rows stand on the line, or null.
  MariadbStatement const* reader() const { return reader_; }
  void setReader(MariadbStatement* reader) { reader_ = reader; }

  /// Counts the living statements: the line is not opened anew under them.
  void enter();

  /// Takes a statement's handle over and closes it as soon as the line is free for it.
  void leave(MYSQL_STMT* handle) noexcept;

  /// Notes that the line is gone when the number tells so.
  void noteFailure(unsigned number) noexcept;
  bool isLost() const { return lost_; }

  /// Notes what a statement leaves behind on the server that a new line would not have. `repeated`
  /// tells that it is run again ahead of every use of what it sets.
  void noteSessionState(std::string const& sql, bool repeated);

  /// Notes whether the server's last answer left a transaction open.
  void noteTransaction();

  /// Throws moxError when so many bytes are more than the server takes in one go; it would give up
  /// the line over them.
  void requireFits(std::size_t bytes, std::string const& sql) const;

  /// Throws the failure that the client library reports for the statement, or else for the line.
  /// Notes a lost line. `statement` may be null.
  [[noreturn]] void fail(MYSQL_STMT* statement, std::string const& sql);

 private:
  void open();
  void setOptions();
  [[noreturn]] void failToOpen();
  void close() noexcept;
  void setUpSession();
  void closeLeft() noexcept;
  bool hasHungUp();
  void dropRows(std::string const& sql);
  std::string queryText(std::string const& sql);

  DatabaseUrl url_;
  std::string password_;
  MYSQL* mysql_ = nullptr;
  MariadbStatement* reader_ = nullptr;
  std::vector<MYSQL_STMT*> left_;  // let go while the line was in use
  int livingStatements_ = 0;
  std::size_t longestPacket_ = 0;  // in bytes
  bool lost_ = false;
  bool hasSessionState_ = false;  // temporary tables, variables and the like
  bool isInTransaction_ = false;
};

}  // namespace mox::core
