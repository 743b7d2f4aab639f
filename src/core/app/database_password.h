#pragma once

#include <string>

#include "core/app/settings.h"

namespace mox::core {

/// The database's password: the value of the environment variable that [database] password_env
/// names, or the first line of the file that password_file names; empty when the settings name
/// neither. Throws moxError for a variable that is not set, a file that cannot be read, and for
/// both at once. No message holds a password.
std::string databasePassword(Settings const& settings);

}  // namespace mox::core
