// What a search screen waits for: a search over a million rows of six columns is opened, sorted,
// paged through and read to its end, beside the work that nobody could leave out. Each case checks
// what it read against its floor.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/app/application.h"
#include "mox/core/database_connection.h"
#include "mox/core/module.h"
#include "mox/core/progress_notifier.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "mox/zyn/search/search.h"
#include "mox/zyn/search/search_run_control.h"
#include "mox/zyn/search/search_runner.h"
#include "zyn/format/date_formatter.h"
#include "zyn/format/decimal_formatter.h"
#include "zyn/format/integral_formatter.h"
#include "zyn/matrix/data_matrix_columns.h"

namespace {

constexpr unsigned int kRows = 1'000'000;
constexpr unsigned int kColumns = 6;
constexpr unsigned int kPage = 50;

constexpr char const* kTable =
    "create table sale (number int, rating int, amount double, day date, code text, "
    "description text)";

constexpr char const* kFill = R"(insert into sale
  with recursive n(i) as (select 0 union all select i + 1 from n where i < 999999)
  select i * 7919 % 100000, case when i % 10 = 3 then null else i * 31 % 1000 end,
    case when i % 20 = 7 then null else (i * 104729 % 200000000 - 50000000) / 100.0 end,
    date('2015-01-01', '+' || (i * 17 % 3650) || ' days'),
    printf('%c%c%c%c%06d', 65 + i % 26, 65 + i / 26 % 26, 65 + i / 676 % 26, 65 + i % 7, i),
    printf('a sale of things, number %06d', i)
  from n)";

constexpr char const* kSearch = R"(<moxSearch InternalName="sales"><General/><dataSource>
  <moxSQLDataSource name="sale"><Command>select * from sale</Command><Columns>
    <Column columnName="number" Type="2"/>
    <Column columnName="rating" Type="2"/>
    <Column columnName="amount" Type="4"><Formatters Visual="moxDecimalFormatter">
      <Visual precision="2" separator=","><thousand grouping="3" separator="."/></Visual>
    </Formatters></Column>
    <Column columnName="day" Type="5"/>
    <Column columnName="code" Type="1"/>
    <Column columnName="description" Type="1"/>
  </Columns></moxSQLDataSource></dataSource></moxSearch>)";

/// An application with the module, on a database file of its own that is gone at the end.
class OurHost {
 public:
  OurHost() : application_(settings(path_)) {
    application_.addModule({moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck,
                            moxPlugIn_EntryPoint, moxPlugIn_RegisterClasses},
                           "the linked module");
    application_.start();
    application_.databaseConnection().execute(kTable);
    application_.databaseConnection().execute(kFill);
    auto const document = get<moxXMLDocument>("moxXMLDocument");
    document->loadText(kSearch);
    search_ = get<moxSearch>("moxSearch");
    search_->load(document->root());
  }
  ~OurHost() { std::filesystem::remove(path_); }

  OurHost(OurHost const&) = delete;
  OurHost& operator=(OurHost const&) = delete;

  template <class T>
  std::shared_ptr<T> get(std::string const& name) {
    return application_.get<T>(name);
  }

  std::shared_ptr<moxSearchRunner> newRunner() {
    auto runner = get<moxSearchRunner>("moxSearchRunner");
    runner->load(search_);
    return runner;
  }

  std::shared_ptr<moxDataMatrix> runSource() {
    auto const context = get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    context->processDataSources(
        {}, {{"sale", {false, search_->getDataSource()->createExecution()}}}, {}, 0);
    return context->getDataMatrix("sale");
  }

 private:
  static mox::core::Settings settings(std::filesystem::path const& path) {
    mox::core::Settings made;
    made.set("database", "url", {"sqlite:" + path.string() + "?mode=rwc"});
    return made;
  }

  std::filesystem::path const path_ = std::filesystem::temp_directory_path() /
                                      ("mox_search_bench_" + std::to_string(::getpid()) + ".db");
  mox::core::Application application_;
  std::shared_ptr<moxSearch> search_;
};

OurHost& host() {
  static OurHost one;
  return one;
}

/// Run once, for the cases that only read.
moxSearchRunner& openedRunner() {
  static std::shared_ptr<moxSearchRunner> const runner = [] {
    auto made = host().newRunner();
    made->performSql();
    if (made->rowCount() != kRows || made->getDataMatrix()->columnCount() != kColumns) {
      throw std::runtime_error("the search does not give its million rows");
    }
    return made;
  }();
  return *runner;
}

/// The columns' storage, and the formatters' engines, by their types: no call is virtual, no text
/// is made anew.
class FloorReader {
 public:
  explicit FloorReader(moxDataMatrix& matrix)
      : number_(storage<int>(matrix, 0)),
        rating_(storage<int>(matrix, 1)),
        amount_(storage<double>(matrix, 2)),
        day_(storage<datetime_t>(matrix, 3)),
        code_(storage<std::string>(matrix, 4)),
        description_(storage<std::string>(matrix, 5)) {
    decimals_.setDecimalPrecision(2);
    decimals_.setDecimalSeparator(',');
    decimals_.setGroupSeparator('.');
    decimals_.setGroupCount(3);
    dates_.setMask("%d/%m/%Y");
  }

