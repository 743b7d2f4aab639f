#pragma once

#include <string>

#include "mox/core/error.h"

namespace mox::core {

/// A failure of the file system: "Cannot <action> "<path>": <reason>.", its code the error number.
class FileError : public moxDefaultErrorImpl<moxError> {
 public:
  FileError(std::string const& action, std::string const& path, int errorNumber);

  /// For what this system refuses by itself; the code stays empty.
  FileError(std::string const& action, std::string const& path, std::string const& reason);
};

}  // namespace mox::core
