#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "compare/rounds.h"

namespace bench {

struct PeerTime {
  std::string name;
  double seconds;
};

/// A line of the table.
struct CaseResult {
  std::string title;
  double floorSeconds = 0;
  double oursSeconds = 0;
  std::vector<PeerTime> peers;  // those that are here
  std::vector<std::string> absentPeers;
  std::size_t peakBytes = 0;  // of ours, beyond what was there before; 0 where it is not told
};

/// Measures a line: `contenders` are floor, ours, and then peers.
inline CaseResult measureCase(std::string const& title, std::vector<Contender> const& contenders,
                              int rounds) {
  std::vector<double> const medians = runRounds(title, contenders, rounds);
  CaseResult result;
  result.title = title;
  result.floorSeconds = medians.at(0);
  result.oursSeconds = medians.at(1);
  for (std::size_t i = 2; i < medians.size(); ++i) {
    result.peers.push_back({contenders[i].name, medians[i]});
  }
  return result;
}

}  // namespace bench
