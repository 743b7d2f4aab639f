#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "compare/cases.h"
#include "compare/duckdb_peer.h"
#include "compare/expression_floor.h"
#include "compare/memory_peak.h"
#include "compare/our_host.h"
#include "compare/peer_process.h"
#include "mox/zyn/matrix/data_matrix_expression_processor.h"

namespace bench {
namespace {

using Columns = std::vector<std::pair<char const*, FloorNumbers const*>>;

/// One expression, as each contender is told.
struct Expression {
  char const* name;  // of the text that Polars knows
  char const* ours;
  char const* duckdb;
  char const* numexpr;
  FloorNumbers (*floor)(NumberTable const&);
};

/// Results differ in their last places, as nobody else has a power that is std::pow's.
bool isClose(double left, double right) {
  return std::fabs(left - right) <= 1e-9 * std::max(std::fabs(left), 1.0);
}

Columns columnsOf(NumberTable const& table) {
  return {{"a", &table.a}, {"b", &table.b}, {"c", &table.c}};
}

/// The columns as other processes read them: doubles one behind the other, NaN for a null.
class NumberFile {
 public:
  NumberFile(std::string const& path, NumberTable const& table) : path_(path) {
    std::ofstream file(path, std::ios::binary);
    for (auto const& [name, column] : columnsOf(table)) {
      for (std::size_t row = 0; row < table.rows; ++row) {
        double const value =
            column->isNull(row) ? std::numeric_limits<double>::quiet_NaN() : column->cells[row];
        file.write(reinterpret_cast<char const*>(&value), sizeof value);
      }
    }
    if (!file.flush()) {
      throw std::runtime_error("cannot write " + path);
    }
  }
  ~NumberFile() { std::remove(path_.c_str()); }
  NumberFile(NumberFile const&) = delete;
  NumberFile& operator=(NumberFile const&) = delete;

  std::string const& path() const { return path_; }

 private:
  std::string path_;
};

class ExpressionCase {
 public:
  explicit ExpressionCase(BenchContext const& context)
      : context_(context),
        table_(context.columnRows),
        host_(""),
        matrix_(matrixOf()),
        file_(context.workDirectory + "/numbers.bin", table_) {
    startPeers();
  }

  CaseResult measure(std::string const& title, Expression const& expression) {
    expression_ = &expression;
    std::vector<Contender> contenders = {
        {"floor", [this] { return measureFloor(); }, [this] { verifyFloor(); }},
        {"ours", [this] { return measureOurs(); }, [this] { verifyOurs(); }}};
    if (duckdb_) {
      contenders.push_back(
          {"DuckDB", [this] { return measureDuckdb(); }, [this] { verifyDuckdb(); }});
    }
    addProcess(contenders, "numexpr", numexpr_.get(), expression.numexpr);
    addProcess(contenders, "Polars", polars_.get(), expression.name);
    CaseResult result = measureCase(title, contenders, context_.rounds);
    result.absentPeers = absent_;
    result.peakBytes = peakOfOurs();
    return result;
  }

 private:
  void startPeers() {
    if (context_.duckdbLibrary.empty()) {
      absent_.emplace_back("DuckDB");
    } else {
      duckdb_ = std::make_unique<DuckdbPeer>(context_.duckdbLibrary);
      duckdb_->fillNumbers("numbers", columnsOf(table_), table_.rows);
    }
    auto const start = [&](char const* name, bool isHere, std::vector<std::string> command) {
      std::unique_ptr<PeerProcess> peer;
      if (isHere) {
        peer = std::make_unique<PeerProcess>(std::move(command),
                                             std::vector<std::string>{"POLARS_MAX_THREADS=1"});
        peer->ask({{"do", "open"}, {"path", file_.path()}, {"rows", table_.rows}});
      } else {
        absent_.emplace_back(name);
      }
      return peer;
    };
    numexpr_ = start("numexpr", !context_.numexprScript.empty(),
                     {context_.python, context_.numexprScript});
    polars_ = start(
        "Polars", !context_.polarsExpressionScript.empty(),
        {context_.node, "--expose-gc", context_.polarsExpressionScript, context_.npmDirectory});
  }

  std::shared_ptr<moxDataMatrix> matrixOf() {
    auto matrix = host_.get<moxDataMatrix>("moxDataMatrix");
    for (auto const& [name, numbers] : columnsOf(table_)) {
      auto const column = host_.get<moxDataMatrixDoubleColumn>("moxDataMatrixDoubleColumn");
      column->setName(name);
      column->reserve(static_cast<int>(table_.rows));
      for (std::size_t row = 0; row < table_.rows; ++row) {
        numbers->isNull(row) ? column->appendNull() : column->appendValue(numbers->cells[row]);
      }
      matrix->addColumn(column);
    }
    return matrix;
  }

