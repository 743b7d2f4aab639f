#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "compare/cases.h"
#include "compare/memory_peak.h"
#include "compare/our_host.h"
#include "compare/pivot_floor.h"
#include "compare/table_peers.h"
#include "mox/zyn/matrix/data_matrix_pivoting.h"

namespace bench {
namespace {

/// The columns as other processes read them: doubles one behind the other, NaN for a null.
class PivotFile {
 public:
  PivotFile(std::string const& path, PivotTable const& table) : path_(path) {
    std::ofstream file(path, std::ios::binary);
    auto const write = [&](std::size_t count, auto valueAt) {
      for (std::size_t row = 0; row < count; ++row) {
        double const value = valueAt(row);
        file.write(reinterpret_cast<char const*>(&value), sizeof value);
      }
    };
    write(table.rows, [&](std::size_t row) { return table.key[row]; });
    write(table.rows, [&](std::size_t row) { return table.heading[row]; });
    write(table.rows, [&](std::size_t row) {
      return table.amount.isNull(row) ? std::numeric_limits<double>::quiet_NaN()
                                      : table.amount.cells[row];
    });
    if (!file.flush()) {
      throw std::runtime_error("cannot write " + path);
    }
  }
  ~PivotFile() { std::remove(path_.c_str()); }
  PivotFile(PivotFile const&) = delete;
  PivotFile& operator=(PivotFile const&) = delete;

  std::string const& path() const { return path_; }

