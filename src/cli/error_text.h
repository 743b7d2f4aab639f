#pragma once

#include <exception>
#include <stdexcept>
#include <string>

class moxError;

namespace mox::cli {

/// The program was called wrongly: exit status 2 and a hint, where other failures give 1.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One line for the user: the message, the code of the party that failed when the message does not
/// hold it, and the details.
std::string errorLine(moxError const& error);

/// The same of the exceptions that libraries throw.
std::string errorLine(std::exception const& error);

}  // namespace mox::cli
