#include "contract/cutting_proxy.h"

#include <poll.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <stdexcept>

#include "core/database/database_url.h"

namespace mox_test {
namespace {

sockaddr_un addressOf(std::string const& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw std::runtime_error("the path of a socket is too long: " + path);
  }
  std::copy(path.begin(), path.end(), address.sun_path);
  return address;
}

sockaddr const* plain(sockaddr_un const& address) {
  return reinterpret_cast<sockaddr const*>(&address);
}

int newSocket() {
  return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

bool sendAll(int target, char const* bytes, std::size_t count) {
  while (count > 0) {
    ssize_t const sent = ::send(target, bytes, count, MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    bytes += sent;
    count -= static_cast<std::size_t>(sent);
  }
  return true;
}

}  // namespace

CuttingProxy::CuttingProxy(std::string const& serverUrl)
    : serverSocket_(mox::core::parseDatabaseUrl(serverUrl).socket) {
  directory_ = (std::filesystem::temp_directory_path() / "mox-proxy-XXXXXX").string();
  if (::mkdtemp(directory_.data()) == nullptr) {
    throw std::runtime_error("no directory for the proxy's socket");
  }
  std::string const path = directory_ + "/socket";
  url_ = serverUrl.substr(0, serverUrl.find('?')) + "?socket=" + path;
  listener_ = newSocket();
  stop_ = ::eventfd(0, EFD_CLOEXEC);
  sockaddr_un const address = addressOf(path);
  if (::bind(listener_, plain(address), sizeof address) != 0 || ::listen(listener_, 8) != 0) {
    throw std::runtime_error("the proxy cannot listen on " + path);
  }
  thread_ = std::thread([this] { serve(); });
}

CuttingProxy::~CuttingProxy() {
  std::uint64_t const one = 1;
  if (::write(stop_, &one, sizeof one) != sizeof one) {
    std::terminate();
  }
  thread_.join();
  ::close(listener_);
  ::close(stop_);
  std::filesystem::remove_all(directory_);
}

void CuttingProxy::setLimit(std::size_t bytes, Fault fault) {
  limit_ = bytes;
  fault_ = fault;
}

void CuttingProxy::serve() {
  while (true) {
    pollfd waiting[] = {{stop_, POLLIN, 0}, {listener_, POLLIN, 0}};
    ::poll(waiting, 2, -1);
    if (waiting[0].revents != 0) {
      return;
    }
    int const client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) {
      serveClient(client);
      ::close(client);
    }
  }
}

void CuttingProxy::serveClient(int client) {
  answered_ = 0;
  int const server = newSocket();
  sockaddr_un const address = addressOf(serverSocket_);
  bool open = ::connect(server, plain(address), sizeof address) == 0;
  while (open) {
    pollfd waiting[] = {{stop_, POLLIN, 0}, {client, POLLIN, 0}, {server, POLLIN, 0}};
    ::poll(waiting, 3, -1);
    open = waiting[0].revents == 0;
    if (open && waiting[1].revents != 0) {
      open = passOn(client, server);
    }
    if (open && waiting[2].revents != 0) {
      open = answerOn(server, client);
    }
  }
  ::close(server);
}

bool CuttingProxy::passOn(int from, int to) {
  char bytes[65536];
  ssize_t const count = ::recv(from, bytes, sizeof bytes, 0);
  return count > 0 && sendAll(to, bytes, static_cast<std::size_t>(count));
}

bool CuttingProxy::answerOn(int from, int to) {
  char bytes[65536];
  ssize_t const count = ::recv(from, bytes, sizeof bytes, 0);
  if (count <= 0) {
    return false;
  }
  std::size_t const before = answered_;
  std::size_t const allowed = limit_ > before ? limit_ - before : 0;
  answered_ = before + static_cast<std::size_t>(count);
  if (!sendAll(to, bytes, std::min(allowed, static_cast<std::size_t>(count)))) {
    return false;
  }
  return fault_ == Fault::kSilence || answered_ <= limit_;
}

}  // namespace mox_test