 private:
  std::string path_;
};

class PivotCase {
 public:
  explicit PivotCase(BenchContext const& context)
      : context_(context),
        table_(context.tableRows),
        host_(""),
        matrix_(matrixOf()),
        peers_(context) {
    PivotFile const file(context.workDirectory + "/pivot.bin", table_);
    peers_.open({{"do", "open-numbers"}, {"path", file.path()}, {"rows", table_.rows}});
    if (auto* const duckdb = peers_.duckdb()) {
      fill(*duckdb);
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
    peers_.addProcesses(contenders, {{"do", "pivot"}}, [this](nlohmann::json const& answer) {
      requireSum(answer.at("sum").get<double>());
    });
    CaseResult result = measureCase(title, contenders, context_.rounds);
    result.absentPeers = peers_.absent();
    result.peakBytes = peakOfOurs();
    return result;
  }

 private:
  std::shared_ptr<moxDataMatrix> matrixOf() {
    auto matrix = host_.get<moxDataMatrix>("moxDataMatrix");
    auto const ints = [&](char const* name, GrowingArray<std::int32_t> const& cells) {
      auto const column = host_.get<moxDataMatrixIntColumn>("moxDataMatrixIntColumn");
      column->setName(name);
      column->reserve(static_cast<int>(table_.rows));
      for (std::size_t row = 0; row < table_.rows; ++row) {
        column->appendValue(cells[row]);
      }
      matrix->addColumn(column);
    };
    ints("key", table_.key);
    ints("heading", table_.heading);
    auto const amounts = host_.get<moxDataMatrixDoubleColumn>("moxDataMatrixDoubleColumn");
    amounts->setName("amount");
    amounts->reserve(static_cast<int>(table_.rows));
    for (std::size_t row = 0; row < table_.rows; ++row) {
      table_.amount.isNull(row) ? amounts->appendNull()
                                : amounts->appendValue(table_.amount.cells[row]);
    }
    matrix->addColumn(amounts);
    return matrix;
  }

  void fill(DuckdbPeer& duckdb) {
    FloorNumbers keys(table_.rows);
    FloorNumbers headings(table_.rows);
    for (std::size_t row = 0; row < table_.rows; ++row) {
      keys.cells.push(table_.key[row]);
      headings.cells.push(table_.heading[row]);
    }
    duckdb.fillNumbers("loaded",
                       {{"key", &keys}, {"heading", &headings}, {"amount", &table_.amount}},
                       table_.rows);
    duckdb.run(
        "create table numbers as select key::integer as key, heading::integer as heading, amount "
        "from loaded");
    duckdb.run("drop table loaded");
  }

  double measureFloor() {
    crossed_.reset();
    return secondsOf([this] { crossed_.emplace(crossTableOf(table_)); });
  }

  /// Against sums worked out in another way.
  void verifyFloor() {
    std::map<std::pair<int, int>, double> sums;
    for (std::size_t row = 0; row < table_.rows; ++row) {
      if (!table_.amount.isNull(row)) {
        sums[{table_.key[row], table_.heading[row]}] += table_.amount.cells[row];
      }
    }
    std::size_t cells = 0;
    sum_ = 0;
    for (std::size_t column = 0; column < crossed_->columns.size(); ++column) {
      for (std::size_t row = 0; row < crossed_->keys.size(); ++row) {
        int const key = crossed_->keys[row];
        int const heading = crossed_->headings[column];
        if (crossed_->columns[column].isNull(row)) {
          continue;
        }
        double const cell = crossed_->columns[column].cells[row];
        auto const expected = sums.find({key, heading});
        if (expected == sums.end() || expected->second != cell) {
          throw std::runtime_error("wrong result: key " + std::to_string(key));
        }
        sum_ += cell * key * heading;
        ++cells;
      }
    }
    if (cells != sums.size()) {
      throw std::runtime_error("wrong result: cells are missing");
    }
  }

  double measureOurs() {
    ours_.reset();
    return secondsOf([this] { pivot(); });
  }

  void pivot() {
    auto const pivoting = host_.get<moxDataMatrixPivoting>("moxDataMatrixPivoting");
    pivoting->addRow("key");
    pivoting->addColumn("heading", {});
    pivoting->addCell("amount", "moxDoubleSum");
    ours_ = pivoting->process(matrix_, nullptr);
  }

  void verifyOurs() const {
    auto const keys = std::dynamic_pointer_cast<moxDataMatrixIntColumn>(ours_->columnByName("key"));
    if (!keys || keys->numRows() != crossed_->keys.size() ||
        ours_->columnCount() != crossed_->columns.size() + 1) {
      throw std::runtime_error("wrong result: it has other rows or columns");
    }
    std::map<int, unsigned int> rowOfKey;
    for (unsigned int row = 0; row < keys->numRows(); ++row) {
      rowOfKey[keys->getValue(row)] = row;
    }
    for (std::size_t i = 0; i < crossed_->columns.size(); ++i) {
      auto const column = std::dynamic_pointer_cast<moxDataMatrixDoubleColumn>(
          ours_->columnByName(std::to_string(crossed_->headings[i])));
      for (std::size_t row = 0; row < crossed_->keys.size(); ++row) {
        unsigned int const place = rowOfKey.at(crossed_->keys[row]);
        bool const isNull = crossed_->columns[i].isNull(row);
        if (!column || column->isNull(place) != isNull ||
            (!isNull && column->getValue(place) != crossed_->columns[i].cells[row])) {
          throw std::runtime_error("wrong result: heading " +
                                   std::to_string(crossed_->headings[i]));
        }
      }
    }
  }

  /// In a run of its own: watching memory begins with giving all free memory back to the system.
  std::size_t peakOfOurs() {
    ours_.reset();
    MemoryPeak const peak;
    pivot();
    return peak.risenBytes();
  }

  double measureDuckdb() {
    peers_.duckdb()->run("drop table if exists crossed");
    return secondsOf([this] {
      peers_.duckdb()->run(
          "create table crossed as pivot numbers on heading using sum(amount) group by key");
    });
  }

  void verifyDuckdb() {
    std::string sum;
    for (int const heading : crossed_->headings) {
      std::string const name = std::to_string(heading);
      sum += (sum.empty() ? "" : " + ") + ("coalesce(\"" + name + "\", 0) * " + name);
    }
    requireSum(static_cast<double>(peers_.duckdb()->wholeNumber(
        "select cast(round(sum(key * (" + sum + "))) as bigint) from crossed")));
  }

  /// Others add in another order.
  void requireSum(double found) const {
    if (std::fabs(found - sum_) > 1e-9 * std::fabs(sum_) + 1) {
      throw std::runtime_error("wrong result: the sum is " + std::to_string(found) + ", not " +
                               std::to_string(sum_));
    }
  }

  BenchContext const& context_;
  PivotTable table_;
  OurHost host_;
  std::shared_ptr<moxDataMatrix> matrix_;
  TablePeers peers_;
  std::optional<CrossTable> crossed_;
  std::shared_ptr<moxDataMatrix> ours_;
  double sum_ = 0;  // of the cells, each by its key and heading
};

}  // namespace

std::vector<CaseResult> pivotCase(BenchContext const& context) {
  PivotCase pivots(context);
  return {pivots.measure("pivot " + std::to_string(context.tableRows) + " to 1000 x 50 sums")};
}

}  // namespace bench
