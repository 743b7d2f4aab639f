#include "support/fake_database.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

#include <fmt/format.h>

#include "mox/core/blob.h"
#include "mox/core/error.h"
#include "mox/core/row_block_reader.h"

namespace mox_test {

namespace {

using FieldType = moxDatabaseConnection::FieldType;

class FakeBlobCursor final : public moxReadBlobCursor {
 public:
  explicit FakeBlobCursor(std::string_view bytes) : bytes_(bytes) {}

  std::size_t read(void* target, std::size_t count) override {
    std::size_t const taken = bytes_.substr(position_).copy(static_cast<char*>(target), count);
    position_ += taken;
    return taken;
  }
  std::size_t position() const override { return position_; }

 private:
  std::string_view bytes_;
  std::size_t position_ = 0;
};

class FakeBlob final : public moxReadBlob {
 public:
  explicit FakeBlob(std::string bytes) : bytes_(std::move(bytes)) {}

  std::string name() const override { return "fakeBlob"; }
  std::size_t size() const override { return bytes_.size(); }
  char const* data() const override { return bytes_.data(); }
  std::unique_ptr<moxReadBlobCursor> openRead() const override {
    return std::make_unique<FakeBlobCursor>(bytes_);
  }

 private:
  std::string bytes_;
};

template <class Number>
Number numberIn(FakeCell const& cell) {
  return std::visit(
      []<class T>(T const& value) -> Number {
        if constexpr (std::is_arithmetic_v<T>) {
          return static_cast<Number>(value);
        } else {
          return {};
        }
      },
      cell);
}

template <class T>
T valueIn(FakeCell const& cell) {
  auto const* const value = std::get_if<T>(&cell);
  return value != nullptr ? *value : T{};
}

std::string dayText(int year, int month, int day) {
  return fmt::format("{:04}-{:02}-{:02}", year, month, day);
}

class FakeStatement : public moxDatabaseConnection::PreparedStatement {
 public:
  FakeStatement(FakeResult result, std::shared_ptr<FakeDatabase::Log> log)
      : log_(std::move(log)), result_(std::move(result)) {
    for (auto const& field : result_.fields) {
      fields_.push_back({field.name, field.name, "", "", field.type});
    }
  }

  void bindInt(int position, int value) override { note(position, fmt::format("int {}", value)); }
  void bindDouble(int position, double value) override {
    note(position, fmt::format("double {}", value));
  }
  void bindString(int position, std::string_view value) override {
    note(position, fmt::format("text {}", value));
  }
  void bindDate(int position, date_t const& value) override {
    note(position, "date " + dayText(value.year(), value.month(), value.day()));
  }
  void bindDateTime(int position, datetime_t const& value) override {
    note(position, "moment " + dayText(value.year(), value.month(), value.day()));
  }
  void bindBlob(int position, moxReadBlob const& value) override {
    note(position, fmt::format("blob of {}", value.size()));
  }
  void bindNull(int position) override { note(position, "null"); }

  void execute() override {
    log_->count(FakeCall::kExecute);
    next_ = 0;
  }

  bool fetch() override {
    ++log_->fetches;
    log_->count(FakeCall::kFetch);
    if (next_ == result_.rows.size()) {
      return false;
    }
    ++next_;
    return true;
  }

  int fieldCount() const override { return static_cast<int>(fields_.size()); }
  moxDatabaseConnection::FieldInfo const& field(int index) const override {
    return fields_.at(static_cast<std::size_t>(index));
  }
  std::int64_t rowCount() const override { return result_.rowCount; }

  bool isNull(int field) const override {
    return std::holds_alternative<std::monostate>(cell(field));
  }
  int getInt(int field) const override { return numberIn<int>(cell(field)); }
  double getDouble(int field) const override { return numberIn<double>(cell(field)); }
  bool getBool(int field) const override { return getInt(field) != 0; }
  date_t getDate(int field) const override { return date_t(getDateTime(field)); }
  datetime_t getDateTime(int field) const override { return valueIn<datetime_t>(cell(field)); }
  std::string_view getString(int field) const override {
    auto const* const text = std::get_if<std::string>(&cell(field));
    return text != nullptr ? std::string_view(*text) : std::string_view();
  }
  std::shared_ptr<moxReadBlob> getBlob(int field) const override {
    return std::make_shared<FakeBlob>(valueIn<std::string>(cell(field)));
  }

