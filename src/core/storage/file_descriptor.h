#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <utility>

namespace mox::core {

/// Owns an open file of the system.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~FileDescriptor() { close(); }

  int get() const { return number_; }
  explicit operator bool() const { return number_ >= 0; }

  /// Gives 0, or the error number; closed either way. Some file systems tell a failed write here.
  int close() {
    int const number = std::exchange(number_, -1);
    return number >= 0 && ::close(number) != 0 && errno != EINTR ? errno : 0;
  }

 private:
  int number_ = -1;
};

/// Reads until `count` bytes are there or the file ends; gives how many, or -1 with errno set.
inline ssize_t readFully(int file, char* target, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    ssize_t const taken = ::read(file, target + done, count - done);
    if (taken < 0 && errno == EINTR) {
      continue;
    }
    if (taken < 0) {
      return -1;
    }
    if (taken == 0) {
      break;
    }
    done += static_cast<std::size_t>(taken);
  }
  return static_cast<ssize_t>(done);
}

/// Gives 0, or the error number.
inline int writeFully(int file, char const* bytes, std::size_t count) {
  while (count > 0) {
    ssize_t const written = ::write(file, bytes, count);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written < 0) {
      return errno;
    }
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return 0;
}

}  // namespace mox::core
