#include "core/storage/file_error.h"

#include <system_error>

namespace mox::core {

namespace {

/// A path may hold any byte but NUL; a message is one line.
std::string quoted(std::string const& path) {
  std::string text = "\"";
  for (char const c : path) {
    bool const control = static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
    text += control ? '?' : c;
  }
  return text + "\"";
}

std::string sentence(std::string const& action, std::string const& path,
                     std::string const& reason) {
  return "Cannot " + action + " " + quoted(path) + ": " + reason + ".";
}

}  // namespace

FileError::FileError(std::string const& action, std::string const& path, int errorNumber)
    : moxDefaultErrorImpl<moxError>(
          sentence(action, path, std::generic_category().message(errorNumber))) {
  setErrorCode(std::to_string(errorNumber));
}

FileError::FileError(std::string const& action, std::string const& path, std::string const& reason)
    : moxDefaultErrorImpl<moxError>(sentence(action, path, reason)) {}

}  // namespace mox::core
