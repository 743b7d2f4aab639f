#pragma once

#include <string>
#include <string_view>

namespace mox::core {

/// Where a database is, taken apart from text like `sqlite:escola.db`, `sqlite::memory:`,
/// `mariadb://user@host:3306/db` or `mariadb://user@localhost/db?socket=/run/mysqld/mysqld.sock`.
/// It never holds a password. Parts may be percent-encoded and are held decoded.
struct DatabaseUrl {
  enum class Kind { kSqlite, kMariadb };

  Kind kind = Kind::kSqlite;

  // kSqlite
  std::string path;         // ":memory:" for a database that lives as long as the connection
  std::string mode = "rw";  // option "mode": ro, rw, or rwc, which makes a missing file

  // kMariadb
  std::string user;
  std::string host;      // "localhost" without a port means the server's usual socket
  unsigned port = 0;     // 0 for none given
  std::string database;  // empty for none
  std::string socket;    // option "socket": path of a unix socket, empty for none
  std::string
      tlsCa;  // option "tls_ca": certificates to prove the server by; empty for no encryption
  unsigned connectTimeoutSeconds = 10;  // option "connect_timeout"
  unsigned readTimeoutSeconds = 0;      // option "read_timeout": 0 waits for ever
  unsigned writeTimeoutSeconds = 0;     // option "write_timeout": 0 waits for ever
};

/// Takes a URL apart. Throws a moxError that says what is wrong and how to write it, and that never
/// repeats the parts in which somebody could have put a password. A password in the URL is refused.
DatabaseUrl parseDatabaseUrl(std::string_view text);

}  // namespace mox::core
