#include <memory>
#include <optional>
#include <stdexcept>

#include "compare/cases.h"
#include "compare/check_sums.h"
#include "compare/load_floor.h"
#include "compare/memory_peak.h"
#include "compare/our_host.h"
#include "compare/peer_process.h"
#include "compare/sale_databases.h"
#include "compare/test_rows.h"
#include "mox/zyn/sql/data_matrix_sql_loader.h"

namespace bench {
namespace {

std::string selectText() {
  return std::string("select ") + kColumnNames + " from sale";
}

/// The three contenders over one database, whichever it is.
class LoadCase {
 public:
  LoadCase(BenchContext const& context, std::string const& databaseUrl,
           std::function<FloorTable()> floor)
      : context_(context),
        expected_(makeFloorTable(context.loadRows)),
        host_(databaseUrl),
        floor_(std::move(floor)) {}

  /// `request` names the database for the peer.
  CaseResult measure(std::string const& title, nlohmann::json const& request) {
    std::vector<Contender> contenders = {floorContender(), ourContender()};
    if (!context_.python.empty()) {
      contenders.push_back(pandasContender(request));
    }
    CaseResult result = measureCase(title, contenders, context_.rounds);
    result.peakBytes = peakOfOurs();
    if (context_.python.empty()) {
      result.absentPeers.emplace_back("pandas");
    }
    return result;
  }

 private:
  Contender floorContender() {
    return {"floor", [this] { return measureFloor(); }, [this] { verifyFloor(); }};
  }
  Contender ourContender() {
    return {"ours", [this] { return measureOurs(); },
            [this] { requireEqual(expected_, *matrix_); }};
  }

  double measureFloor() {
    table_.reset();
    return secondsOf([this] { table_.emplace(floor_()); });
  }

  void verifyFloor() {
    requireEqual(contentSums(expected_), contentSums(*table_));
    requireEqual(*table_, *host_.matrixOf(expected_));
  }

  double measureOurs() {
    matrix_.reset();
    return secondsOf([this] { loadMatrix(); });
  }

  /// In a run of its own: watching memory begins with giving all free memory back to the system.
  std::size_t peakOfOurs() {
    matrix_.reset();
    MemoryPeak const peak;
    loadMatrix();
    return peak.risenBytes();
  }

  void loadMatrix() {
    matrix_ = host_.get<moxDataMatrix>("moxDataMatrix");
    auto const loader = host_.get<moxDataMatrixSQLLoader>("moxDataMatrixSQLLoader");
    loader->setSql(selectText(), {"", ""}, "where", false);
    loader->setDataMatrix(matrix_);
    loader->execute();
  }

  Contender pandasContender(nlohmann::json request) {
    pandas_ = std::make_unique<PeerProcess>(
        std::vector<std::string>{context_.python, context_.pandasScript},
        std::vector<std::string>{"OMP_NUM_THREADS=1", "OPENBLAS_NUM_THREADS=1"});
    request["select"] = selectText();
    request["cpu"] = measuresProcessorTime();
    auto const measure = [this, request]() mutable {
      request["check"] = !isPandasChecked_;
      auto const answer = pandas_->ask(request);
      if (!isPandasChecked_) {
        requireEqual(contentSums(expected_), answer.at("sums").get<CheckSums>());
        isPandasChecked_ = true;
      }
      return answer.at("seconds").get<double>();
    };
    return {"pandas", measure, {}};
  }

  BenchContext const& context_;
  FloorTable expected_;
  OurHost host_;
  std::function<FloorTable()> floor_;
  std::optional<FloorTable> table_;
  std::shared_ptr<moxDataMatrix> matrix_;
  std::unique_ptr<PeerProcess> pandas_;
  bool isPandasChecked_ = false;
};

}  // namespace

std::vector<CaseResult> loadFromSqliteCase(BenchContext const& context) {
  std::string const file = context.workDirectory + "/sales.db";
  fillSqlite(file, context.loadRows);
  SqliteLine const line = openSqlite(file);
  LoadCase loads(context, "sqlite:" + file, [&] {
    return loadFromSqlite(line.get(), selectText().c_str(), context.loadRows);
  });
  auto const title = "load " + std::to_string(context.loadRows) + " x 6 from SQLite";
  return {loads.measure(title, {{"kind", "sqlite"}, {"path", file}})};
}

std::vector<CaseResult> loadFromMariadbCase(BenchContext const& context) {
  if (context.mariadbSocket.empty()) {
    return {};
  }
  MariadbLine const line = openMariadb(context.mariadbSocket);
  fillMariadb(line.get(), context.loadRows);
  std::string const url =
      "mariadb://root@localhost/" + std::string(kMariadbName) + "?socket=" + context.mariadbSocket;
  LoadCase loads(context, url, [&] {
    return loadFromMariadb(line.get(), selectText().c_str(), context.loadRows);
  });
  auto const title = "load " + std::to_string(context.loadRows) + " x 6 from MariaDB";
  return {loads.measure(
      title, {{"kind", "mariadb"}, {"socket", context.mariadbSocket}, {"database", kMariadbName}})};
}

}  // namespace bench
