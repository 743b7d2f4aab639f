#pragma once

#include <string>
#include <vector>

namespace mox::cli {

/// What every command is told.
struct GlobalOptions {
  std::string config;      // empty: where settings are usually found
  std::string user;        // login; empty: nobody is logged in
  std::vector<int> units;  // in the order given; empty: the user's default unit
  bool quiet = false;      // neither progress nor row counts
};

}  // namespace mox::cli
