#include "compare/table_peers.h"

#include <utility>

namespace bench {

TablePeers::TablePeers(BenchContext const& context) {
  if (context.duckdbLibrary.empty()) {
    absent_.emplace_back("DuckDB");
  } else {
    duckdb_ = std::make_unique<DuckdbPeer>(context.duckdbLibrary);
  }
  start("pandas", context.pandasTablesScript, {context.python, context.pandasTablesScript});
  start("Polars", context.polarsTablesScript,
        {context.node, "--expose-gc", context.polarsTablesScript, context.npmDirectory});
}

void TablePeers::start(char const* name, std::string const& script,
                       std::vector<std::string> command) {
  if (script.empty()) {
    absent_.emplace_back(name);
    return;
  }
  std::vector<std::string> const oneThread = {"POLARS_MAX_THREADS=1", "OMP_NUM_THREADS=1",
                                              "OPENBLAS_NUM_THREADS=1"};
  processes_.push_back({name, std::make_unique<PeerProcess>(std::move(command), oneThread)});
}

void TablePeers::open(nlohmann::json const& request) {
  for (auto const& [name, process] : processes_) {
    process->ask(request);
  }
}

void TablePeers::addProcesses(std::vector<Contender>& contenders, nlohmann::json const& work,
                              std::function<void(nlohmann::json const& answer)> const& check) {
  for (auto const& [name, process] : processes_) {
    auto const measure = [asked = process.get(), work, check] {
      nlohmann::json request = work;
      request["cpu"] = measuresProcessorTime();
      auto const answer = asked->ask(request);
      check(answer);
      return answer.at("seconds").get<double>();
    };
    contenders.push_back({name, measure, {}});
  }
}

}  // namespace bench
