#include "cli/run_times.h"

#include <cstdio>
#include <string>

#include <fmt/format.h>

namespace mox::cli {

void RunTimes::tell() const {
  double const total = start + load + print;
  auto const share = [total](double seconds) {
    return fmt::format("{:.3f} s ({:.0f} %)", seconds, total > 0 ? 100 * seconds / total : 0);
  };
  std::string const line =
      fmt::format("time: {:.3f} s; start {}, load {}, formatting {}, writing {}\n", total,
                  share(start), share(load), share(print - write), share(write));
  std::fputs(line.c_str(), stderr);
}

}  // namespace mox::cli
