#include "cli/error_text.h"

#include <new>

#include "cli/output/display_text.h"
#include "mox/core/error.h"

namespace mox::cli {

namespace {

/// A line that echoes a statement of any size must stay one that a person reads.
constexpr int kLongestLine = 2000;

std::string shortLine(std::string const& text) {
  std::string line;
  appendDisplayText(line, oneLineText(text), kLongestLine);
  return line;
}

}  // namespace

std::string errorLine(moxError const& error) {
  std::string text = error.errorMessage();
  auto const code = error.errorCode();
  if (!code.empty() && text.find(code) == text.npos) {
    text += " (code " + code + ")";
  }
  for (auto const& detail : error.errorDetails()) {
    text += "; " + detail;
  }
  return shortLine(text);
}

std::string errorLine(std::exception const& error) {
  if (dynamic_cast<std::bad_alloc const*>(&error) != nullptr) {
    return "out of memory";
  }
  return shortLine(error.what());
}

}  // namespace mox::cli
