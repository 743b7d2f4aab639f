#include "support/mariadb_server.h"

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace mox_test {
namespace {

/// Runs the script that starts and ends servers; gives its first line.
std::string runScript(std::string const& arguments) {
  std::string const command = "sh '" TEST_SUPPORT_DIR "/mariadb_server.sh' " + arguments;
  FILE* const output = ::popen(command.c_str(), "r");
  if (output == nullptr) {
    throw std::runtime_error("cannot run " + command);
  }
  char line[1024] = "";
  std::string const first = std::fgets(line, sizeof line, output) == nullptr ? "" : line;
  if (::pclose(output) != 0) {
    throw std::runtime_error("failed: " + command);
  }
  return first.substr(0, first.find('\n'));
}

/// How many threads of a process are there; a process that ended has its first one only.
std::ptrdiff_t threadsOf(::pid_t process) {
  std::error_code gone;
  std::filesystem::directory_iterator const threads("/proc/" + std::to_string(process) + "/task",
                                                    gone);
  return gone ? 0 : std::distance(begin(threads), end(threads));
}

/// Whether a process is there, and not only its number that nobody has asked for yet. While a
/// thread of it is left, its files are open, and its socket still takes connections.
bool isRunning(::pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/stat");
  std::string line;
  if (!std::getline(status, line)) {
    return false;
  }
  std::size_t const nameEnd = line.rfind(") ");
  return nameEnd != std::string::npos && (line[nameEnd + 2] != 'Z' || threadsOf(process) > 1);
}

}  // namespace

PrivateMariadb::PrivateMariadb() {
  directory_ = (std::filesystem::temp_directory_path() / "mox-server-XXXXXX").string();
  if (::mkdtemp(directory_.data()) == nullptr) {
    throw std::runtime_error("no directory for a test's server");
  }
  start();
}

PrivateMariadb::~PrivateMariadb() {
  try {
    runScript("stop " + directory_);
  } catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

void PrivateMariadb::start() {
  url_ = runScript("start " + directory_ + " " + std::to_string(::getpid()));
}

void PrivateMariadb::kill() {
  ::pid_t process = 0;
  std::ifstream(directory_ + "/pid") >> process;
  if (process > 0) {
    ::kill(process, SIGKILL);
  }
  while (isRunning(process)) {
    std::this_thread::yield();
  }
  runScript("stop " + directory_);
}

}  // namespace mox_test
