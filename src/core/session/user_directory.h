#pragma once

#include <string>

#include "core/session/user.h"

class moxDatabaseConnection;

namespace mox::core {

class Settings;

/// Knows the users of the application. Safe from any thread.
class UserDirectory {
 public:
  virtual ~UserDirectory() = default;

  /// The user of that login, compared byte by byte. Throws moxError, naming the login, when there
  /// is none or he may not log in.
  virtual User find(std::string const& login) const = 0;
};

}  // namespace mox::core
