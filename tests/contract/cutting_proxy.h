#pragma once

#include <atomic>
#include <cstddef>
#include <limits>
#include <string>
#include <thread>

namespace mox_test {

/// Stands between a client and a MariaDB server, on a unix socket of its own, and breaks off what
/// the server answers after a number of bytes: closes the line, or falls silent and leaves it open.
/// Serves one connection after the other, each with the same limit.
class CuttingProxy {
 public:
  enum class Fault { kClose, kSilence };

  static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

  /// `serverUrl` must name a socket.
  explicit CuttingProxy(std::string const& serverUrl);
  ~CuttingProxy();

  CuttingProxy(CuttingProxy const&) = delete;
  CuttingProxy& operator=(CuttingProxy const&) = delete;

  /// The server's URL, by way of the proxy.
  std::string const& url() const { return url_; }

  /// Bytes that the server may answer on each connection opened from now on.
  void setLimit(std::size_t bytes, Fault fault = Fault::kClose);

  /// Bytes that the server answered on the last connection.
  std::size_t answered() const { return answered_; }

 private:
  void serve();
  void serveClient(int client);
  bool passOn(int from, int to);
  bool answerOn(int from, int to);

  std::string directory_;
  std::string serverSocket_;
  std::string url_;
  int listener_ = -1;
  int stop_ = -1;  // readable when the proxy is to end
  std::atomic<std::size_t> limit_{kNoLimit};
  std::atomic<Fault> fault_{Fault::kClose};
  std::atomic<std::size_t> answered_{0};
  std::thread thread_;
};

}  // namespace mox_test
