#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "compare/cases.h"
#include "compare/check_sums.h"
#include "compare/duckdb_peer.h"
#include "compare/join_floor.h"
#include "compare/memory_peak.h"
#include "compare/our_host.h"
#include "compare/peer_process.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/join_data_source.h"

namespace bench {
namespace {

constexpr std::int64_t kModulus = 16381;

/// What to join by, as each contender is told.
struct Join {
  char const* key;  // the column of both tables
  std::vector<std::string> payload;
  JoinResult (*floor)(JoinTables const&);
};

/// A file that goes with this object.
class ScratchFile {
 public:
  explicit ScratchFile(std::string path) : path_(std::move(path)) {}
  ~ScratchFile() { std::remove(path_.c_str()); }
  ScratchFile(ScratchFile const&) = delete;
  ScratchFile& operator=(ScratchFile const&) = delete;

  std::string const& path() const { return path_; }

 private:
  std::string path_;
};

std::int64_t cents(double value) {
  return static_cast<std::int64_t>(std::llround(value * 100));
}

/// Sums over the columns that all joins give; "whole" tells whether sales stand beside their own
/// customers.
CheckSums sumsOf(JoinResult const& result) {
  CheckSums sums{{"rows", static_cast<std::int64_t>(result.rows)},
                 {"cents", 0},
                 {"rating", 0},
                 {"rating_nulls", 0},
                 {"whole", 0}};
  for (std::size_t row = 0; row < result.rows; ++row) {
    std::int64_t const value = result.valueNulls.test(row) ? 0 : cents(result.value[row]);
    std::int64_t const rating = result.ratingNulls.test(row) ? 0 : result.rating[row];
    sums["cents"] += value;
    sums["rating"] += rating;
    sums["rating_nulls"] += result.ratingNulls.test(row) ? 1 : 0;
    sums["whole"] += value % kModulus * rating;
  }
  return sums;
}

std::string joinedBy(std::vector<std::string> const& names, char const* prefix) {
  std::string text;
  for (auto const& name : names) {
    text += ", " + (prefix + name);
  }
  return text;
}

class JoinCase {
 public:
  explicit JoinCase(BenchContext const& context)
      : context_(context),
        tables_(context.joinRows),
        host_(""),
        sales_(host_.get<moxDataMatrix>("moxDataMatrix")),
        customers_(host_.get<moxDataMatrix>("moxDataMatrix")),
        salesFile_(context.workDirectory + "/join_sales.csv"),
        customersFile_(context.workDirectory + "/join_customers.csv") {
    fillMatrices();
    writeCsv(tables_, salesFile_.path(), customersFile_.path());
    startPeers();
  }

  CaseResult measure(std::string const& title, Join join) {
    join_ = std::move(join);
    std::vector<Contender> contenders = {
        {"floor", [this] { return measureFloor(); }, [this] { verifyFloor(); }},
        {"ours", [this] { return measureOurs(); }, [this] { verifyOurs(); }}};
    if (duckdb_) {
      contenders.push_back(
          {"DuckDB", [this] { return measureDuckdb(); }, [this] { verifyDuckdb(); }});
    }
    addProcess(contenders, "pandas", pandas_.get());
    addProcess(contenders, "Polars", polars_.get());
    CaseResult result = measureCase(title, contenders, context_.rounds);
    result.absentPeers = absent_;
    result.peakBytes = peakOfOurs();
    return result;
  }

 private:
  // What the peers read.

  void startPeers() {
    if (context_.duckdbLibrary.empty()) {
      absent_.emplace_back("DuckDB");
    } else {
      openDuckdb();
    }
    pandas_ = start("pandas", !context_.pandasJoinScript.empty(),
                    {context_.python, context_.pandasJoinScript});
    polars_ =
        start("Polars", !context_.polarsJoinScript.empty(),
              {context_.node, "--expose-gc", context_.polarsJoinScript, context_.npmDirectory});
  }

  void openDuckdb() {
    duckdb_ = std::make_unique<DuckdbPeer>(context_.duckdbLibrary);
    duckdb_->run("create table sales as select * from read_csv('" + salesFile_.path() +
                 "', header = true, columns = {'key': 'integer', 'code': 'varchar', 'value': "
                 "'double'})");
    duckdb_->run(
        "create table customers as select key, code, rating, credit, label, "
        "to_timestamp(since)::timestamp as since from read_csv('" +
        customersFile_.path() +
        "', header = true, columns = {'key': 'integer', 'code': 'varchar', 'rating': "
        "'integer', 'credit': 'double', 'label': 'varchar', 'since': 'bigint'})");
  }

