#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "compare/cases.h"
#include "compare/csv_floor.h"
#include "compare/memory_peak.h"
#include "compare/our_host.h"
#include "compare/sales_file.h"
#include "compare/table_peers.h"
#include "compare/test_rows.h"
#include "mox/zyn/format/decimal_formatter.h"
#include "mox/zyn/matrix/data_matrix_exporter.h"

namespace bench {
namespace {

constexpr char const* kMoney = "money";

/// A directory in memory where there is one, as the disk is not what is compared; gone with this
/// object.
class MemoryDirectory {
 public:
  explicit MemoryDirectory(std::string const& otherwise) {
    std::filesystem::path const memory = "/dev/shm";
    bool const isThere = std::filesystem::is_directory(memory) && access("/dev/shm", W_OK) == 0;
    std::string pattern =
        (isThere ? memory : std::filesystem::path(otherwise)) / "zyn_bench_XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("no directory for files");
    }
    path_ = pattern;
  }
  ~MemoryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  MemoryDirectory(MemoryDirectory const&) = delete;
  MemoryDirectory& operator=(MemoryDirectory const&) = delete;

  std::string file(std::string const& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

std::string contentOf(std::string const& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// "-1.234.567,89"
std::string amountText(double amount) {
  std::string text = fmt::format("{:.2f}", amount);
  std::size_t const first = amount < 0 ? 1 : 0;
  text[text.size() - 3] = ',';
  for (std::size_t place = text.size() - 3; place > first + 3;) {
    place -= 3;
    text.insert(place, 1, '.');
  }
  return text;
}

class CsvCase {
 public:
  explicit CsvCase(BenchContext const& context)
      : context_(context),
        table_(makeFloorTable(context.csvRows)),
        directory_(context.workDirectory),
        host_(""),
        matrix_(matrixOf()),
        exporter_(newExporter()),
        peers_(context) {
    SalesFile const file(context.workDirectory + "/sales.csv");
    file.write(table_);
    peers_.open({{"do", "open-sales"}, {"path", file.path()}});
    if (peers_.duckdb() != nullptr) {
      peers_.duckdb()->fillSales("sale", table_);
    }
  }

  CaseResult measure(std::string const& title) {
    std::vector<Contender> contenders = {
        {"floor", [this] { return timed([this](auto& file) { writeCsv(table_, file); }); },
         [this] { verifyFloor(); }},
        {"ours", [this] { return timed([this](auto& file) { exportTo(file); }); },
         [this] { requireSameBytes(); }}};
    if (peers_.duckdb() != nullptr) {
      contenders.push_back({"DuckDB",
                            [this] { return timed([this](auto& file) { copyTo(file); }); },
                            [this] { requireSameBytes(); }});
    }
    peers_.addProcesses(contenders, {{"do", "csv"}, {"path", path_}},
                        [this](nlohmann::json const&) {
                          requireSameBytes();
                          std::filesystem::remove(path_);
                        });
    CaseResult result = measureCase(title, contenders, context_.rounds);
    result.absentPeers = peers_.absent();
    result.peakBytes = peakOfOurs();
    return result;
  }

 private:
  /// In the order of the file.
  std::shared_ptr<moxDataMatrix> matrixOf() {
    auto const all = host_.matrixOf(table_);
    auto matrix = host_.get<moxDataMatrix>("moxDataMatrix");
    for (char const* const name : {"number", "amount", "day", "code", "description", "rating"}) {
      matrix->addColumn(all->columnByName(name));
    }
    return matrix;
  }

  std::shared_ptr<moxDataMatrixExporter> newExporter() {
    auto const money = host_.get<moxDecimalAsString>("moxDecimalFormatter");
    money->setDescription(kMoney);
    money->setDecimalSeparator(',');
    money->setGroupSeparator('.');
    money->setGroupCount(3);
    money->setDecimalPrecision(2);
    auto exporter = host_.get<moxDataMatrixExporter>("moxDataMatrixExporter");
    exporter->addFormatter(money);
    exporter->setSampleDataMatrix(matrix_);
    exporter->setColumnFormatter("amount", kMoney);
    exporter->setOutputFormat("moxDataMatrixExporterCSVFormat");
    return exporter;
  }

  /// Taking the last file away belongs to nobody's time.
  template <class Write>
  double timed(Write write) {
    std::filesystem::remove(path_);
    return secondsOf([&] { write(path_); });
  }

  void exportTo(std::string const& file) { exporter_->exportToFile(file, matrix_, true, true); }

  void copyTo(std::string const& file) {
    peers_.duckdb()->run(
        "copy (select number, translate(format('{:,.2f}', amount), ',.', '.,'), "
        "strftime(day, '%d/%m/%Y'), code, description, rating from sale) to '" +
        file + "' (format csv, delimiter ';', header false, nullstr '')");
  }

  void verifyFloor() {
    if (expected_.empty()) {
      for (std::size_t row = 0; row < table_.rows(); ++row) {
        expected_ += expectedLine(row);
      }
    }
    requireSameBytes();
  }

  std::string expectedLine(std::size_t row) const {
    std::string const day = dayText(table_.day[row]);
    return fmt::format("{};{};{}/{}/{};{};{};{}\n", table_.number[row],
                       table_.amountNulls.test(row) ? "" : amountText(table_.amount[row]),
                       day.substr(8, 2), day.substr(5, 2), day.substr(0, 4),
                       table_.code[row].view(), table_.description[row].view(),
                       table_.ratingNulls.test(row) ? "" : std::to_string(table_.rating[row]));
  }

  void requireSameBytes() const {
    std::string const found = contentOf(path_);
    if (found != expected_) {
      auto const place =
          std::mismatch(found.begin(), found.end(), expected_.begin(), expected_.end()).first;
      throw std::runtime_error("wrong result: the file differs at byte " +
                               std::to_string(place - found.begin()));
    }
  }

  std::size_t peakOfOurs() {
    std::filesystem::remove(path_);
    MemoryPeak const peak;
    exportTo(path_);
    return peak.risenBytes();
  }

  BenchContext const& context_;
  FloorTable table_;
  MemoryDirectory directory_;
  std::string path_ = directory_.file("sales.csv");
  OurHost host_;
  std::shared_ptr<moxDataMatrix> matrix_;
  std::shared_ptr<moxDataMatrixExporter> exporter_;
  TablePeers peers_;
  std::string expected_;
};

}  // namespace

std::vector<CaseResult> csvCase(BenchContext const& context) {
  CsvCase files(context);
  return {files.measure("write " + std::to_string(context.csvRows) + " x 6 as CSV")};
}

}  // namespace bench