  double measureFloor() {
    result_.reset();
    return secondsOf([this] { result_.emplace(expression_->floor(table_)); });
  }

  void verifyFloor() {
    sum_ = 0;
    bool const usesC = std::string(expression_->ours).find("c(") != std::string::npos;
    for (std::size_t row = 0; row < table_.rows; ++row) {
      bool const isNull =
          table_.a.isNull(row) || table_.b.isNull(row) || (usesC && table_.c.isNull(row));
      sum_ += isNull ? 0 : result_->cells[row];
    }
  }

  double measureOurs() {
    dropComputed();
    return secondsOf([this] { compute(); });
  }

  void compute() {
    auto const processor =
        host_.get<moxDataMatrixExpressionProcessor>("moxDataMatrixExpressionProcessor");
    processor->addColumn("r", expression_->ours, moxColumnExpression::kDecimal, -1,
                         moxColumnExpression::kArredonda);
    processor->processDataMatrix(matrix_);
  }

  void dropComputed() { matrix_->dropColumn(matrix_->columnByName("r")); }

  void verifyOurs() {
    auto const column =
        std::dynamic_pointer_cast<moxDataMatrixDoubleColumn>(matrix_->columnByName("r"));
    for (std::size_t row = 0; row < table_.rows; ++row) {
      auto const place = static_cast<unsigned int>(row);
      if (column->isNull(place) || !isClose(column->getValue(place), result_->cells[row])) {
        throw std::runtime_error("wrong result: row " + std::to_string(row));
      }
    }
  }

  /// In a run of its own: watching memory begins with giving all free memory back to the system.
  std::size_t peakOfOurs() {
    dropComputed();
    MemoryPeak const peak;
    compute();
    return peak.risenBytes();
  }

  double measureDuckdb() {
    duckdb_->run("drop table if exists computed");
    return secondsOf([this] {
      duckdb_->run(std::string("create table computed as select ") + expression_->duckdb +
                   " as r from numbers");
    });
  }

  void verifyDuckdb() {
    constexpr double kParts = 1000;
    auto const sum = duckdb_->wholeNumber("select cast(sum(r) * 1000 as bigint) from computed");
    requireSum(static_cast<double>(sum) / kParts);
  }

  void requireSum(double found) const {
    if (!isClose(sum_, found)) {
      throw std::runtime_error("wrong result: the sum is " + std::to_string(found) + ", not " +
                               std::to_string(sum_));
    }
  }

  void addProcess(std::vector<Contender>& contenders, char const* name, PeerProcess* peer,
                  char const* expression) {
    if (peer == nullptr) {
      return;
    }
    contenders.push_back({name,
                          [this, peer, expression] {
                            auto const answer = peer->ask({{"do", "compute"},
                                                           {"expression", expression},
                                                           {"cpu", measuresProcessorTime()}});
                            requireSum(answer.at("sum").get<double>());
                            return answer.at("seconds").get<double>();
                          },
                          {}});
  }

  BenchContext const& context_;
  NumberTable table_;
  OurHost host_;
  std::shared_ptr<moxDataMatrix> matrix_;
  NumberFile file_;
  std::vector<std::string> absent_;
  std::unique_ptr<DuckdbPeer> duckdb_;
  std::unique_ptr<PeerProcess> numexpr_;
  std::unique_ptr<PeerProcess> polars_;
  Expression const* expression_ = nullptr;
  std::optional<FloorNumbers> result_;
  double sum_ = 0;  // of the rows without a null
};

}  // namespace

std::vector<CaseResult> expressionCase(BenchContext const& context) {
  ExpressionCase expressions(context);
  std::string const rows = std::to_string(context.columnRows);
  return {expressions.measure("compute " + rows + " x a+b*c-(a/(b+1))",
                              {"sums", "a(0)+b(0)*c(0)-(a(0)/(b(0)+1))", "a+b*c-(a/(b+1))",
                               "a+b*c-(a/(b+1))", &computeSums}),
          expressions.measure(
              "compute " + rows + " x a^2+b^0.5",
              {"powers", "a(0)^2+b(0)^0.5", "a^2+b^0.5", "a**2+b**0.5", &computePowers})};
}

}  // namespace bench
