#include "cli/output/interrupt_cleanup.h"

#include <array>
#include <atomic>
#include <cassert>
#include <csignal>

#include <unistd.h>

namespace mox::cli {

namespace {

constexpr std::array kEndings = {SIGHUP, SIGINT, SIGTERM};

/// What the handler removes; a handler may read nothing but lock-free atomics.
std::atomic<char const*> doomedPath = nullptr;

/// The signal is raised again with its default action, so that the parent sees what ended the
/// program.
extern "C" void removeAndEnd(int signalNumber) {
  if (char const* const path = doomedPath.load()) {
    unlink(path);
  }
  std::signal(signalNumber, SIG_DFL);
  std::raise(signalNumber);
}

/// A signal that the parent had ignored (nohup) stays ignored.
void exchangeHandler(int signalNumber, void (*from)(int), void (*to)(int)) {
  struct sigaction current = {};
  sigaction(signalNumber, nullptr, &current);
  if (current.sa_handler == from) {
    std::signal(signalNumber, to);
  }
}

}  // namespace

InterruptCleanup::InterruptCleanup(std::string path) : path_(std::move(path)) {
  assert(doomedPath.load() == nullptr);
  doomedPath = path_.c_str();
  for (int const ending : kEndings) {
    exchangeHandler(ending, SIG_DFL, removeAndEnd);
  }
}

InterruptCleanup::~InterruptCleanup() {
  for (int const ending : kEndings) {
    exchangeHandler(ending, removeAndEnd, SIG_DFL);
  }
  doomedPath = nullptr;
}

HeldInterrupts::HeldInterrupts() {
  sigset_t held;
  sigemptyset(&held);
  for (int const ending : kEndings) {
    sigaddset(&held, ending);
  }
  pthread_sigmask(SIG_BLOCK, &held, &before_);
}

HeldInterrupts::~HeldInterrupts() {
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace mox::cli
