#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>

#include "compare/cases.h"
#include "compare/floor_index.h"
#include "compare/our_host.h"
#include "compare/test_rows.h"

namespace bench {
namespace {

template <class T>
using TypedColumn = moxDataMatrixTypedColumn<T>;

std::string countText(std::size_t rows) {
  return std::to_string(rows);
}

void require(bool isRight) {
  if (!isRight) {
    throw std::runtime_error("wrong result");
  }
}

/// Appends to plain vectors with room, as a column does: the value, and its null bit.
template <class Cell, class Values, class SetCell>
std::int64_t appendToVectors(Values const& values, SetCell setCell) {
  std::vector<Cell> cells;
  std::vector<std::uint64_t> nulls;
  cells.reserve(values.size());
  nulls.reserve(values.size() / 64 + 1);
  for (auto const& value : values) {
    if (cells.size() % 64 == 0) {
      nulls.push_back(0);
    }
    setCell(cells.emplace_back(), value);
    asm volatile("" : : "r"(cells.data()), "r"(nulls.data()) : "memory");
  }
  return static_cast<std::int64_t>(cells.size());
}

void setInt(int& cell, int value) {
  cell = value;
}

/// For texts of eight to twelve bytes.
void setText(FloorText& cell, std::string const& text) {
  cell.length = static_cast<std::uint32_t>(text.size());
  std::memcpy(cell.content, text.data(), 8);
  std::memcpy(cell.content + text.size() - 4, text.data() + text.size() - 4, 4);
}

template <class T, class Floor>
CaseResult measureAppend(BenchContext const& context, OurHost& host, char const* kind,
                         std::string const& title, std::vector<T> const& values, Floor floor) {
  std::shared_ptr<TypedColumn<T>> column;
  auto const appendOurs = [&] {
    column = host.get<TypedColumn<T>>(kind);
    column->reserve(static_cast<int>(values.size()));
    for (T const& value : values) {
      column->appendValue(value);
    }
  };
  auto const measureOurs = [&] {
    column.reset();
    return secondsOf(appendOurs);
  };
  auto const verifyOurs = [&] {
    for (std::size_t row = 0; row < values.size(); ++row) {
      require(column->getValue(static_cast<unsigned int>(row)) == values[row]);
    }
  };
  auto const measureFloor = [&] {
    return secondsOf([&] { require(floor(values) == static_cast<std::int64_t>(values.size())); });
  };
  return measureCase(title, {{"floor", measureFloor, {}}, {"ours", measureOurs, verifyOurs}},
                     context.rounds);
}

std::vector<std::string> codesOf(FloorTable const& table) {
  std::vector<std::string> codes;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    codes.emplace_back(table.code[row].view());
  }
  return codes;
}

std::int64_t walkFloor(FloorTable const& table) {
  std::int64_t sum = 0;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    sum += table.ratingNulls.test(row) ? -1 : table.rating[row];
  }
  return sum;
}

std::int64_t walkWithCursor(moxDataMatrixColumn& column) {
  auto const cursor = std::dynamic_pointer_cast<moxIteratorBase<int>>(column.begin());
  std::int64_t sum = 0;
  do {
    sum += cursor->isNull() ? -1 : cursor->get();
  } while (cursor->next());
  return sum;
}

/// Ours: a row over one column, filtered by the values of another column with the same rows.
class RowFilter {
 public:
  RowFilter(OurHost& host, moxDataMatrixColumn& column, moxDataMatrixColumn& wanted)
      : row_(host.get<moxDataMatrixRow>("moxDataMatrixRow")),
        wanted_(wanted.begin()),
        keys_({column.begin()}),
        values_({wanted_}) {}

  /// The first one builds the index.
  std::uint32_t firstRow() {
    require(row_->beginWithFilter(keys_, values_));
    return keys_.front()->pos();
  }

  std::int64_t sumOfFirstRows() {
    wanted_->goTo(0);
    std::int64_t sum = 0;
    do {
      sum += firstRow();
    } while (wanted_->next());
    return sum;
  }

 private:
  std::shared_ptr<moxDataMatrixRow> row_;
  std::shared_ptr<moxIterator> wanted_;
  std::vector<std::shared_ptr<moxIterator>> keys_;
  std::vector<std::shared_ptr<moxIterator const>> values_;
};

template <class Key>
std::int64_t sumOfFirstRows(FloorIndex<Key> const& index, GrowingArray<Key> const& keys) {
  std::int64_t sum = 0;
  for (std::size_t row = 0; row < keys.size(); ++row) {
    sum += index.firstRow(keys[row]);
  }
  return sum;
}

