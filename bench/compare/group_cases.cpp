#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "compare/cases.h"
#include "compare/check_sums.h"
#include "compare/duckdb_peer.h"
#include "compare/group_floor.h"
#include "compare/memory_peak.h"
#include "compare/our_host.h"
#include "compare/peer_process.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"

namespace bench {
namespace {

constexpr std::int64_t kModulus = 16381;

std::vector<std::string> keyNamesOf(GroupKey key) {
  return key == GroupKey::kTwoNumbers ? std::vector<std::string>{"k", "j"}
                                      : std::vector<std::string>{"k"};
}

/// What a key adds to the sums: the number that it is, or ends in.
std::int64_t keyNumber(GroupKey key, GroupedTable const& table, std::size_t row) {
  switch (key) {
    case GroupKey::kNumber:
      return table.number[row];
    case GroupKey::kText:
      return std::stoll(std::string(table.text[row].view().substr(4)));
    case GroupKey::kTwoNumbers:
      return std::int64_t{table.number[row]} + 3 * std::int64_t{table.second[row]};
  }
  return 0;
}

/// What the groups say of themselves, whatever their order.
class GroupSums {
 public:
  void add(std::int64_t key, std::int64_t rows, bool isNull, double sum, double low) {
    std::int64_t const sumCents = isNull ? 0 : std::llround(sum * 100);
    std::int64_t const lowCents = isNull ? 0 : std::llround(low * 100);
    ++groups_;
    keys_ += key;
    rows_ += rows;
    sums_ += sumCents;
    lows_ += lowCents;
    nulls_ += isNull ? 1 : 0;
    whole_ += (key % kModulus) * ((rows + sumCents + lowCents) % kModulus);
  }
  CheckSums sums() const {
    return {{"groups", groups_}, {"keys", keys_},   {"rows", rows_},  {"sums", sums_},
            {"lows", lows_},     {"nulls", nulls_}, {"whole", whole_}};
  }

 private:
  std::int64_t groups_ = 0;
  std::int64_t keys_ = 0;
  std::int64_t rows_ = 0;
  std::int64_t sums_ = 0;
  std::int64_t lows_ = 0;
  std::int64_t nulls_ = 0;
  std::int64_t whole_ = 0;
};

/// The table as the peers read it; gone with this object.
class GroupFile {
 public:
  GroupFile(std::string path, GroupTable const& table) : path_(std::move(path)) {
    std::ofstream file(path_);
    file << (table.key == GroupKey::kTwoNumbers ? "k,j,v\n" : "k,v\n");
    fmt::memory_buffer line;
    for (std::size_t row = 0; row < table.rows; ++row) {
      line.clear();
      writeLine(table, row, line);
      file.write(line.data(), static_cast<std::streamsize>(line.size()));
    }
    if (!file.flush()) {
      throw std::runtime_error("cannot write " + path_);
    }
  }
  ~GroupFile() { std::remove(path_.c_str()); }
  GroupFile(GroupFile const&) = delete;
  GroupFile& operator=(GroupFile const&) = delete;

  std::string const& path() const { return path_; }

 private:
  static void writeLine(GroupTable const& table, std::size_t row, fmt::memory_buffer& line) {
    auto const end = std::back_inserter(line);
    if (table.key == GroupKey::kText) {
      fmt::format_to(end, "{}", table.text[row].view());
    } else {
      fmt::format_to(end, "{}", table.number[row]);
    }
    if (table.key == GroupKey::kTwoNumbers) {
      fmt::format_to(end, ",{}", table.second[row]);
    }
    if (table.amount.isNull(row)) {
      fmt::format_to(end, ",\n");
    } else {
      fmt::format_to(end, ",{:.2f}\n", table.amount.cells[row]);
    }
  }

  std::string path_;
};

class GroupCase {
 public:
  GroupCase(BenchContext const& context, GroupKey key, std::size_t rows, std::size_t groups)
      : context_(context), table_(key, rows, groups), host_(""), matrix_(matrixOf()) {}

  CaseResult measure(std::string const& title) {
    std::vector<Contender> contenders = {
        {"floor", [this] { return measureFloor(); }, [this] { expected_ = floorSums(); }},
        {"ours", [this] { return measureOurs(); }, [this] { verifyOurs(); }}};
    GroupFile const file(context_.workDirectory + "/groups.csv", table_);
    addDuckdb(contenders, file.path());
    addProcess(contenders, "pandas", !context_.pandasGroupScript.empty(),
               {context_.python, context_.pandasGroupScript}, file.path());
    addProcess(contenders, "Polars", !context_.polarsGroupScript.empty(),
               {context_.node, "--expose-gc", context_.polarsGroupScript, context_.npmDirectory},
               file.path());
    CaseResult result = measureCase(title, contenders, context_.rounds);
    result.absentPeers = absent_;
    result.peakBytes = peakOfOurs();
    return result;
  }

