#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "compare/cases.h"
#include "compare/check_sums.h"
#include "compare/memory_peak.h"
#include "compare/our_host.h"
#include "compare/sales_file.h"
#include "compare/table_peers.h"
#include "compare/test_rows.h"
#include "compare/union_floor.h"
#include "mox/zyn/matrix/data_matrix_union.h"

namespace bench {
namespace {

constexpr std::int64_t kModulus = 16381;

void requireCell(bool isRight, std::size_t row) {
  if (!isRight) {
    throw std::runtime_error("wrong result: row " + std::to_string(row));
  }
}

template <class T>
std::shared_ptr<moxDataMatrixTypedColumn<T>> columnOf(moxDataMatrix& matrix, char const* name) {
  auto column = std::dynamic_pointer_cast<moxDataMatrixTypedColumn<T>>(matrix.columnByName(name));
  if (!column) {
    throw std::runtime_error(std::string("wrong result: no column '") + name + "'");
  }
  return column;
}

class UnionCase {
 public:
  explicit UnionCase(BenchContext const& context)
      : context_(context),
        upper_(makeFloorTable(context.tableRows / 2)),
        lower_(makeFloorTable(context.tableRows - upper_.rows(), upper_.rows())),
        host_(""),
        matrices_{host_.matrixOf(upper_), host_.matrixOf(lower_)},
        peers_(context),
        expected_(sums()) {
    SalesFile const file(context.workDirectory + "/sales.csv");
    for (FloorTable const* const table : {&upper_, &lower_}) {
      file.write(*table);
      peers_.open({{"do", "open-sales"}, {"path", file.path()}});
    }
    if (auto* const duckdb = peers_.duckdb()) {
      duckdb->fillSales("upper", upper_);
      duckdb->fillSales("lower", lower_);
    }
  }

  CaseResult measure(std::string const& title) {
    std::vector<Contender> contenders = {
        {"floor", [this] { return measureFloor(); }, [this] { verifyFloor(); }},
        {"ours", [this] { return measureOurs(); }, [this] { verifyOurs(); }}};
    if (peers_.duckdb() != nullptr) {
      contenders.push_back(
          {"DuckDB", [this] { return measureDuckdb(); }, [this] { verifyDuckdb(); }});
    }
    peers_.addProcesses(contenders, {{"do", "union"}, {"check", true}},
                        [this](nlohmann::json const& answer) {
                          requireEqual(expected_, answer.at("sums").get<CheckSums>());
                        });
    CaseResult result = measureCase(title, contenders, context_.rounds);
    result.absentPeers = peers_.absent();
    result.peakBytes = peakOfOurs();
    return result;
  }

 private:
  CheckSums sums() const {
    CheckSums const upper = contentSums(upper_);
    CheckSums const lower = contentSums(lower_);
    CheckSums both;
    for (char const* const name : {"rows", "number", "cents", "amount_nulls", "days", "code"}) {
      both[name] = upper.at(name) + lower.at(name);
    }
    std::int64_t row = 0;
    for (FloorTable const* const table : {&upper_, &lower_}) {
      for (std::size_t i = 0; i < table->rows(); ++i, ++row) {
        both["order"] += (row % kModulus + 1) * (table->number[i] % kModulus);
      }
    }
    return both;
  }

  double measureFloor() {
    united_.reset();
    return secondsOf([this] { united_.emplace(bench::unite(upper_, lower_)); });
  }

  void verifyFloor() {
    std::size_t row = 0;
    for (FloorTable const* const table : {&upper_, &lower_}) {
      for (std::size_t i = 0; i < table->rows(); ++i, ++row) {
        requireCell(united_->number[row] == table->number[i] &&
                        united_->amount[row] == table->amount[i] &&
                        united_->isAmountNull(row) == table->amountNulls.test(i) &&
                        united_->day[row] == table->day[i] &&
                        united_->code[row].view() == table->code[i].view(),
                    row);
      }
    }
    requireCell(row == united_->number.size(), row);
  }

  double measureOurs() {
    ours_.reset();
    return secondsOf([this] { uniteOurs(); });
  }

  void uniteOurs() {
    auto const engine = host_.get<moxDataMatrixUnion>("moxDataMatrixUnion");
    for (auto const& matrix : matrices_) {
      engine->pushSourceDataMatrix(matrix, {"number", "amount", "day", "code"});
    }
    ours_ = engine->process("");
  }

  void verifyOurs() const {
    auto const number = columnOf<int>(*ours_, "number");
    auto const amount = columnOf<double>(*ours_, "amount");
    auto const day = columnOf<datetime_t>(*ours_, "day");
    auto const code = columnOf<std::string>(*ours_, "code");
    requireCell(ours_->rowCount() == united_->number.size(), ours_->rowCount());
    for (std::size_t i = 0; i < united_->number.size(); ++i) {
      auto const row = static_cast<unsigned int>(i);
      bool const isNull = united_->isAmountNull(i);
      requireCell(number->getValue(row) == united_->number[i] && amount->isNull(row) == isNull &&
                      (isNull || amount->getValue(row) == united_->amount[i]) &&
                      day->getValue(row).asTime_t() == united_->day[i] &&
                      code->getValue(row) == united_->code[i].view(),
                  i);
    }
  }

  /// In a run of its own: watching memory begins with giving all free memory back to the system.
  std::size_t peakOfOurs() {
    ours_.reset();
    MemoryPeak const peak;
    uniteOurs();
    return peak.risenBytes();
  }

  double measureDuckdb() {
    peers_.duckdb()->run("drop table if exists united");
    return secondsOf([this] {
      peers_.duckdb()->run(
          "create table united as select number, amount, day, code from \"upper\" union all "
          "select number, amount, day, code from \"lower\"");
    });
  }

  void verifyDuckdb() {
    std::vector<std::pair<char const*, char const*>> const wanted = {
        {"rows", "count(*)"},
        {"number", "sum(number)"},
        {"cents", "sum(round(amount * 100)::bigint + 50000000)"},
        {"amount_nulls", "sum((amount is null)::int)"},
        {"days", "sum(epoch(day)::bigint // 86400)"},
        {"code", "sum(substr(code, 5)::bigint)"},
        {"order", "sum((rowid % 16381 + 1) * (number % 16381))"}};
    CheckSums found;
    for (auto const& [name, sum] : wanted) {
      found[name] = peers_.duckdb()->wholeNumber("select cast(" + std::string(sum) +
                                                 " as bigint) from united");
    }
    requireEqual(expected_, found);
  }

  BenchContext const& context_;
  FloorTable upper_;
  FloorTable lower_;
  OurHost host_;
  std::vector<std::shared_ptr<moxDataMatrix>> matrices_;
  TablePeers peers_;
  CheckSums expected_;
  std::optional<UnitedTable> united_;
  std::shared_ptr<moxDataMatrix> ours_;
};

}  // namespace

std::vector<CaseResult> unionCase(BenchContext const& context) {
  UnionCase unions(context);
  std::string const half = std::to_string(context.tableRows / 2);
  return {unions.measure("union of " + half + " x 4 and " + half + " x 4")};
}

}  // namespace bench
