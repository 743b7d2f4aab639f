#include "compare/rounds.h"

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace bench {
namespace {

clockid_t usedClock = CLOCK_MONOTONIC;

double secondsNow() {
  timespec now{};
  clock_gettime(usedClock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double medianOf(std::vector<double> seconds) {
  std::sort(seconds.begin(), seconds.end());
  std::size_t const middle = seconds.size() / 2;
  return seconds.size() % 2 == 1 ? seconds[middle] : (seconds[middle - 1] + seconds[middle]) / 2;
}

double measureOnce(std::string const& caseName, Contender const& contender, bool isVerified) {
  try {
    double const seconds = contender.measure();
    if (isVerified && contender.verify) {
      contender.verify();
    }
    return seconds;
  } catch (std::runtime_error const& error) {
    throw std::runtime_error(caseName + ", " + contender.name + ": " + error.what());
  }
}

}  // namespace

void measureProcessorTime() {
  usedClock = CLOCK_THREAD_CPUTIME_ID;
}

bool measuresProcessorTime() {
  return usedClock == CLOCK_THREAD_CPUTIME_ID;
}

double secondsOf(std::function<void()> const& work) {
  double const start = secondsNow();
  work();
  return secondsNow() - start;
}

std::vector<double> runRounds(std::string const& caseName, std::vector<Contender> const& contenders,
                              int rounds) {
  std::vector<std::vector<double>> seconds(contenders.size());
  for (int round = 0; round < rounds; ++round) {
    std::fprintf(stderr, "%s: round %d of %d:", caseName.c_str(), round + 1, rounds);
    bool const isVerified = round == 0 || round + 1 == rounds;
    for (std::size_t i = 0; i < contenders.size(); ++i) {
      seconds[i].push_back(measureOnce(caseName, contenders[i], isVerified));
      std::fprintf(stderr, " %s %.1f ms", contenders[i].name.c_str(), seconds[i].back() * 1000);
    }
    std::fputc('\n', stderr);
  }
  std::vector<double> medians;
  for (auto const& each : seconds) {
    medians.push_back(medianOf(each));
  }
  return medians;
}

}  // namespace bench
