#pragma once

#include <string>

namespace mox_test {

/// A MariaDB server of a test's own, for those that take it down while it is in use. It ends with
/// the object, and with the process when that dies early.
class PrivateMariadb {
 public:
  /// Throws std::runtime_error when the server does not start.
  PrivateMariadb();
  ~PrivateMariadb();

  PrivateMariadb(PrivateMariadb const&) = delete;
  PrivateMariadb& operator=(PrivateMariadb const&) = delete;

  /// Of the server, without a database.
  std::string const& url() const { return url_; }

  /// Starts again after it was killed, with empty data.
  void start();

  /// Ends the server at once, as a crash would, and waits until it is gone.
  void kill();

 private:
  std::string directory_;
  std::string url_;
};

}  // namespace mox_test
