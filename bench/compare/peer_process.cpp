#include "compare/peer_process.h"

#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

extern char** environ;

namespace bench {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentWith(std::vector<std::string> added) {
  for (char** entry = environ; *entry != nullptr; ++entry) {
    added.emplace_back(*entry);
  }
  return added;
}

/// A socket pair rather than pipes: writing to a peer that is gone then is an error and no signal.
void makeChannel(int (&ends)[2]) {
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
    throw std::runtime_error("no channel to a peer");
  }
}

pid_t spawn(std::vector<std::string>& command, std::vector<std::string>& environment, int peerEnd) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, peerEnd, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, peerEnd, STDOUT_FILENO);
  pid_t process = -1;
  int const status = posix_spawnp(&process, command[0].c_str(), &actions, nullptr,
                                  pointersTo(command).data(), pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (status != 0) {
    throw std::runtime_error("cannot start " + command[0]);
  }
  return process;
}

}  // namespace

PeerProcess::PeerProcess(std::vector<std::string> command, std::vector<std::string> environment) {
  int ends[2];
  makeChannel(ends);
  channel_ = ends[0];
  auto whole = environmentWith(std::move(environment));
  try {
    process_ = spawn(command, whole, ends[1]);
  } catch (...) {
    close(ends[0]);
    close(ends[1]);
    throw;
  }
  close(ends[1]);
}

PeerProcess::~PeerProcess() {
  close(channel_);  // the end of its input ends the peer
  while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

nlohmann::json PeerProcess::ask(nlohmann::json const& request) {
  std::string const line = request.dump() + "\n";
  std::size_t sent = 0;
  while (sent < line.size()) {
    ssize_t const count = send(channel_, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) {
      throw std::runtime_error("the peer is gone");
    }
    sent += static_cast<std::size_t>(count);
  }
  auto answer = nlohmann::json::parse(readLine(), nullptr, false);
  if (!answer.is_object()) {
    throw std::runtime_error("the peer's answer is no JSON");
  }
  if (answer.contains("error")) {
    throw std::runtime_error("the peer failed: " + answer["error"].dump());
  }
  return answer;
}

std::string PeerProcess::readLine() {
  std::size_t end = 0;
  while ((end = unread_.find('\n')) == std::string::npos) {
    char block[4096];
    ssize_t const count = read(channel_, block, sizeof block);
    if (count <= 0) {
      throw std::runtime_error("the peer ended without an answer");
    }
    unread_.append(block, static_cast<std::size_t>(count));
  }
  std::string line = unread_.substr(0, end);
  unread_.erase(0, end + 1);
  return line;
}

}  // namespace bench
