#include "compare/duckdb_peer.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace bench {
namespace {

using Handle = void*;  // the library's own objects are pointers to what only it knows
using Status = int;    // 0 is success

/// A result as the library's C interface lays it out; only the library looks into it.
struct Result {
  std::uint64_t columnCount;
  std::uint64_t rowCount;
  std::uint64_t rowsChanged;
  void* columns;
  char* errorMessage;
  void* internalData;
};

constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;

class Library {
 public:
  explicit Library(std::string const& file) : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
      throw std::runtime_error(std::string("DuckDB cannot be loaded: ") + dlerror());
    }
  }

  /// Never unloaded: the library's threads and thread data do not survive that.
  template <class Function>
  void find(char const* name, Function& target) const {
    target = reinterpret_cast<Function>(dlsym(handle_, name));
    if (target == nullptr) {
      throw std::runtime_error(std::string("DuckDB lacks ") + name);
    }
  }

 private:
  void* handle_;
};

}  // namespace

class DuckdbPeer::Api {
 public:
  explicit Api(std::string const& file) : library_(file) {
    library_.find("duckdb_open", open_);
    library_.find("duckdb_close", close_);
    library_.find("duckdb_connect", connect_);
    library_.find("duckdb_disconnect", disconnect_);
    library_.find("duckdb_query", query_);
    library_.find("duckdb_result_error", resultError_);
    library_.find("duckdb_destroy_result", destroyResult_);
    library_.find("duckdb_value_int64", valueInt64_);
    library_.find("duckdb_appender_create", createAppender_);
    library_.find("duckdb_appender_destroy", destroyAppender_);
    library_.find("duckdb_appender_end_row", endRow_);
    library_.find("duckdb_append_int32", appendInt_);
    library_.find("duckdb_append_double", appendDouble_);
    library_.find("duckdb_append_timestamp", appendTimestamp_);
    library_.find("duckdb_append_varchar_length", appendText_);
    library_.find("duckdb_append_null", appendNull_);
    require(open_(nullptr, &database_), "open");
    require(connect_(database_, &connection_), "connect");
  }
  ~Api() {
    disconnect_(&connection_);
    close_(&database_);
  }
  Api(Api const&) = delete;
  Api& operator=(Api const&) = delete;

  void run(std::string const& statement) { (void)query(statement, 0); }

  /// The values of the first row.
  std::vector<std::int64_t> query(std::string const& statement, std::size_t columns) {
    Result result{};
    Status const status = query_(connection_, statement.c_str(), &result);
    std::string const error = status == 0 ? "" : resultError_(&result);
    std::vector<std::int64_t> values;
    for (std::size_t i = 0; status == 0 && i < columns; ++i) {
      values.push_back(valueInt64_(&result, i, 0));
    }
    destroyResult_(&result);
    if (status != 0) {
      throw std::runtime_error("DuckDB: " + error);
    }
    return values;
  }

  void append(std::string const& tableName, FloorTable const& table) {
    appendRows(tableName.c_str(), table.rows(),
               [&](Handle appender, std::size_t row) { return appendRow(appender, table, row); });
  }

  void append(std::string const& tableName,
              std::vector<std::pair<char const*, FloorNumbers const*>> const& columns,
              std::size_t rows) {
    appendRows(tableName.c_str(), rows, [&](Handle appender, std::size_t row) {
      Status bad = 0;
      for (auto const& [name, column] : columns) {
        bad |= column->isNull(row) ? appendNull_(appender)
                                   : appendDouble_(appender, column->cells[row]);
      }
      return bad | endRow_(appender);
    });
  }

 private:
  static void require(Status status, char const* what) {
    if (status != 0) {
      throw std::runtime_error(std::string("DuckDB refuses to ") + what);
    }
  }

  /// `appendRow` tells of each row whether it went wrong.
  template <class AppendRow>
  void appendRows(char const* tableName, std::size_t rows, AppendRow const& append) {
    Handle appender = nullptr;
    require(createAppender_(connection_, nullptr, tableName, &appender), "append");
    Status bad = 0;
    for (std::size_t row = 0; row < rows; ++row) {
      bad |= append(appender, row);
    }
    bad |= destroyAppender_(&appender);
    require(bad, "append");
  }

  Status appendText(Handle appender, FloorText const& text) {
    std::string_view const bytes = text.view();
    return appendText_(appender, bytes.data(), bytes.size());
  }

