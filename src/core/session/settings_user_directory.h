#pragma once

#include <string>

#include "core/session/user_directory.h"
#include "mox/core/settings.h"

namespace mox::core {

/// Users as the settings have them, a table each under [users]:
///
///     [users.maria]
///     id = 7
///     default_unit = 3
///     head_office = 1
///     units = [3, 4]
///     works_by_units = true
///     libraries = ["ZYNC"]
///     student = false
///
/// Every key but `id` may be left out. The head office is that of all the user's units.
class SettingsUserDirectory final : public UserDirectory {
 public:
  /// `settings` must outlive the directory.
  explicit SettingsUserDirectory(moxSettings const& settings) : settings_(settings) {}

  User find(std::string const& login) const override;

 private:
  moxSettings const& settings_;
};

}  // namespace mox::core
