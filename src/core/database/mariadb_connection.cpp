#include "core/database/mariadb_connection.h"

#include <poll.h>

#include <csignal>
#include <mutex>
#include <utility>

#include <errmsg.h>
#include <mysqld_error.h>

#include "core/database/database_error.h"
#include "core/database/mariadb_statement.h"
#include "core/database/sql_tokens.h"

namespace mox::core {
namespace {

constexpr unsigned kKilled = 1927;
constexpr unsigned kIdleTooLong = 4031;
constexpr unsigned kFirstClientError = 2000;
constexpr unsigned kLastClientError = 2999;

/// The client library must not change how the whole process takes SIGPIPE, which it does when it
/// starts: its writes do not raise the signal anyway.
void startLibrary() {
  struct sigaction before {};
  sigaction(SIGPIPE, nullptr, &before);
  mysql_library_init(0, nullptr, nullptr);
  sigaction(SIGPIPE, &before, nullptr);
}

/// What the client library keeps for a thread lives as long as the thread.
struct ThreadOfLibrary {
  ThreadOfLibrary() { mysql_thread_init(); }
  ~ThreadOfLibrary() { mysql_thread_end(); }
};

void joinLibrary() {
  static std::once_flag started;
  std::call_once(started, startLibrary);
  thread_local ThreadOfLibrary const member;
}

bool endsLine(unsigned number) {
  bool const client = number >= kFirstClientError && number <= kLastClientError;
  return client || number == kKilled || number == kIdleTooLong || number == ER_SERVER_SHUTDOWN ||
         number == ER_NET_PACKET_TOO_LARGE;
}

char const* orNull(std::string const& text) {
  return text.empty() ? nullptr : text.c_str();
}

/// Modes in which the server would read a text otherwise than we do: quotes, backslashes, whole
/// dialects.
bool changesReading(std::string_view mode) {
  static constexpr std::string_view kModes[] = {"ANSI_QUOTES", "ANSI",      "NO_BACKSLASH_ESCAPES",
                                                "DB2",         "MAXDB",     "MSSQL",
                                                "ORACLE",      "POSTGRESQL"};
  for (std::string_view const known : kModes) {
    if (mode == known) {
      return true;
    }
  }
  return false;
}

std::string readableModes(std::string_view modes) {
  std::string kept;
  while (!modes.empty()) {
    std::size_t const end = std::min(modes.find(','), modes.size());
    std::string_view const mode = modes.substr(0, end);
    modes.remove_prefix(std::min(end + 1, modes.size()));
    if (!changesReading(mode)) {
      kept += (kept.empty() ? "" : ",") + std::string(mode);
    }
  }
  return kept;
}

/// Statements whose effect is bound to the line, whatever becomes of it in the server: temporary
/// tables, variables, locks. Procedures may leave any of them.
bool leavesSessionState(SqlTokens const& tokens, bool repeated) {
  if (tokens.isWord(0, "create")) {
    return tokens.isWord(1, "temporary") ||
           (tokens.isWord(1, "or") && tokens.isWord(3, "temporary"));
  }
  if (tokens.isWord(0, "set")) {
    return !repeated;
  }
  return tokens.isWord(0, "call") || tokens.isWord(0, "lock") || tokens.isWord(0, "use");
}

}  // namespace

std::shared_ptr<PhysicalConnection> openMariadb(DatabaseUrl const& url,
                                                std::string const& password) {
  return std::make_shared<MariadbConnection>(url, password);
}

MariadbConnection::MariadbConnection(DatabaseUrl url, std::string password)
    : url_(std::move(url)), password_(std::move(password)) {
  joinLibrary();
  open();
}

MariadbConnection::~MariadbConnection() {
  close();
}

void MariadbConnection::setOptions() {
  my_bool const off = 0;
  my_bool const on = 1;
  unsigned const noLocalFiles = 0;
  mysql_options(mysql_, MYSQL_OPT_RECONNECT, &off);
  mysql_options(mysql_, MYSQL_REPORT_DATA_TRUNCATION, &on);
  mysql_options(mysql_, MYSQL_OPT_LOCAL_INFILE, &noLocalFiles);
  mysql_options(mysql_, MYSQL_SET_CHARSET_NAME, "utf8mb4");
  mysql_options(mysql_, MYSQL_OPT_CONNECT_TIMEOUT, &url_.connectTimeoutSeconds);
  mysql_options(mysql_, MYSQL_OPT_READ_TIMEOUT, &url_.readTimeoutSeconds);
  mysql_options(mysql_, MYSQL_OPT_WRITE_TIMEOUT, &url_.writeTimeoutSeconds);
  if (url_.port != 0) {
    unsigned const protocol = MYSQL_PROTOCOL_TCP;
    mysql_options(mysql_, MYSQL_OPT_PROTOCOL, &protocol);
  }
  if (!url_.tlsCa.empty()) {
    mysql_ssl_set(mysql_, nullptr, nullptr, url_.tlsCa.c_str(), nullptr, nullptr);
    mysql_options(mysql_, MYSQL_OPT_SSL_ENFORCE, &on);
    mysql_options(mysql_, MYSQL_OPT_SSL_VERIFY_SERVER_CERT, &on);
  }
}

void MariadbConnection::open() {
  mysql_ = mysql_init(nullptr);
  if (mysql_ == nullptr) {
    throw std::bad_alloc();
  }
  setOptions();
  bool const connected = mysql_real_connect(mysql_, url_.host.c_str(), url_.user.c_str(),
                                            password_.c_str(), orNull(url_.database), url_.port,
                                            orNull(url_.socket), CLIENT_MULTI_RESULTS) != nullptr;
  try {
    if (!connected) {
      failToOpen();
    }
    lost_ = false;
    setUpSession();
  } catch (...) {
    close();
    throw;
  }
}

void MariadbConnection::failToOpen() {
  unsigned const number = mysql_errno(mysql_);
  std::string message = "Cannot open the database: " + std::string(mysql_error(mysql_));
  if (number == ER_ACCESS_DENIED_ERROR) {
    message += "; check the user in the URL and the password that the settings name";
  }
  throw DatabaseError(std::move(message), std::to_string(number));
}

void MariadbConnection::close() noexcept {
  if (mysql_ == nullptr) {
    return;
  }
  closeLeft();
  mysql_close(mysql_);
  mysql_ = nullptr;
  lost_ = true;
}

std::string MariadbConnection::queryText(std::string const& sql) {
  if (mysql_real_query(mysql_, sql.data(), sql.size()) != 0) {
    fail(nullptr, sql);
  }
  std::unique_ptr<MYSQL_RES, decltype(&mysql_free_result)> const result(mysql_store_result(mysql_),
                                                                        &mysql_free_result);
  MYSQL_ROW const row = result ? mysql_fetch_row(result.get()) : nullptr;
  if (row == nullptr || row[0] == nullptr) {
    fail(nullptr, sql);
  }
  return std::string(row[0], mysql_fetch_lengths(result.get())[0]);
}

void MariadbConnection::setUpSession() {
  std::string const settings =
      queryText("select concat(@@session.max_allowed_packet, ' ', @@session.sql_mode)");
  std::size_t const blank = settings.find(' ');
  longestPacket_ = std::stoull(settings.substr(0, blank));
  std::string const modes = readableModes(std::string_view(settings).substr(blank + 1));
  execute("set session autocommit = 1, sql_mode = '" + modes + "'");
  hasSessionState_ = false;
  isInTransaction_ = false;
}

std::shared_ptr<moxDatabaseConnection::PreparedStatement> MariadbConnection::prepare(
    StatementScript script) {
  return std::make_shared<MariadbStatement>(shared_from_this(), std::move(script));
}

void MariadbConnection::execute(std::string const& sql) {
  freeLine();
  noteSessionState(sql, true);
  if (mysql_real_query(mysql_, sql.data(), sql.size()) != 0) {
    fail(nullptr, sql);
  }
  int next = 0;
  while (next == 0) {
    dropRows(sql);
    next = mysql_next_result(mysql_);
  }
  if (next > 0) {
    fail(nullptr, sql);
  }
  noteTransaction();
}

void MariadbConnection::dropRows(std::string const& sql) {
  MYSQL_RES* const result = mysql_use_result(mysql_);
  if (result != nullptr) {
    while (mysql_fetch_row(result) != nullptr) {
    }
    // Ahead of the release, which forgets the failure that ended the rows.
    unsigned const number = mysql_errno(mysql_);
    std::string const message = mysql_error(mysql_);
    mysql_free_result(result);
    if (number != 0) {
      noteFailure(number);
      throw DatabaseError(message, std::to_string(number), sql);
    }
  } else if (mysql_errno(mysql_) != 0) {
    fail(nullptr, sql);
  }
}

/// An idle line has nothing to say: what can be read there is its end, or the server's reason for
/// it.
bool MariadbConnection::hasHungUp() {
  pollfd line{mysql_get_socket(mysql_), POLLIN | POLLRDHUP, 0};
  bool const speaks = ::poll(&line, 1, 0) != 0;
  return speaks && mysql_ping(mysql_) != 0;
}

void MariadbConnection::ensureUsable() {
  if (mysql_ != nullptr && reader_ == nullptr && !lost_) {
    lost_ = hasHungUp();
  }
  if (!lost_) {
    return;
  }
  if (livingStatements_ > 0) {
    throw DatabaseError(
        "The connection to the database is lost; it is opened anew once the statements in use are "
        "given up",
        std::to_string(CR_SERVER_LOST));
  }
  bool const takenAlong = hasSessionState_ || isInTransaction_;
  try {
    close();
    open();
  } catch (...) {
    hasSessionState_ = takenAlong;
    throw;
  }
  if (takenAlong) {
    throw DatabaseError(
        "The connection to the database was lost, and with it the temporary tables and settings of "
        "this run; start it again",
        std::to_string(CR_SERVER_LOST));
  }
}

bool MariadbConnection::resetForReuse() {
  if (lost_ || livingStatements_ > 0) {
    return false;
  }
  try {
    freeLine();
    if (mysql_reset_connection(mysql_) != 0) {
      return false;
    }
    setUpSession();
    return true;
  } catch (...) {
    return false;
  }
}

void MariadbConnection::freeLine() {
  if (reader_ != nullptr) {
    reader_->keepRemainingRows();
  }
  closeLeft();
  if (lost_) {
    throw DatabaseError("The connection to the database is lost", std::to_string(CR_SERVER_LOST));
  }
}

void MariadbConnection::enter() {
  ++livingStatements_;
  left_.reserve(left_.size() + static_cast<std::size_t>(livingStatements_));
}

void MariadbConnection::leave(MYSQL_STMT* handle) noexcept {
  --livingStatements_;
  left_.push_back(handle);
  if (reader_ == nullptr) {
    closeLeft();
  }
}

void MariadbConnection::closeLeft() noexcept {
  for (MYSQL_STMT* const handle : left_) {
    mysql_stmt_close(handle);
  }
  left_.clear();
}

void MariadbConnection::noteFailure(unsigned number) noexcept {
  lost_ = lost_ || endsLine(number);
}

void MariadbConnection::noteSessionState(std::string const& sql, bool repeated) {
  hasSessionState_ = hasSessionState_ || leavesSessionState(SqlTokens(sql), repeated);
}

/// To be asked after an answer: the client library forgets it together with the line.
void MariadbConnection::noteTransaction() {
  isInTransaction_ = (mysql_->server_status & SERVER_STATUS_IN_TRANS) != 0;
}

void MariadbConnection::requireFits(std::size_t bytes, std::string const& sql) const {
  if (bytes >= longestPacket_) {
    throw DatabaseError("The statement or its values have " + std::to_string(bytes) +
                            " bytes, more than the server takes in one go (max_allowed_packet = " +
                            std::to_string(longestPacket_) + ")",
                        std::to_string(ER_NET_PACKET_TOO_LARGE), sql);
  }
}

void MariadbConnection::fail(MYSQL_STMT* statement, std::string const& sql) {
  unsigned number = statement == nullptr ? 0 : mysql_stmt_errno(statement);
  std::string message = number == 0 ? "" : mysql_stmt_error(statement);
  // A line that breaks under a fetch leaves its number on the line alone.
  if (number == 0) {
    number = mysql_errno(mysql_);
    message = mysql_error(mysql_);
  }
  if (number == 0) {
    lost_ = true;
    throw DatabaseError("The result broke off before its last row", std::to_string(CR_SERVER_LOST),
                        sql);
  }
  noteFailure(number);
  throw DatabaseError(
      message.empty() ? "The database reported a failure without a message" : std::move(message),
      std::to_string(number), sql);
}

}  // namespace mox::core