 private:
  std::shared_ptr<moxDataMatrix> matrixOf() {
    auto matrix = host_.get<moxDataMatrix>("moxDataMatrix");
    if (table_.key == GroupKey::kText) {
      addColumn<moxDataMatrixTextColumn>(*matrix, "moxDataMatrixTextColumn", "k", [&](auto row) {
        return std::string(table_.text[row].view());
      });
    } else {
      addColumn<moxDataMatrixIntColumn>(*matrix, "moxDataMatrixIntColumn", "k",
                                        [&](auto row) { return table_.number[row]; });
    }
    if (table_.key == GroupKey::kTwoNumbers) {
      addColumn<moxDataMatrixIntColumn>(*matrix, "moxDataMatrixIntColumn", "j",
                                        [&](auto row) { return table_.second[row]; });
    }
    auto const amounts = host_.get<moxDataMatrixDoubleColumn>("moxDataMatrixDoubleColumn");
    amounts->setName("v");
    amounts->reserve(static_cast<int>(table_.rows));
    for (std::size_t row = 0; row < table_.rows; ++row) {
      table_.amount.isNull(row) ? amounts->appendNull()
                                : amounts->appendValue(table_.amount.cells[row]);
    }
    matrix->addColumn(amounts);
    return matrix;
  }

  template <class Column, class ValueAt>
  void addColumn(moxDataMatrix& matrix, char const* kind, char const* name, ValueAt valueAt) {
    auto const column = host_.get<Column>(kind);
    column->setName(name);
    column->reserve(static_cast<int>(table_.rows));
    for (std::size_t row = 0; row < table_.rows; ++row) {
      column->appendValue(valueAt(row));
    }
    matrix.addColumn(column);
  }

  double measureFloor() {
    groups_.reset();
    return secondsOf([this] { groups_.emplace(groupByHand(table_)); });
  }

  CheckSums floorSums() const {
    GroupSums sums;
    for (std::size_t i = 0; i < groups_->rows.size(); ++i) {
      sums.add(keyNumber(table_.key, *groups_, i), groups_->rows[i], groups_->isNull.test(i),
               groups_->sum[i], groups_->low[i]);
    }
    return sums.sums();
  }

  double measureOurs() {
    result_.reset();
    return secondsOf([this] { aggregate(); });
  }

  void aggregate() {
    auto const aggregator = host_.get<moxDataMatrixAggregator>("moxDataMatrixAggregator");
    for (std::string const& name : keyNamesOf(table_.key)) {
      aggregator->pushIndexColumn(name);
    }
    for (auto const& [kind, target] : {std::pair("moxDoubleSum", "s"), {"moxDoubleMin", "m"}}) {
      auto const function = host_.get<moxDoubleAggregationFunction>(kind);
      function->setSourceColumn("v");
      function->setTargetColumn(target);
      aggregator->addFunction(function);
    }
    result_ = aggregator->aggregate(matrix_, true, "");
  }

  template <class Column>
  std::shared_ptr<Column> columnOf(char const* name) const {
    auto const column = std::dynamic_pointer_cast<Column>(result_->columnByName(name));
    if (!column || column->numRows() != result_->rowCount()) {
      throw std::runtime_error(std::string("wrong result: column '") + name + "'");
    }
    return column;
  }

  /// The number of a key of ours, as keyNumber tells it.
  std::function<std::int64_t(unsigned int)> ourKeyNumber() const {
    if (table_.key == GroupKey::kText) {
      return [keys = columnOf<moxDataMatrixTextColumn>("k")](unsigned int row) {
        return std::stoll(keys->getValue(row).substr(4));
      };
    }
    auto const keys = columnOf<moxDataMatrixIntColumn>("k");
    if (table_.key == GroupKey::kNumber) {
      return [keys](unsigned int row) { return std::int64_t{keys->getValue(row)}; };
    }
    return [keys, further = columnOf<moxDataMatrixIntColumn>("j")](unsigned int row) {
      return std::int64_t{keys->getValue(row)} + 3 * std::int64_t{further->getValue(row)};
    };
  }

  void verifyOurs() {
    GroupSums sums;
    auto const key = ourKeyNumber();
    auto const total = columnOf<moxDataMatrixDoubleColumn>("s");
    auto const low = columnOf<moxDataMatrixDoubleColumn>("m");
    auto const rows = columnOf<moxDataMatrixIntColumn>("data_count");
    for (unsigned int row = 0; row < result_->rowCount(); ++row) {
      if (total->isNull(row) != low->isNull(row)) {
        throw std::runtime_error("wrong result: nulls of row " + std::to_string(row));
      }
      sums.add(key(row), rows->getValue(row), total->isNull(row), total->getValue(row),
               low->getValue(row));
    }
    requireEqual(expected_, sums.sums());
  }

