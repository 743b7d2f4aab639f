#include "cli/output/plain_formatter.h"

#include <array>
#include <charconv>

#include "cli/output/column_visit.h"
#include "cli/output/value_text.h"

namespace mox::cli {

namespace {

using Blob = std::shared_ptr<moxReadBlob>;

/// The text of a value, by kind. One object serves all cells of a column.
struct PlainText {
  bool withTime = false;

  std::string operator()(int value) const {
    std::array<char, 12> digits{};
    return {digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr};
  }

  std::string operator()(double value) const {
    std::array<char, kLongestDouble> digits{};
    return {digits.data(), formatDouble(digits.data(), value)};
  }

  std::string operator()(std::string&& value) const { return std::move(value); }

  std::string operator()(datetime_t const& value) const {
    return value ? formatMoment(value, withTime) : std::string();
  }

  std::string operator()(Blob const& value) const { return base64(bytesOf(value)); }
};

template <class T>
class PlainFormatter final : public ColumnFormatter {
 public:
  PlainFormatter(std::string name, moxDataMatrixTypedColumn<T> const& column, PlainText text)
      : ColumnFormatter(std::move(name)), column_(column), text_(text) {}

  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override {
    return cell && !cell->isNull() ? text_(column_.getValue(cell->pos())) : std::string();
  }
  moxDataMatrixColumn const* plainColumn() const override { return &column_; }

 private:
  moxDataMatrixTypedColumn<T> const& column_;
  PlainText text_;
};

/// One overload a kind of column.
struct PlainFormatterMaker {
  std::string const& name;

  template <class T>
  std::shared_ptr<ColumnFormatter> operator()(moxDataMatrixTypedColumn<T> const& column) const {
    return std::make_shared<PlainFormatter<T>>(name, column, PlainText{});
  }

  std::shared_ptr<ColumnFormatter> operator()(
      moxDataMatrixTypedColumn<datetime_t> const& column) const {
    return std::make_shared<PlainFormatter<datetime_t>>(name, column, PlainText{hasTimes(column)});
  }
};

class BorrowedFormatter final : public ColumnFormatter {
 public:
  BorrowedFormatter(std::string name, std::shared_ptr<moxGenericFormatter const> formatter)
      : ColumnFormatter(std::move(name)), formatter_(std::move(formatter)) {}

  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override {
    return formatter_->asString(cell);
  }

 private:
  std::shared_ptr<moxGenericFormatter const> formatter_;
};

}  // namespace

std::shared_ptr<ColumnFormatter> makePlainFormatter(std::string const& name,
                                                    moxDataMatrixColumn const& column) {
  return visitColumn(column, PlainFormatterMaker{name});
}

std::shared_ptr<ColumnFormatter> makeBorrowedFormatter(
    std::string name, std::shared_ptr<moxGenericFormatter const> formatter) {
  return std::make_shared<BorrowedFormatter>(std::move(name), std::move(formatter));
}

}  // namespace mox::cli
