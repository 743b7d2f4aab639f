#pragma once

#include <string>

namespace mox::cli {

/// Takes a file away when the program is told to end (interrupt, termination, closed terminal)
/// while the object lives. One object at a time.
class InterruptCleanup {
 public:
  explicit InterruptCleanup(std::string path);
  InterruptCleanup(InterruptCleanup const&) = delete;
  InterruptCleanup& operator=(InterruptCleanup const&) = delete;
  ~InterruptCleanup();

 private:
  std::string path_;
};

}  // namespace mox::cli
