#include "zyn/sql/value_recorder.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "mox/core/blob.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"

namespace {

using Type = moxBoundValue::Type;

// More than the longest of the texts below.
constexpr std::size_t kNumberLength = 64;

std::string textOf(double value) {
  std::array<char, kNumberLength> buffer;
  auto const written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return {buffer.data(), written.ptr};
}

std::string dayText(int year, int month, int day) {
  std::array<char, kNumberLength> buffer;
  auto const length =
      std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d", year, month, day);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string timeText(int hour, int minute, int second) {
  std::array<char, kNumberLength> buffer;
  auto const length =
      std::snprintf(buffer.data(), buffer.size(), " %02d:%02d:%02d", hour, minute, second);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

[[noreturn]] void refuseRows() {
  throw std::logic_error("a statement that only records values has no rows");
}

}  // namespace

std::vector<moxBoundValue> valuesOf(moxDataMatrixSQLFilter const& filter) {
  auto const recorder = std::make_shared<ValueRecorder>();
  int counter = 0;
  filter.bind(recorder, &counter);
  return recorder->values();
}

void ValueRecorder::record(int position, moxBoundValue value) {
  if (position < 0) {
    throw std::out_of_range("a value is bound ahead of the statement's first mark");
  }
  auto const index = static_cast<std::size_t>(position);
  if (index >= values_.size()) {
    values_.resize(index + 1);
  }
  values_[index] = std::move(value);
}

void ValueRecorder::bindInt(int position, int value) {
  record(position, {Type::kInt, std::to_string(value)});
}

void ValueRecorder::bindDouble(int position, double value) {
  record(position, {Type::kDouble, textOf(value)});
}

void ValueRecorder::bindString(int position, std::string_view value) {
  record(position, {Type::kText, std::string(value)});
}

void ValueRecorder::bindDate(int position, date_t const& value) {
  if (!value) {
    bindNull(position);
    return;
  }
  record(position, {Type::kDate, dayText(value.year(), value.month(), value.day())});
}

void ValueRecorder::bindDateTime(int position, datetime_t const& value) {
  if (!value) {
    bindNull(position);
    return;
  }
  record(position, {Type::kDateTime, dayText(value.year(), value.month(), value.day()) +
                                         timeText(value.hour(), value.minute(), value.second())});
}

void ValueRecorder::bindBlob(int position, moxReadBlob const& value) {
  record(position, {Type::kBlob, std::to_string(value.size())});
}

void ValueRecorder::bindNull(int position) {
  record(position, {});
}

void ValueRecorder::execute() {
  refuseRows();
}

bool ValueRecorder::fetch() {
  refuseRows();
}

int ValueRecorder::fieldCount() const {
  refuseRows();
}

moxDatabaseConnection::FieldInfo const& ValueRecorder::field(int) const {
  refuseRows();
}

std::int64_t ValueRecorder::rowCount() const {
  refuseRows();
}

bool ValueRecorder::isNull(int) const {
  refuseRows();
}

int ValueRecorder::getInt(int) const {
  refuseRows();
}

double ValueRecorder::getDouble(int) const {
  refuseRows();
}

std::string_view ValueRecorder::getString(int) const {
  refuseRows();
}

bool ValueRecorder::getBool(int) const {
  refuseRows();
}

date_t ValueRecorder::getDate(int) const {
  refuseRows();
}

datetime_t ValueRecorder::getDateTime(int) const {
  refuseRows();
}

std::shared_ptr<moxReadBlob> ValueRecorder::getBlob(int) const {
  refuseRows();
}