  /// Writes every cell of the rows into one text, one after the other; gives the bytes of all.
  std::size_t read(unsigned int from, unsigned int to) {
    std::size_t bytes = 0;
    for (unsigned int row = from; row < to; ++row) {
      bytes += cell(number_, row, integers_) + cell(rating_, row, integers_) +
               cell(amount_, row, decimals_) + cell(day_, row, dates_) + cell(code_, row) +
               cell(description_, row);
    }
    return bytes;
  }

 private:
  template <class T>
  static ColumnStorage<T> const& storage(moxDataMatrix& matrix, unsigned int index) {
    return dynamic_cast<CommonColumn<T>&>(*matrix.columnAt(index)).storage();
  }

  template <class T, class Formatter>
  std::size_t cell(ColumnStorage<T> const& column, unsigned int row, Formatter const& formatter) {
    text_.clear();
    if (!column.nulls.test(row)) {
      formatter.appendTo(text_, column.values.cells()[row]);
    }
    benchmark::DoNotOptimize(text_.data());
    return text_.size();
  }

  std::size_t cell(ColumnStorage<std::string> const& column, unsigned int row) {
    text_.clear();
    if (!column.nulls.test(row)) {
      text_.append(column.values.cells()[row].view());
    }
    benchmark::DoNotOptimize(text_.data());
    return text_.size();
  }

  ColumnStorage<int> const& number_;
  ColumnStorage<int> const& rating_;
  ColumnStorage<double> const& amount_;
  ColumnStorage<datetime_t> const& day_;
  ColumnStorage<std::string> const& code_;
  ColumnStorage<std::string> const& description_;
  IntegralFormatter integers_;
  DecimalFormatter decimals_;
  DateFormatter dates_;
  std::string text_;
};

std::size_t readCells(moxSearchRunner const& runner, unsigned int from, unsigned int to) {
  std::size_t bytes = 0;
  for (unsigned int row = from; row < to; ++row) {
    for (unsigned int column = 0; column < kColumns; ++column) {
      bytes += runner.getVisibleValue(row, column).size();
    }
  }
  return bytes;
}

void readFloor(benchmark::State& state, unsigned int from, unsigned int to) {
  FloorReader floor(*openedRunner().getDataMatrix());
  for (auto _ : state) {
    benchmark::DoNotOptimize(floor.read(from, to));
  }
}

void readOurs(benchmark::State& state, unsigned int from, unsigned int to) {
  auto const& runner = openedRunner();
  std::size_t const expected = FloorReader(*runner.getDataMatrix()).read(from, to);
  for (auto _ : state) {
    if (readCells(runner, from, to) != expected) {
      state.SkipWithError("the texts differ in length from the floor's");
      return;
    }
  }
}

void openFloor(benchmark::State& state) {
  OurHost& ours = host();
  for (auto _ : state) {
    if (ours.runSource()->rowCount() != kRows) {
      state.SkipWithError("rows are missing");
      return;
    }
  }
}

void openOurs(benchmark::State& state) {
  for (auto _ : state) {
    auto const runner = host().newRunner();
    runner->performSql();
    if (runner->rowCount() != kRows) {
      state.SkipWithError("rows are missing");
      return;
    }
  }
}

constexpr unsigned int kMiddle = kRows / 2;

void pageFloor(benchmark::State& state) {
  readFloor(state, kMiddle, kMiddle + kPage);
}

void pageOurs(benchmark::State& state) {
  readOurs(state, kMiddle, kMiddle + kPage);
}

void allCellsFloor(benchmark::State& state) {
  readFloor(state, 0, kRows);
}

void allCellsOurs(benchmark::State& state) {
  readOurs(state, 0, kRows);
}

// Sorted by one column and then by another, so that no sort finds the rows in order.
constexpr std::array<char const*, 2> kSorts = {"code", "number"};

void sortFloor(benchmark::State& state) {
  auto matrix = openedRunner().getDataMatrix();
  for (auto _ : state) {
    for (auto const* column : kSorts) {
      auto const sorter = host().get<moxDataMatrixSorter>("moxDataMatrixSorter");
      sorter->pushSortColumn(column, false);
      matrix = sorter->transform(matrix);
    }
  }
}

void sortOurs(benchmark::State& state) {
  auto const runner = host().newRunner();
  runner->performSql();
  auto& control = dynamic_cast<moxSearchRunControl&>(*runner);
  for (auto _ : state) {
    for (auto const* column : kSorts) {
      if (!control.sortRows({{column, false}})) {
        state.SkipWithError("a column to sort by is missing");
        return;
      }
    }
  }
}

BENCHMARK(openFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(openOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(pageFloor)->Unit(benchmark::kMicrosecond);
BENCHMARK(pageOurs)->Unit(benchmark::kMicrosecond);
BENCHMARK(sortFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(sortOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(allCellsFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(allCellsOurs)->Unit(benchmark::kMillisecond);

}  // namespace
