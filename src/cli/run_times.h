#pragma once

#include <chrono>

namespace mox::cli {

/// Seconds from the object's making, or from the last lap.
class Stopwatch {
 public:
  double lap() {
    auto const now = Clock::now();
    double const seconds = std::chrono::duration<double>(now - start_).count();
    start_ = now;
    return seconds;
  }

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point start_ = Clock::now();
};

/// Where the time of a run went, in seconds.
struct RunTimes {
  double start = 0;  // settings, modules, definitions, database
  double load = 0;
  double print = 0;  // formatting and writing
  double write = 0;  // waiting for the place that is written to

  /// Writes a line to standard error.
  void tell() const;
};

}  // namespace mox::cli