/// Building and looking up, two lines of the table.
template <class Key>
class IndexCase {
 public:
  IndexCase(OurHost& host, GrowingArray<Key> const& keys, moxDataMatrixColumn& column,
            moxDataMatrixColumn& wanted)
      : host_(host), keys_(keys), column_(column), wanted_(wanted) {}

  std::vector<CaseResult> measure(std::string const& what, int rounds) {
    CaseResult const built = measureCase("build an index over " + what,
                                         {{"floor", [this] { return buildFloor(); }, {}},
                                          {"ours", [this] { return buildOurs(); }, {}}},
                                         rounds);
    CaseResult const found = measureCase("look up " + what,
                                         {{"floor", [this] { return findFloor(); }, {}},
                                          {"ours", [this] { return findOurs(); }, {}}},
                                         rounds);
    require(floorSum_ == oursSum_);
    return {built, found};
  }

 private:
  double buildFloor() {
    floor_.reset();
    return secondsOf([this] { floor_.emplace(keys_.data(), keyCount()); });
  }
  double buildOurs() {
    ours_.reset();
    return secondsOf([this] {
      ours_.emplace(host_, column_, wanted_);
      require(ours_->firstRow() == floor_->firstRow(keys_[0]));
    });
  }
  double findFloor() {
    return secondsOf([this] { floorSum_ = sumOfFirstRows(*floor_, keys_); });
  }
  double findOurs() {
    return secondsOf([this] { oursSum_ = ours_->sumOfFirstRows(); });
  }
  std::uint32_t keyCount() const { return static_cast<std::uint32_t>(keys_.size()); }

  OurHost& host_;
  GrowingArray<Key> const& keys_;
  moxDataMatrixColumn& column_;
  moxDataMatrixColumn& wanted_;
  std::optional<FloorIndex<Key>> floor_;
  std::optional<RowFilter> ours_;
  std::int64_t floorSum_ = 0;
  std::int64_t oursSum_ = 0;
};

}  // namespace

std::vector<CaseResult> appendCase(BenchContext const& context) {
  OurHost host("");
  FloorTable const table = makeFloorTable(context.columnRows);
  std::vector<int> const numbers(table.number.data(), table.number.data() + table.rows());
  std::string const count = "append " + countText(table.rows());
  auto const ints = measureAppend(
      context, host, "moxDataMatrixIntColumn", count + " ints", numbers,
      [](std::vector<int> const& values) { return appendToVectors<int>(values, &setInt); });
  auto const texts = measureAppend(context, host, "moxDataMatrixTextColumn", count + " texts of 10",
                                   codesOf(table), [](std::vector<std::string> const& values) {
                                     return appendToVectors<FloorText>(values, &setText);
                                   });
  return {ints, texts};
}

std::vector<CaseResult> walkCase(BenchContext const& context) {
  OurHost host("");
  FloorTable const table = makeFloorTable(context.columnRows);
  auto const matrix = host.matrixOf(table);
  auto const column = matrix->columnByName("rating");
  std::int64_t floorSum = 0;
  std::int64_t oursSum = 0;
  auto const measureFloor = [&] { return secondsOf([&] { floorSum = walkFloor(table); }); };
  auto const measureOurs = [&] { return secondsOf([&] { oursSum = walkWithCursor(*column); }); };
  auto const verify = [&] { require(floorSum == oursSum); };
  return {measureCase("walk " + countText(table.rows()) + " ints, a tenth null",
                      {{"floor", measureFloor, {}}, {"ours", measureOurs, verify}},
                      context.rounds)};
}

std::vector<CaseResult> indexCase(BenchContext const& context) {
  OurHost host("");
  FloorTable const table = makeFloorTable(context.indexRows);
  auto const matrix = host.matrixOf(table);
  auto const wanted = host.matrixOf(table);
  std::string const count = countText(table.rows());
  IndexCase<std::int32_t> ints(host, table.number, *matrix->columnByName("number"),
                               *wanted->columnByName("number"));
  IndexCase<FloorText> texts(host, table.code, *matrix->columnByName("code"),
                             *wanted->columnByName("code"));
  auto lines = ints.measure(count + " ints", context.rounds);
  auto const textLines = texts.measure(count + " texts of 10", context.rounds);
  lines.insert(lines.end(), textLines.begin(), textLines.end());
  return lines;
}

}  // namespace bench