 protected:
  FakeCell const& cell(int field) const {
    return result_.rows.at(next_ - 1).at(static_cast<std::size_t>(field));
  }

  std::shared_ptr<FakeDatabase::Log> log_;
  FakeResult result_;
  std::size_t next_ = 0;  // the row that the next fetch moves to

 private:
  void note(int position, std::string const& value) {
    log_->count(FakeCall::kBind);
    log_->binds.push_back(fmt::format("{}: {}", position, value));
  }

  std::vector<moxDatabaseConnection::FieldInfo> fields_;
};

/// Bytes of texts live in a store that the next block empties, so that a reader who keeps them is
/// found out.
class FakeBlockStatement final : public FakeStatement, public moxRowBlockReader {
 public:
  using FakeStatement::FakeStatement;

  int fetchBlock(std::vector<moxFieldBlock>& fields, int capacity) override {
    ++log_->blocks;
    log_->count(FakeCall::kFetch);
    spoilTexts();
    int row = 0;
    for (; row < capacity && next_ < result_.rows.size(); ++row) {
      ++next_;
      for (int field = 0; field < fieldCount(); ++field) {
        put(fields.at(static_cast<std::size_t>(field)), field, row);
      }
    }
    return row;
  }

 private:
  void spoilTexts() {
    for (auto& text : texts_) {
      std::fill(text.begin(), text.end(), '#');
    }
    lastTexts_ = std::move(texts_);
    texts_.clear();
  }

  void put(moxFieldBlock const& block, int field, int row) {
    if (!block.wanted) {
      return;
    }
    block.nulls[row] = isNull(field) ? 1 : 0;
    if (!isNull(field)) {
      putValue(block, field, row);
    }
  }

  void putValue(moxFieldBlock const& block, int field, int row) {
    switch (block.readAs) {
      case FieldType::kInt:
        block.ints[row] = getInt(field);
        return;
      case FieldType::kDouble:
        block.doubles[row] = getDouble(field);
        return;
      case FieldType::kDate:
        block.dates[row] = getDateTime(field);
        return;
      case FieldType::kText:
      case FieldType::kBlob:
        block.texts[row] = texts_.emplace_back(getString(field));
        return;
    }
  }

  std::deque<std::string> texts_;      // of the current block
  std::deque<std::string> lastTexts_;  // of the one before, spoilt
};

}  // namespace

void FakeDatabase::Log::count(FakeCall call) {
  auto const failure = failures.find(call);
  if (failure != failures.end() && --failure->second == 0) {
    throw moxDefaultErrorImpl<moxError>("fake failure");
  }
}

std::shared_ptr<moxDatabaseConnection::PreparedStatement> FakeDatabase::prepare(
    std::string const& sql, std::string const& extraWhere, std::string const& whereWord) {
  log_->count(FakeCall::kPrepare);
  log_->texts.push_back(sql);
  log_->extraWheres.push_back(whereWord + ":" + extraWhere);
  log_->binds.clear();
  if (offersBlocks) {
    return std::make_shared<FakeBlockStatement>(result, log_);
  }
  return std::make_shared<FakeStatement>(result, log_);
}

std::shared_ptr<moxDatabaseConnection::PreparedStatement> FakeDatabase::prepareForUnit(
    std::string const& sql, std::string const& order, std::string const& alias,
    std::string const& column, std::string const& joiningWord) {
  return prepare(sql + " " + joiningWord + " " + alias + "." + column + "=?" + order, "", "where");
}

void FakeDatabase::execute(std::string const& sql) {
  prepare(sql, "", "where")->execute();
}

}  // namespace mox_test
