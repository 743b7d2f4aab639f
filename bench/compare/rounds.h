#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// One of those who do the same work in a case.
struct Contender {
  std::string name;
  std::function<double()> measure;  // does the work once; seconds, without what is not the work
  std::function<void()> verify;     // may be empty; looks at the work just done, throws when wrong
};

/// Runs the contenders in turns, all of them once a round, so that whatever else the machine does
/// falls on all alike. Gives each one's median in seconds, in the order of the contenders. The
/// first and the last round are verified. Says on standard error where it is.
std::vector<double> runRounds(std::string const& caseName, std::vector<Contender> const& contenders,
                              int rounds);

/// Has secondsOf tell the calling thread's processor time: for a machine with other work to do.
void measureProcessorTime();
bool measuresProcessorTime();

/// The time that some work takes, in seconds.
double secondsOf(std::function<void()> const& work);

}  // namespace bench