  /// In a run of its own: watching memory begins with giving all free memory back to the system.
  std::size_t peakOfOurs() {
    result_.reset();
    MemoryPeak const peak;
    aggregate();
    return peak.risenBytes();
  }

  void addDuckdb(std::vector<Contender>& contenders, std::string const& path) {
    if (context_.duckdbLibrary.empty()) {
      absent_.emplace_back("DuckDB");
      return;
    }
    duckdb_ = std::make_unique<DuckdbPeer>(context_.duckdbLibrary);
    bool const isText = table_.key == GroupKey::kText;
    bool const isPair = table_.key == GroupKey::kTwoNumbers;
    std::string const types = std::string("{'k': '") + (isText ? "varchar" : "integer") +
                              (isPair ? "', 'j': 'integer" : "") + "', 'v': 'double'}";
    duckdb_->run("create table numbers as select * from read_csv('" + path +
                 "', header = true, columns = " + types + ")");
    std::string const keys = isPair ? "k, j" : "k";
    contenders.push_back({"DuckDB",
                          [this, keys] {
                            duckdb_->run("drop table if exists grouped");
                            return secondsOf([this, &keys] {
                              duckdb_->run("create table grouped as select " + keys +
                                           ", sum(v) s, min(v) m, count(*) n from numbers "
                                           "group by " +
                                           keys);
                            });
                          },
                          [this] { verifyDuckdb(); }});
  }

  void verifyDuckdb() {
    std::string const key = table_.key == GroupKey::kNumber ? "k::bigint"
                            : table_.key == GroupKey::kText ? "substr(k, 5)::bigint"
                                                            : "(k::bigint + 3 * j::bigint)";
    std::string const cents = "coalesce(round(s * 100)::bigint, 0)";
    std::string const lowCents = "coalesce(round(m * 100)::bigint, 0)";
    std::pair<char const*, std::string> const wanted[] = {
        {"groups", "count(*)"},
        {"keys", "sum(" + key + ")"},
        {"rows", "sum(n)"},
        {"sums", "sum(" + cents + ")"},
        {"lows", "sum(" + lowCents + ")"},
        {"nulls", "sum((s is null)::int)"},
        {"whole", "sum((" + key + " % 16381) * ((n + " + cents + " + " + lowCents + ") % 16381))"}};
    CheckSums sums;
    for (auto const& [name, expression] : wanted) {
      sums[name] = duckdb_->wholeNumber("select (" + expression + ")::bigint from grouped");
    }
    requireEqual(expected_, sums);
  }

  void addProcess(std::vector<Contender>& contenders, char const* name, bool isHere,
                  std::vector<std::string> command, std::string const& path) {
    if (!isHere) {
      absent_.emplace_back(name);
      return;
    }
    auto const peer = std::make_shared<PeerProcess>(
        std::move(command), std::vector<std::string>{"POLARS_MAX_THREADS=1"});
    peer->ask({{"do", "open"},
               {"path", path},
               {"keys", keyNamesOf(table_.key)},
               {"texts", table_.key == GroupKey::kText}});
    contenders.push_back({name,
                          [this, peer, isChecked = false]() mutable {
                            auto const answer = peer->ask({{"do", "group"},
                                                           {"cpu", measuresProcessorTime()},
                                                           {"check", !isChecked}});
                            if (!isChecked) {
                              requireEqual(expected_, answer.at("sums").get<CheckSums>());
                              isChecked = true;
                            }
                            return answer.at("seconds").get<double>();
                          },
                          {}});
  }

  BenchContext const& context_;
  GroupTable table_;
  OurHost host_;
  std::shared_ptr<moxDataMatrix> matrix_;
  std::vector<std::string> absent_;
  CheckSums expected_;
  std::optional<GroupedTable> groups_;
  std::shared_ptr<moxDataMatrix> result_;
  std::unique_ptr<DuckdbPeer> duckdb_;
};

std::vector<CaseResult> linesOf(BenchContext const& context, GroupKey key, char const* keyName,
                                std::vector<std::size_t> const& groupCounts) {
  std::vector<CaseResult> lines;
  for (std::size_t const groups : groupCounts) {
    GroupCase measured(context, key, context.columnRows, groups);
    lines.push_back(measured.measure(
        fmt::format("group {} by {}, {} groups", context.columnRows, keyName, groups)));
  }
  return lines;
}

}  // namespace

std::vector<CaseResult> groupByNumberCase(BenchContext const& context) {
  return linesOf(context, GroupKey::kNumber, "int", {100, 10'000, 1'000'000});
}

std::vector<CaseResult> groupByTextCase(BenchContext const& context) {
  return linesOf(context, GroupKey::kText, "text of 10", {100, 10'000, 1'000'000});
}

std::vector<CaseResult> groupByTwoNumbersCase(BenchContext const& context) {
  return linesOf(context, GroupKey::kTwoNumbers, "(int, int)", {1'000'000});
}

}  // namespace bench
