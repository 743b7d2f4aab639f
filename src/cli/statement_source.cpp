#include "cli/statement_source.h"

#include <cerrno>
#include <cstring>

#include <unistd.h>

#include "cli/error_text.h"
#include "mox/core/error.h"

namespace mox::cli {

namespace {

constexpr std::size_t kLargestStatement = std::size_t{16} * 1024 * 1024;

std::string readStandardInput() {
  std::string text;
  char bytes[65536];
  while (text.size() <= kLargestStatement) {
    ssize_t const count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count == 0) {
      return text;
    }
    if (count < 0 && errno != EINTR) {
      throw moxDefaultErrorImpl<moxError>(std::string("cannot read standard input: ") +
                                          std::strerror(errno));
    }
    text.append(bytes, count > 0 ? static_cast<std::size_t>(count) : 0);
  }
  throw moxDefaultErrorImpl<moxError>("the statement on standard input is larger than 16 MiB");
}

}  // namespace

std::string readStatement(std::string const& argument) {
  std::string text = argument == "-" ? readStandardInput() : argument;
  if (text.find_first_not_of(" \t\r\n;") == text.npos) {
    throw UsageError("the statement is empty");
  }
  return text;
}

}  // namespace mox::cli
