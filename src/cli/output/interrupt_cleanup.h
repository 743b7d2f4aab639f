#pragma once

#include <csignal>
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

/// Keeps such signals waiting while it lives, so that none comes between a file's making and its
/// cleanup.
class HeldInterrupts {
 public:
  HeldInterrupts();
  HeldInterrupts(HeldInterrupts const&) = delete;
  HeldInterrupts& operator=(HeldInterrupts const&) = delete;
  ~HeldInterrupts();

 private:
  sigset_t before_;
};

}  // namespace mox::cli
