#pragma once

#include <memory>
#include <string>
#include <vector>

#include "compare/bench_context.h"
#include "compare/duckdb_peer.h"
#include "compare/peer_process.h"
#include "compare/rounds.h"

namespace bench {

/// The peers of the cases that work on whole tables, as far as they are here: DuckDB in this
/// process, pandas and Polars in processes of their own.
class TablePeers {
 public:
  explicit TablePeers(BenchContext const& context);

  std::vector<std::string> const& absent() const { return absent_; }

  /// Empty when DuckDB is not here.
  DuckdbPeer* duckdb() { return duckdb_.get(); }

  /// Asks pandas and Polars to read something.
  void open(nlohmann::json const& request);

  /// Adds pandas and Polars. Each is asked to do `work`; `check` looks at the answer.
  void addProcesses(std::vector<Contender>& contenders, nlohmann::json const& work,
                    std::function<void(nlohmann::json const& answer)> const& check);

 private:
  struct Named {
    char const* name;
    std::unique_ptr<PeerProcess> process;
  };

  void start(char const* name, std::string const& script, std::vector<std::string> command);

  std::unique_ptr<DuckdbPeer> duckdb_;
  std::vector<Named> processes_;
  std::vector<std::string> absent_;
};

}  // namespace bench
