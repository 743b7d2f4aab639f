#include "core/date/clock.h"

#include <ctime>
#include <memory>
#include <mutex>
#include <utility>

namespace mox::core {

namespace {

datetime_t systemNow() {
  std::time_t const seconds = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&seconds, &local) == nullptr) {
    return {};
  }
  return {local.tm_mday, local.tm_mon + 1, local.tm_year + 1900,
          local.tm_hour, local.tm_min,     local.tm_sec};
}

struct ClockHolder {
  std::mutex mutex;
  std::shared_ptr<Clock const> clock;  // empty: the system's time
};

ClockHolder& holder() {
  static ClockHolder instance;
  return instance;
}

std::shared_ptr<Clock const> currentClock() {
  std::lock_guard const lock(holder().mutex);
  return holder().clock;
}

}  // namespace

void setClock(Clock clock) {
  auto replacement = clock ? std::make_shared<Clock const>(std::move(clock)) : nullptr;
  std::lock_guard const lock(holder().mutex);
  holder().clock.swap(replacement);
}

// The clock runs outside the lock: one that blocks or asks for the time itself must not hold up the
// others.
datetime_t now() {
  auto const clock = currentClock();
  return clock ? (*clock)() : systemNow();
}

}  // namespace mox::core
