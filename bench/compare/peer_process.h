#pragma once

#include <sys/types.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench {

/// A peer in a process of its own, which takes requests as lines of JSON on its standard input and
/// answers each with a line of JSON. It measures its own work, so that starting it and talking to
/// it do not count. Ends with this object.
class PeerProcess {
 public:
  /// Starts a program with arguments; `environment` is added to our own ("NAME=value"). Throws
  /// std::runtime_error.
  PeerProcess(std::vector<std::string> command, std::vector<std::string> environment);
  ~PeerProcess();
  PeerProcess(PeerProcess const&) = delete;
  PeerProcess& operator=(PeerProcess const&) = delete;

  /// Throws std::runtime_error when the peer is gone or answers with an "error".
  nlohmann::json ask(nlohmann::json const& request);

 private:
  std::string readLine();

  pid_t process_ = -1;
  int channel_ = -1;
  std::string unread_;
};

}  // namespace bench
