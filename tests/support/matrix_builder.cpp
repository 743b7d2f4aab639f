#include "support/matrix_builder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include "mox/core/application.h"
#include "mox/core/blob.h"
#include "mox/zyn/frame/plugin_entry.h"

namespace mox_test {

namespace {

class TextBlobCursor final : public moxReadBlobCursor {
 public:
  explicit TextBlobCursor(std::string const& bytes) : bytes_(bytes) {}

  std::size_t read(void* target, std::size_t count) override {
    std::size_t const taken = std::min(count, bytes_.size() - position_);
    std::memcpy(target, bytes_.data() + position_, taken);
    position_ += taken;
    return taken;
  }

  std::size_t position() const override { return position_; }

 private:
  std::string const& bytes_;
  std::size_t position_ = 0;
};

class TextBlob final : public moxReadBlob {
 public:
  explicit TextBlob(std::string bytes) : bytes_(std::move(bytes)) {}

  std::string name() const override { return "testTextBlob"; }
  std::size_t size() const override { return bytes_.size(); }
  char const* data() const override { return bytes_.data(); }
  std::unique_ptr<moxReadBlobCursor> openRead() const override {
    return std::make_unique<TextBlobCursor>(bytes_);
  }

 private:
  std::string bytes_;
};

char const* nameOf(moxDataMatrixTypes::Types type) {
  constexpr char const* kNames[] = {"Int", "Double", "Text", "Date", "Blob"};
  return kNames[type];
}

VELMORApplication& application() {
  if (moxApp == nullptr) {
    throw std::logic_error("matrices come from the registry: the test must make a host first");
  }
  return *moxApp;
}

template <class T>
moxDataMatrixTypedColumn<T>& typed(moxDataMatrixColumn& column) {
  return dynamic_cast<moxDataMatrixTypedColumn<T>&>(column);
}

template <class T>
T valueAt(moxDataMatrixColumn const& column, unsigned int row) {
  return dynamic_cast<moxDataMatrixTypedColumn<T> const&>(column).getValue(row);
}

std::string bytesOf(std::shared_ptr<moxReadBlob> const& blob) {
  return blob ? std::string(blob->data(), blob->size()) : std::string();
}

struct CellText {
  std::string operator()(Null) const { return "null"; }
  std::string operator()(int value) const { return std::to_string(value); }
  std::string operator()(double value) const { return fmt::format("{}", value); }
  std::string operator()(std::string const& value) const { return '"' + value + '"'; }
  std::string operator()(datetime_t const& value) const {
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", value.year(), value.month(),
                       value.day(), value.hour(), value.minute(), value.second());
  }
  std::string operator()(std::shared_ptr<moxReadBlob> const& value) const {
    return value ? "blob\"" + bytesOf(value) + '"' : "no blob";
  }
};

struct SameCell {
  bool operator()(Null, Null) const { return true; }
  bool operator()(double left, double right) const {
    return left == right || (std::isnan(left) && std::isnan(right));
  }
  bool operator()(std::shared_ptr<moxReadBlob> const& left,
                  std::shared_ptr<moxReadBlob> const& right) const {
    return !left == !right && bytesOf(left) == bytesOf(right);
  }
  template <class T>
  bool operator()(T const& left, T const& right) const {
    return left == right;
  }
  template <class T, class U>
  bool operator()(T const&, U const&) const {
    return false;
  }
};

/// What differs, a line each; stops where no reader would go on.
class Differences {
 public:
  void compare(moxDataMatrix const& actual, moxDataMatrix const& expected) {
    if (actual.columnCount() != expected.columnCount()) {
      add(fmt::format("{} columns, expected {}", actual.columnCount(), expected.columnCount()));
    }
    for (unsigned int place = 0; place < std::min(actual.columnCount(), expected.columnCount());
         ++place) {
      compareColumn(*actual.columnAt(place), *expected.columnAt(place), place);
    }
  }

  bool none() const { return count_ == 0; }
  std::string text() const { return lines_; }

 private:
  static constexpr int kShown = 10;

  void add(std::string const& line) {
    ++count_;
    if (count_ <= kShown) {
      lines_ += line + '\n';
    } else if (count_ == kShown + 1) {
      lines_ += "...\n";
    }
  }

  void compareColumn(moxDataMatrixColumn const& actual, moxDataMatrixColumn const& expected,
                     unsigned int place) {
    std::string const where = fmt::format("column {} \"{}\"", place, expected.getName());
    if (actual.getName() != expected.getName()) {
      add(fmt::format("{}: its name is \"{}\"", where, actual.getName()));
    }
    if (actual.getType() != expected.getType()) {
      add(fmt::format("{}: {}, expected {}", where, nameOf(actual.getType()),
                      nameOf(expected.getType())));
      return;
    }
    if (actual.numRows() != expected.numRows()) {
      add(fmt::format("{}: {} rows, expected {}", where, actual.numRows(), expected.numRows()));
    }
    compareCells(actual, expected, where);
  }

  void compareCells(moxDataMatrixColumn const& actual, moxDataMatrixColumn const& expected,
                    std::string const& where) {
    for (unsigned int row = 0; row < std::min(actual.numRows(), expected.numRows()); ++row) {
      Cell const left = cellAt(actual, row);
      Cell const right = cellAt(expected, row);
      if (!std::visit(SameCell{}, left, right)) {
        add(fmt::format("{}, row {}: {}, expected {}", where, row, std::visit(CellText{}, left),
                        std::visit(CellText{}, right)));
      }
    }
  }

