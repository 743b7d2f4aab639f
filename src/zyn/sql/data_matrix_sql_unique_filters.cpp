#include "zyn/sql/data_matrix_sql_unique_filters.h"

namespace {

constexpr char kWildcard = '%';
constexpr char const* kEquals = " = ? ";
constexpr char const* kIsLike = " like ? ";
constexpr char const* kIsNull = " is null ";

/// A null has a place to be bound at only where the statement's own text holds the mark: in a
/// condition it is part of the text.
template <class Value>
void bindNullable(moxDatabaseConnection::PreparedStatement& statement, int* counter,
                  ColumnReference const& tested, Value const& value, bool isNull) {
  if (!isNull) {
    bindNext(statement, counter, value);
  } else if (isStatementMark(tested)) {
    bindNextNull(statement, counter);
  }
}

}  // namespace

std::string DataMatrixSQLIntegerUniqueFilter::getSql() const {
  if (isStatementMark(tested())) {
    return {};
  }
  return conditionOn(tested(), isNull_ ? kIsNull : kEquals);
}

void DataMatrixSQLIntegerUniqueFilter::bind(Statement const& statement, int* counter) const {
  bindNullable(*statement, counter, tested(), value_, isNull_);
}

void DataMatrixSQLIntegerUniqueFilter::setValue(int value) {
  value_ = value;
  isNull_ = false;
}

std::string DataMatrixSQLDoubleUniqueFilter::getSql() const {
  return conditionOn(tested(), kEquals);
}

void DataMatrixSQLDoubleUniqueFilter::bind(Statement const& statement, int* counter) const {
  bindNext(*statement, counter, value_);
}

std::string DataMatrixSQLTextUniqueFilter::getSql() const {
  bool const hasWildcard = value_.find(kWildcard) != std::string::npos;
  return conditionOn(tested(), hasWildcard ? kIsLike : kEquals);
}

void DataMatrixSQLTextUniqueFilter::bind(Statement const& statement, int* counter) const {
  bindNext(*statement, counter, value_);
}

std::string DataMatrixSQLTextUniqueFilter::getText() const {
  auto text = value_;
  std::erase(text, kWildcard);
  return text;
}

std::string DataMatrixSQLDateUniqueFilter::getSql() const {
  if (isStatementMark(tested())) {
    return {};
  }
  return conditionOn(tested(), kEquals, Comparison::kDayOnly);
}

void DataMatrixSQLDateUniqueFilter::bind(Statement const& statement, int* counter) const {
  bindNullable(*statement, counter, tested(), value_, isNull_);
}

void DataMatrixSQLDateUniqueFilter::setValue(date_t const& value) {
  value_ = value;
  isNull_ = false;
}

std::string DataMatrixSQLIntegerUniqueSQLFilter::getSql() const {
  return isStatementMark(tested()) ? std::string() : "exists (" + tested().column + ")";
}

void DataMatrixSQLIntegerUniqueSQLFilter::bind(Statement const& statement, int* counter) const {
  bindNext(*statement, counter, value_);
}