  std::unique_ptr<PeerProcess> start(char const* name, bool isHere,
                                     std::vector<std::string> command) {
    if (!isHere) {
      absent_.emplace_back(name);
      return nullptr;
    }
    auto peer = std::make_unique<PeerProcess>(std::move(command),
                                              std::vector<std::string>{"POLARS_MAX_THREADS=1"});
    peer->ask({{"do", "open"}, {"sales", salesFile_.path()}, {"customers", customersFile_.path()}});
    return peer;
  }

  // Ours.

  template <class T, class ValueAt>
  void add(moxDataMatrix& matrix, char const* kind, char const* name, std::size_t rows,
           FloorNulls const* nulls, ValueAt const& valueAt) {
    auto const column = host_.get<moxDataMatrixTypedColumn<T>>(kind);
    column->setName(name);
    column->reserve(static_cast<int>(rows));
    for (std::size_t row = 0; row < rows; ++row) {
      bool const null = nulls != nullptr && nulls->test(row);
      null ? column->appendNull() : column->appendValue(valueAt(row));
    }
    matrix.addColumn(column);
  }

  void fillMatrices() {
    auto const ints = [&](auto& matrix, char const* name, auto const& cells,
                          FloorNulls const* nulls = nullptr) {
      add<int>(*matrix, "moxDataMatrixIntColumn", name, cells.size(), nulls,
               [&](std::size_t row) { return cells[row]; });
    };
    auto const doubles = [&](auto& matrix, char const* name, auto const& cells,
                             FloorNulls const& nulls) {
      add<double>(*matrix, "moxDataMatrixDoubleColumn", name, cells.size(), &nulls,
                  [&](std::size_t row) { return cells[row]; });
    };
    auto const texts = [&](auto& matrix, char const* name, auto const& cells) {
      add<std::string>(*matrix, "moxDataMatrixTextColumn", name, cells.size(), nullptr,
                       [&](std::size_t row) { return std::string(cells[row].view()); });
    };
    ints(sales_, "key", tables_.saleKey);
    texts(sales_, "code", tables_.saleCode);
    doubles(sales_, "value", tables_.value, tables_.valueNulls);
    ints(customers_, "key", tables_.customerKey);
    texts(customers_, "code", tables_.customerCode);
    ints(customers_, "rating", tables_.rating, &tables_.ratingNulls);
    doubles(customers_, "credit", tables_.credit, tables_.creditNulls);
    texts(customers_, "label", tables_.label);
    add<datetime_t>(*customers_, "moxDataMatrixDateColumn", "since", tables_.since.size(), nullptr,
                    [&](std::size_t row) { return datetime_t::fromTime_t(tables_.since[row]); });
  }

  static std::vector<moxJoinDataSource::JoinData::ColumnData> columns(
      std::vector<std::string> const& names) {
    std::vector<moxJoinDataSource::JoinData::ColumnData> taken;
    for (auto const& name : names) {
      taken.push_back({name, name, moxDataMatrixTypes::Int});
    }
    return taken;
  }

  void joinMatrices() {
    auto const source = host_.get<moxJoinDataSource>("moxJoinDataSource");
    source->setName("joined");
    source->setSources({{"sales", columns({join_.key, "value"}), {}},
                        {"customers", columns(join_.payload), {{join_.key, "", "", join_.key}}}});
    auto const run = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    run->registerDataMatrix("sales", sales_);
    run->registerDataMatrix("customers", customers_);
    source->createExecution()->generateDataMatrix(run, "");
    joined_ = run->getDataMatrix("joined");
  }

  double measureOurs() {
    joined_.reset();
    return secondsOf([this] { joinMatrices(); });
  }

  /// In a run of its own: watching memory begins with giving all free memory back to the system.
  std::size_t peakOfOurs() {
    joined_.reset();
    result_.reset();
    MemoryPeak const peak;
    joinMatrices();
    return peak.risenBytes();
  }

  template <class T, class ValueAt>
  void requireEqual(char const* name, FloorNulls const* nulls, ValueAt const& valueAt) const {
    auto const column =
        std::dynamic_pointer_cast<moxDataMatrixTypedColumn<T>>(joined_->columnByName(name));
    if (!column) {
      return;
    }
    for (std::size_t row = 0; row < result_->rows; ++row) {
      auto const place = static_cast<unsigned int>(row);
      bool const null = nulls != nullptr && nulls->test(row);
      if (column->isNull(place) != null || (!null && column->getValue(place) != valueAt(row))) {
        throw std::runtime_error(std::string("wrong result: column '") + name + "', row " +
                                 std::to_string(row));
      }
    }
  }

