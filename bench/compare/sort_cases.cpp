#include <memory>
#include <optional>
#include <stdexcept>
#include <tuple>

#include "compare/cases.h"
#include "compare/check_sums.h"
#include "compare/duckdb_peer.h"
#include "compare/memory_peak.h"
#include "compare/our_host.h"
#include "compare/peer_process.h"
#include "compare/sales_file.h"
#include "compare/sort_floor.h"
#include "compare/test_rows.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"

namespace bench {
namespace {

/// What to sort by, as each contender is told.
struct SortOrder {
  char const* name;  // of the sums that polars works out
  std::vector<std::string> columns;
  FloorTable (*floor)(FloorTable const&);
  bool (*isBefore)(FloorTable const&, std::size_t left, std::size_t right);
  CheckSums (*sums)(FloorTable const&);
  char const* duckdbColumns;
  char const* duckdbOrder1;  // what the sums "order" and "order2" are made of
  char const* duckdbOrder2;
};

bool isBeforeByNumbers(FloorTable const& table, std::size_t left, std::size_t right) {
  auto const keyOf = [&](std::size_t row) {
    bool const isNull = table.amountNulls.test(row);
    return std::tuple(table.number[row], !isNull, isNull ? 0 : table.amount[row]);
  };
  return keyOf(left) < keyOf(right);
}

bool isBeforeByCode(FloorTable const& table, std::size_t left, std::size_t right) {
  return table.code[left].view() < table.code[right].view();
}

class SortCase {
 public:
  SortCase(BenchContext const& context, SortOrder order)
      : context_(context),
        order_(std::move(order)),
        source_(makeFloorTable(context.sortRows)),
        host_(""),
        matrix_(host_.matrixOf(source_)),
        csv_(context.workDirectory + "/sales.csv") {}

  CaseResult measure(std::string const& title) {
    std::vector<Contender> contenders = {floorContender(), ourContender()};
    std::vector<std::string> absent;
    addDuckdb(contenders, absent);
    addPolars(contenders, absent);
    CaseResult result = measureCase(title, contenders, context_.rounds);
    result.absentPeers = absent;
    result.peakBytes = peakOfOurs();
    return result;
  }

 private:
  Contender floorContender() {
    return {"floor", [this] { return measureFloor(); }, [this] { verifyFloor(); }};
  }
  Contender ourContender() {
    return {"ours", [this] { return measureOurs(); }, [this] { requireEqual(*table_, *sorted_); }};
  }

  double measureFloor() {
    table_.reset();
    return secondsOf([this] { table_.emplace(order_.floor(source_)); });
  }

  void verifyFloor() {
    requireEqual(contentSums(source_), contentSums(*table_));
    for (std::size_t row = 1; row < table_->rows(); ++row) {
      requireInOrder(row - 1, row);
    }
    expected_ = order_.sums(*table_);
  }

  /// A description ends in the number that its row had in the source: rows with equal keys keep
  /// their order.
  void requireInOrder(std::size_t left, std::size_t right) const {
    auto const rowNumber = [&](std::size_t row) {
      return table_->description[row].view().substr(22);
    };
    if (order_.isBefore(*table_, left, right)) {
      return;
    }
    if (order_.isBefore(*table_, right, left) || rowNumber(left) > rowNumber(right)) {
      throw std::runtime_error("wrong result: row " + std::to_string(right) + " is out of order");
    }
  }

  double measureOurs() {
    sorted_.reset();
    return secondsOf([this] { sortMatrix(); });
  }

  /// In a run of its own: watching memory begins with giving all free memory back to the system.
  std::size_t peakOfOurs() {
    sorted_.reset();
    MemoryPeak const peak;
    sortMatrix();
    return peak.risenBytes();
  }

  void sortMatrix() {
    auto const sorter = host_.get<moxDataMatrixSorter>("moxDataMatrixSorter");
    for (std::string const& column : order_.columns) {
      sorter->pushSortColumn(column, false);
    }
    sorted_ = sorter->transform(matrix_);
  }

  void addDuckdb(std::vector<Contender>& contenders, std::vector<std::string>& absent) {
    if (context_.duckdbLibrary.empty()) {
      absent.emplace_back("DuckDB");
      return;
    }
    duckdb_ = std::make_unique<DuckdbPeer>(context_.duckdbLibrary, source_);
    auto const measure = [this] {
      duckdb_->dropSorted();
      return secondsOf([this] { duckdb_->sortBy(order_.duckdbColumns); });
    };
    auto const verify = [this] {
      requireEqual(expected_, duckdb_->sortedSums(order_.duckdbOrder1, order_.duckdbOrder2));
    };
    contenders.push_back({"DuckDB", measure, verify});
  }

  void addPolars(std::vector<Contender>& contenders, std::vector<std::string>& absent) {
    if (context_.polarsScript.empty()) {
      absent.emplace_back("Polars");
      return;
    }
    csv_.write(source_);
    polars_ = std::make_unique<PeerProcess>(
        std::vector<std::string>{context_.node, "--expose-gc", context_.polarsScript,
                                 context_.npmDirectory},
        std::vector<std::string>{"POLARS_MAX_THREADS=1"});
    polars_->ask({{"do", "open"}, {"path", csv_.path()}});
    contenders.push_back({"Polars", [this] { return measurePolars(); }, {}});
  }

  double measurePolars() {
    auto const answer = polars_->ask({{"do", "sort"},
                                      {"by", order_.columns},
                                      {"order", order_.name},
                                      {"cpu", measuresProcessorTime()},
                                      {"check", !isPolarsChecked_}});
    if (!isPolarsChecked_) {
      requireEqual(expected_, answer.at("sums").get<CheckSums>());
      isPolarsChecked_ = true;
    }
    return answer.at("seconds").get<double>();
  }

  BenchContext const& context_;
  SortOrder order_;
  FloorTable source_;
  OurHost host_;
  std::shared_ptr<moxDataMatrix> matrix_;
  SalesFile csv_;
  CheckSums expected_;
  std::optional<FloorTable> table_;
  std::shared_ptr<moxDataMatrix> sorted_;
  std::unique_ptr<DuckdbPeer> duckdb_;
  std::unique_ptr<PeerProcess> polars_;
  bool isPolarsChecked_ = false;
};

}  // namespace

std::vector<CaseResult> sortByNumbersCase(BenchContext const& context) {
  SortCase sorts(context, {"numbers",
                           {"number", "amount"},
                           &sortByNumbers,
                           &isBeforeByNumbers,
                           &sumsSortedByNumbers,
                           "number nulls first, amount nulls first",
                           "number",
                           "coalesce(round(amount * 100)::bigint + 50000000, 0)"});
  return {sorts.measure("sort " + std::to_string(context.sortRows) + " x 6 by (int, double)")};
}

std::vector<CaseResult> sortByCodeCase(BenchContext const& context) {
  SortCase sorts(context, {"code",
                           {"code"},
                           &sortByCode,
                           &isBeforeByCode,
                           &sumsSortedByCode,
                           "code nulls first",
                           "substr(code, 5)::bigint",
                           ""});
  return {sorts.measure("sort " + std::to_string(context.sortRows) + " x 6 by text of 10")};
}

}  // namespace bench