  int count_ = 0;
  std::string lines_;
};

unsigned int longest(moxDataMatrix const& matrix) {
  unsigned int rows = 0;
  for (unsigned int place = 0; place < matrix.columnCount(); ++place) {
    rows = std::max(rows, matrix.columnAt(place)->numRows());
  }
  return rows;
}

std::vector<std::string> textsOf(moxDataMatrixColumn const& column, unsigned int rows) {
  std::vector<std::string> texts = {column.getName() + ":" + nameOf(column.getType())};
  for (unsigned int row = 0; row < rows; ++row) {
    texts.push_back(row < column.numRows() ? std::visit(CellText{}, cellAt(column, row)) : "-");
  }
  return texts;
}

}  // namespace

datetime_t moment(std::string const& text) {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int const read =
      std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &year, &month, &day, &hour, &minute, &second);
  if (read != 3 && read != 6) {
    throw std::invalid_argument("not a date: " + text);
  }
  return {day, month, year, hour, minute, second};
}

std::shared_ptr<moxReadBlob> blob(std::string bytes) {
  return std::make_shared<TextBlob>(std::move(bytes));
}

void append(moxDataMatrixColumn& column, Cell const& value) {
  std::visit(
      [&]<class T>(T const& cell) {
        if constexpr (std::is_same_v<T, Null>) {
          column.appendNull();
        } else {
          typed<T>(column).appendValue(cell);
        }
      },
      value);
}

std::shared_ptr<moxDataMatrixColumn> column(std::string const& name, Cells const& cells) {
  auto made = application().get<moxDataMatrixColumn>(
      fmt::format("moxDataMatrix{}Column", nameOf(cells.type)));
  made->setName(name);
  for (Cell const& value : cells.values) {
    append(*made, value);
  }
  return made;
}

std::shared_ptr<moxDataMatrix> matrix(std::vector<NamedCells> const& columns) {
  auto made = application().get<moxDataMatrix>("moxDataMatrix");
  for (NamedCells const& named : columns) {
    made->addColumn(column(named.name, named.cells));
  }
  return made;
}

Cell cellAt(moxDataMatrixColumn const& column, unsigned int row) {
  if (column.isNull(row)) {
    return null;
  }
  switch (column.getType()) {
    case moxDataMatrixTypes::Int:
      return valueAt<int>(column, row);
    case moxDataMatrixTypes::Double:
      return valueAt<double>(column, row);
    case moxDataMatrixTypes::Text:
      return valueAt<std::string>(column, row);
    case moxDataMatrixTypes::Date:
      return valueAt<datetime_t>(column, row);
    case moxDataMatrixTypes::Blob:
      return valueAt<std::shared_ptr<moxReadBlob>>(column, row);
  }
  throw std::logic_error("a column of no known kind");
}

std::string asText(moxDataMatrix const& matrix, unsigned int rowLimit) {
  unsigned int const rows = longest(matrix);
  unsigned int const shown = std::min(rows, rowLimit);
  std::vector<std::string> lines(shown + 1);
  for (unsigned int place = 0; place < matrix.columnCount(); ++place) {
    auto const texts = textsOf(*matrix.columnAt(place), shown);
    auto const widest = std::max_element(
        texts.begin(), texts.end(),
        [](auto const& left, auto const& right) { return left.size() < right.size(); });
    for (std::size_t line = 0; line < lines.size(); ++line) {
      lines[line] += fmt::format("  {:<{}}", texts[line], widest->size());
    }
  }
  std::string const more = rows > shown ? fmt::format("  ... {} rows in all\n", rows) : "";
  return fmt::format("{}\n{}", fmt::join(lines, "\n"), more);
}

testing::AssertionResult sameMatrix(moxDataMatrix const& actual, moxDataMatrix const& expected) {
  Differences differences;
  differences.compare(actual, expected);
  if (differences.none()) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << differences.text() << "actual:\n"
                                     << asText(actual) << "expected:\n"
                                     << asText(expected);
}

bool MatrixMatcher::MatchAndExplain(std::shared_ptr<moxDataMatrix const> const& actual,
                                    std::ostream* why) const {
  auto const result = actual ? sameMatrix(*actual, *expected_) : testing::AssertionFailure();
  if (!result && why != nullptr) {  // asked twice: first whether, without a stream, and then why
    *why << (actual ? "which differs:\n" : "which is no matrix but an empty pointer")
         << result.message();
  }
  return static_cast<bool>(result);
}

void MatrixMatcher::DescribeTo(std::ostream* out) const {
  *out << "is the matrix\n" << asText(*expected_);
}

void MatrixMatcher::DescribeNegationTo(std::ostream* out) const {
  *out << "is not the matrix\n" << asText(*expected_);
}

MatrixMatcher isMatrix(std::vector<NamedCells> const& columns) {
  return MatrixMatcher(matrix(columns));
}

MatrixMatcher isMatrix(std::shared_ptr<moxDataMatrix const> expected) {
  return MatrixMatcher(std::move(expected));
}

}  // namespace mox_test