  void verifyOurs() const {
    auto const& result = *result_;
    if (!joined_ || joined_->rowCount() != result.rows ||
        joined_->columnCount() != 2 + join_.payload.size()) {
      throw std::runtime_error("wrong result: rows or columns");
    }
    requireEqual<int>("key", nullptr, [&](std::size_t row) { return result.key[row]; });
    requireEqual<std::string>("code", nullptr,
                              [&](std::size_t row) { return result.code[row].view(); });
    requireEqual<double>("value", &result.valueNulls,
                         [&](std::size_t row) { return result.value[row]; });
    requireEqual<int>("rating", &result.ratingNulls,
                      [&](std::size_t row) { return result.rating[row]; });
    requireEqual<double>("credit", &result.creditNulls,
                         [&](std::size_t row) { return result.credit[row]; });
    requireEqual<std::string>("label", nullptr,
                              [&](std::size_t row) { return result.label[row].view(); });
    requireEqual<datetime_t>("since", nullptr, [&](std::size_t row) {
      return datetime_t::fromTime_t(result.since[row]);
    });
  }

  // The floor.

  double measureFloor() {
    result_.reset();
    return secondsOf([this] { result_.emplace(join_.floor(tables_)); });
  }

  /// By what the tables were made of, not by looking keys up.
  void verifyFloor() {
    std::size_t row = 0;
    for (std::size_t sale = 0; sale < tables_.saleRows; ++sale) {
      std::uint32_t const customer = customerOf(tables_, sale);
      if (customer >= tables_.customerRows) {
        continue;
      }
      bool const null = tables_.ratingNulls.test(customer);
      if (row == result_->rows || result_->ratingNulls.test(row) != null ||
          result_->rating[row] != tables_.rating[customer] ||
          result_->value[row] != tables_.value[sale]) {
        throw std::runtime_error("wrong floor: row " + std::to_string(row));
      }
      ++row;
    }
    if (row != result_->rows) {
      throw std::runtime_error("wrong floor: too many rows");
    }
    expected_ = sumsOf(*result_);
  }

  // Peers.

  double measureDuckdb() {
    duckdb_->run("drop table if exists joined");
    return secondsOf([this] {
      duckdb_->run(std::string("create table joined as select s.") + join_.key + ", s.value" +
                   joinedBy(join_.payload, "c.") + " from sales s join customers c on c." +
                   join_.key + " = s." + join_.key);
    });
  }

  void verifyDuckdb() {
    auto const number = [&](std::string const& expression) {
      return duckdb_->wholeNumber("select cast(" + expression + " as bigint) from joined");
    };
    std::string const value = "coalesce(round(value * 100)::bigint, 0)";
    bench::requireEqual(
        expected_,
        CheckSums{{"rows", number("count(*)")},
                  {"cents", number("sum(" + value + ")")},
                  {"rating", number("sum(rating)")},
                  {"rating_nulls", number("sum((rating is null)::int)")},
                  {"whole", number("sum(" + value + " % 16381 * coalesce(rating, 0))")}});
  }

  void addProcess(std::vector<Contender>& contenders, char const* name, PeerProcess* peer) {
    if (peer == nullptr) {
      return;
    }
    auto const checked = std::make_shared<bool>(false);
    contenders.push_back({name,
                          [this, peer, checked] {
                            auto const answer = peer->ask({{"do", "join"},
                                                           {"key", join_.key},
                                                           {"payload", join_.payload},
                                                           {"cpu", measuresProcessorTime()},
                                                           {"check", !*checked}});
                            if (!*checked) {
                              bench::requireEqual(expected_, answer.at("sums").get<CheckSums>());
                              *checked = true;
                            }
                            return answer.at("seconds").get<double>();
                          },
                          {}});
  }

  BenchContext const& context_;
  JoinTables tables_;
  OurHost host_;
  std::shared_ptr<moxDataMatrix> sales_;
  std::shared_ptr<moxDataMatrix> customers_;
  ScratchFile salesFile_;
  ScratchFile customersFile_;
  std::vector<std::string> absent_;
  std::unique_ptr<DuckdbPeer> duckdb_;
  std::unique_ptr<PeerProcess> pandas_;
  std::unique_ptr<PeerProcess> polars_;
  Join join_;
  CheckSums expected_;
  std::optional<JoinResult> result_;
  std::shared_ptr<moxDataMatrix> joined_;
};

}  // namespace

std::vector<CaseResult> joinCase(BenchContext const& context) {
  JoinCase joins(context);
  std::string const title = "join " + std::to_string(context.joinRows) + " with a tenth, by ";
  return {joins.measure(title + "int", {"key", {"rating"}, &joinByKey}),
          joins.measure(title + "text of 10", {"code", {"rating"}, &joinByCode}),
          joins.measure(title + "int, four columns",
                        {"key", {"rating", "credit", "label", "since"}, &joinWide})};
}

}  // namespace bench