  Status appendRow(Handle appender, FloorTable const& table, std::size_t row) {
    Status bad = appendInt_(appender, table.number[row]);
    bad |= table.ratingNulls.test(row) ? appendNull_(appender)
                                       : appendInt_(appender, table.rating[row]);
    bad |= table.amountNulls.test(row) ? appendNull_(appender)
                                       : appendDouble_(appender, table.amount[row]);
    bad |= appendTimestamp_(appender, {table.day[row] * kMicrosecondsPerSecond});
    bad |= appendText(appender, table.code[row]);
    bad |= appendText(appender, table.description[row]);
    return bad | endRow_(appender);
  }

  struct Timestamp {
    std::int64_t microseconds;
  };

  Library library_;
  Handle database_ = nullptr;
  Handle connection_ = nullptr;
  Status (*open_)(char const*, Handle*) = nullptr;
  void (*close_)(Handle*) = nullptr;
  Status (*connect_)(Handle, Handle*) = nullptr;
  void (*disconnect_)(Handle*) = nullptr;
  Status (*query_)(Handle, char const*, Result*) = nullptr;
  char const* (*resultError_)(Result*) = nullptr;
  void (*destroyResult_)(Result*) = nullptr;
  std::int64_t (*valueInt64_)(Result*, std::uint64_t, std::uint64_t) = nullptr;
  Status (*createAppender_)(Handle, char const*, char const*, Handle*) = nullptr;
  Status (*destroyAppender_)(Handle*) = nullptr;
  Status (*endRow_)(Handle) = nullptr;
  Status (*appendInt_)(Handle, std::int32_t) = nullptr;
  Status (*appendDouble_)(Handle, double) = nullptr;
  Status (*appendTimestamp_)(Handle, Timestamp) = nullptr;
  Status (*appendText_)(Handle, char const*, std::uint64_t) = nullptr;
  Status (*appendNull_)(Handle) = nullptr;
};

DuckdbPeer::DuckdbPeer(std::string const& library, FloorTable const& table) : DuckdbPeer(library) {
  fillSales("sale", table);
}

DuckdbPeer::DuckdbPeer(std::string const& library) : api_(std::make_unique<Api>(library)) {
  api_->run("set threads = 1");
}

DuckdbPeer::~DuckdbPeer() = default;

void DuckdbPeer::run(std::string const& statement) {
  api_->run(statement);
}

std::int64_t DuckdbPeer::wholeNumber(std::string const& statement) {
  return api_->query(statement, 1).at(0);
}

void DuckdbPeer::fillNumbers(
    std::string const& tableName,
    std::vector<std::pair<char const*, FloorNumbers const*>> const& columns, std::size_t rows) {
  std::string list;
  for (auto const& [name, column] : columns) {
    list += (list.empty() ? "" : ", ") + std::string(name) + " double";
  }
  api_->run("create table " + tableName + "(" + list + ")");
  api_->append(tableName, columns, rows);
}

void DuckdbPeer::fillSales(std::string const& tableName, FloorTable const& table) {
  api_->run("create table \"" + tableName +
            "\"(number integer, rating integer, amount double, day timestamp, code varchar, "
            "description varchar)");
  api_->append(tableName, table);
}

void DuckdbPeer::sortBy(std::string const& columns) {
  api_->run("create table sorted as select * from sale order by " + columns);
}

void DuckdbPeer::dropSorted() {
  api_->run("drop table if exists sorted");
}

CheckSums DuckdbPeer::sortedSums(std::string const& order1, std::string const& order2) {
  std::vector<std::pair<std::string, std::string>> wanted = {
      {"rows", "count(*)"},
      {"number", "sum(number)"},
      {"rating", "sum(rating)"},
      {"rating_nulls", "sum((rating is null)::int)"},
      {"cents", "sum(round(amount * 100)::bigint + 50000000)"},
      {"amount_nulls", "sum((amount is null)::int)"},
      {"days", "sum(epoch(day)::bigint // 86400)"},
      {"code", "sum(substr(code, 5)::bigint)"},
      {"description", "sum(substr(description, 23)::bigint)"},
      {"whole",
       "sum((substr(description, 23)::bigint % 16381) * "
       "((number + substr(code, 5)::bigint + coalesce(rating, 0)) % 16381))"}};
  if (!order1.empty()) {
    wanted.emplace_back("order", "sum((rowid % 16381 + 1) * (" + order1 + " % 16381))");
  }
  if (!order2.empty()) {
    wanted.emplace_back("order2", "sum((rowid % 16381 + 1) * (" + order2 + " % 16381))");
  }
  std::string list;
  for (auto const& [name, expression] : wanted) {
    list += (list.empty() ? "" : ", ") + ("cast(" + expression + " as bigint)");
  }
  auto const values = api_->query("select " + list + " from sorted", wanted.size());
  CheckSums sums;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    sums[wanted[i].first] = values[i];
  }
  return sums;
}

}  // namespace bench
