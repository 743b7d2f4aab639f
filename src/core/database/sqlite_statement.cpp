#include "core/database/sqlite_statement.h"

#include <sqlite3.h>

#include <new>
#include <utility>

#include "core/database/sqlite_error.h"
#include "core/database/text_dates.h"
#include "core/storage/blob.h"

namespace mox::core {
namespace {

std::string textOrEmpty(char const* text) {
  return text == nullptr ? std::string() : std::string(text);
}

bool isNullValue(sqlite3_value* value) {
  return sqlite3_value_type(value) == SQLITE_NULL;
}

// Valid until the next step. SQLite keeps text as it came: bytes that are no UTF-8, and bytes 0,
// pass through.
std::string_view textOf(sqlite3_value* value) {
  auto const* const text = reinterpret_cast<char const*>(sqlite3_value_text(value));
  if (text == nullptr) {
    if (!isNullValue(value)) {
      throw std::bad_alloc();
    }
    return {};
  }
  return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

std::string_view bytesOf(sqlite3_value* value) {
  auto const* const bytes = static_cast<char const*>(sqlite3_value_blob(value));
  return bytes == nullptr
             ? std::string_view()
             : std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

std::int32_t intOf(sqlite3_value* value) {
  return static_cast<std::int32_t>(sqlite3_value_int64(value));
}

datetime_t momentFrom(std::string_view text) {
  if (datetime_t const moment = isoDateOrEmpty(text)) {
    return moment;
  }
  return parseDateText(text).value_or(datetime_t());
}

// Numbers are no dates: nothing tells days, seconds and written-out digits apart.
datetime_t momentOf(sqlite3_value* value) {
  return sqlite3_value_type(value) == SQLITE_TEXT ? momentFrom(textOf(value)) : datetime_t();
}

// The way of one field into a block. The functions that read ask a value as few questions as they
// can, as every question is a call into SQLite: what a number and a text read as tells most nulls
// apart from values, and only a 0 or nothing needs the question whether it is one.
class FieldReader {
 public:
  FieldReader(int index, moxFieldBlock const& block)
      : index_(index), type_(block.readAs), nulls_(block.nulls), place_(placeIn(block)) {}

  int index() const { return index_; }

  void read(sqlite3_value* value, std::size_t row, BlockArena& arena) const {
    switch (type_) {
      case FieldType::kInt:
        return readInt(value, row);
      case FieldType::kDouble:
        return readDouble(value, row);
      case FieldType::kDate:
        return readMoment(value, row);
      case FieldType::kText:
        return readText(value, row, arena);
      case FieldType::kBlob:
        return readBlob(value, row, arena);
    }
  }

 private:
  union Place {
    std::int32_t* ints;
    double* doubles;
    datetime_t* dates;
    std::string_view* texts;
  };

  static Place placeIn(moxFieldBlock const& block) {
    switch (block.readAs) {
      case FieldType::kInt:
        return {.ints = block.ints};
      case FieldType::kDouble:
        return {.doubles = block.doubles};
      case FieldType::kDate:
        return {.dates = block.dates};
      default:
        return {.texts = block.texts};
    }
  }

  /// Notes whether the value is null; true when it is not, and has to be stored.
  bool isStored(std::size_t row, bool null) const {
    nulls_[row] = null ? 1 : 0;
    return !null;
  }

  void readInt(sqlite3_value* value, std::size_t row) const {
    std::int32_t const number = intOf(value);
    if (isStored(row, number == 0 && isNullValue(value))) {
      place_.ints[row] = number;
    }
  }

  void readDouble(sqlite3_value* value, std::size_t row) const {
    double const number = sqlite3_value_double(value);
    if (isStored(row, number == 0 && isNullValue(value))) {
      place_.doubles[row] = number;
    }
  }

  void readMoment(sqlite3_value* value, std::size_t row) const {
    int const type = sqlite3_value_type(value);
    if (isStored(row, type == SQLITE_NULL)) {
      place_.dates[row] = type == SQLITE_TEXT ? momentFrom(textOf(value)) : datetime_t();
    }
  }

  void readText(sqlite3_value* value, std::size_t row, BlockArena& arena) const {
    auto const* const text = reinterpret_cast<char const*>(sqlite3_value_text(value));
    if (text == nullptr && !isNullValue(value)) {
      throw std::bad_alloc();
    }
    if (isStored(row, text == nullptr)) {
      place_.texts[row] = arena.keep(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
    }
  }

  void readBlob(sqlite3_value* value, std::size_t row, BlockArena& arena) const {
    if (isStored(row, isNullValue(value))) {
      std::string_view const bytes = bytesOf(value);
      place_.texts[row] = arena.keep(bytes.data(), bytes.size());
    }
  }

  int index_;
  FieldType type_;
  std::uint8_t* nulls_;
  Place place_;
};

// Only of the fields that are wanted.
std::vector<FieldReader> readersFor(std::vector<moxFieldBlock> const& fields) {
  std::vector<FieldReader> readers;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].wanted) {
      readers.emplace_back(static_cast<int>(i), fields[i]);
    }
  }
  return readers;
}

std::vector<std::string> fieldNames(sqlite3_stmt* statement) {
  int const count = sqlite3_column_count(statement);
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    names.push_back(textOrEmpty(sqlite3_column_name(statement, i)));
  }
  return names;
}

ColumnTypes columnTypesOf(sqlite3* line) {
  return [line](std::string const& table, std::string const& column) -> std::optional<FieldType> {
    char const* declaration = nullptr;
    int const status =
        sqlite3_table_column_metadata(line, nullptr, table.c_str(), column.c_str(), &declaration,
                                      nullptr, nullptr, nullptr, nullptr);
    return status == SQLITE_OK ? declaredType(textOrEmpty(declaration)) : std::nullopt;
  };
}

}  // namespace

SqliteStatement::SqliteStatement(std::shared_ptr<SqliteConnection> line,
                                 StatementScript const& script)
    : StatementBase(line, script), line_(std::move(line)), text_(script.main) {
  runBefore();
  handle_ = line_->compile(text_);
}

// SQLite takes values only between two executions.
int SqliteStatement::markAt(int position) {
  requirePosition(position, sqlite3_bind_parameter_count(handle_.get()));
  stopReading();
  return position + 1;
}

void SqliteStatement::requireBound(int status) {
  if (status != SQLITE_OK) {
    throwSqliteError(line_->handle(), status, text_);
  }
}

void SqliteStatement::bindInt(int position, int value) {
  int const mark = markAt(position);
  requireBound(sqlite3_bind_int(handle_.get(), mark, value));
}

void SqliteStatement::bindDouble(int position, double value) {
  int const mark = markAt(position);
  requireBound(sqlite3_bind_double(handle_.get(), mark, value));
}

void SqliteStatement::bindString(int position, std::string_view value) {
  int const mark = markAt(position);
  char const* const bytes = value.empty() ? "" : value.data();  // a null pointer would bind a null
  requireBound(
      sqlite3_bind_text64(handle_.get(), mark, bytes, value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}

void SqliteStatement::bindDate(int position, date_t const& value) {
  value ? bindString(position, isoText(value)) : bindNull(position);
}

void SqliteStatement::bindDateTime(int position, datetime_t const& value) {
  value ? bindString(position, isoText(value)) : bindNull(position);
}

void SqliteStatement::bindNull(int position) {
  int const mark = markAt(position);
  requireBound(sqlite3_bind_null(handle_.get(), mark));
}

void SqliteStatement::bindBlob(int position, moxReadBlob const& value) {
  int const mark = markAt(position);
  char const* const bytes = value.size() == 0 ? "" : value.data();
  requireBound(sqlite3_bind_blob64(handle_.get(), mark, bytes, value.size(), SQLITE_TRANSIENT));
}

void SqliteStatement::executeMain() {
  rows_ = step() ? Rows::kFirstReady : Rows::kNone;
  describeFields();
}

bool SqliteStatement::step() {
  int const status = sqlite3_step(handle_.get());
  if (status == SQLITE_ROW) {
    return true;
  }
  if (status != SQLITE_DONE) {
    throwSqliteError(line_->handle(), status, text_);
  }
  return false;
}

bool SqliteStatement::fetchMain() {
  switch (rows_) {
    case Rows::kFirstReady:
      rows_ = Rows::kMore;
      return true;
    case Rows::kMore:
      rows_ = step() ? Rows::kMore : Rows::kNone;
      return rows_ == Rows::kMore;
    case Rows::kNone:
      break;
  }
  return false;
}

int SqliteStatement::fetchBlockMain(std::vector<moxFieldBlock>& fields, int capacity) {
  arena_.clear();
  std::vector<FieldReader> const readers = readersFor(fields);
  int row = 0;
  for (; row < capacity && fetchMain(); ++row) {
    for (FieldReader const& reader : readers) {
      reader.read(valueAt(reader.index()), static_cast<std::size_t>(row), arena_);
    }
  }
  return row;
}

void SqliteStatement::releaseRows() noexcept {
  rows_ = Rows::kNone;
  sqlite3_reset(handle_.get());
}

// The line has no lock, so that the value may be asked without one, too. Asking a value for its
// type and then for its content looks the field up once; the statement's own accessors would do so
// each time.
sqlite3_value* SqliteStatement::valueAt(int field) const {
  return sqlite3_column_value(handle_.get(), field);
}

bool SqliteStatement::isNull(int field) const {
  requireField(field);
  return isNullValue(valueAt(field));
}

int SqliteStatement::getInt(int field) const {
  requireField(field);
  return intOf(valueAt(field));
}

double SqliteStatement::getDouble(int field) const {
  requireField(field);
  return sqlite3_value_double(valueAt(field));
}

std::string_view SqliteStatement::getString(int field) const {
  requireField(field);
  return textOf(valueAt(field));
}

bool SqliteStatement::getBool(int field) const {
  return getDouble(field) != 0;
}

date_t SqliteStatement::getDate(int field) const {
  return date_t(getDateTime(field));
}

datetime_t SqliteStatement::getDateTime(int field) const {
  requireField(field);
  return momentOf(valueAt(field));
}

std::shared_ptr<moxReadBlob> SqliteStatement::getBlob(int field) const {
  requireField(field);
  return std::make_shared<Blob>(std::string(bytesOf(valueAt(field))));
}

// What the text tells holds until the schema changes under the statement; the first row may tell
// another type at every execution.
void SqliteStatement::describeFields() {
  int const count = sqlite3_column_count(handle_.get());
  int const preparations = sqlite3_stmt_status(handle_.get(), SQLITE_STMTSTATUS_REPREPARE, 0);
  if (count > 0 && preparations != preparations_) {
    resultTypes_ = std::make_unique<ResultTypes>(text_, fieldNames(handle_.get()),
                                                 columnTypesOf(line_->handle()));
    preparations_ = preparations;
  }
  std::vector<FieldInfo> fields;
  fields.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    fields.push_back(describeField(i));
  }
  setFields(std::move(fields));
}

SqliteStatement::FieldInfo SqliteStatement::describeField(int index) {
  sqlite3_stmt* const statement = handle_.get();
  FieldInfo field;
  field.name = textOrEmpty(sqlite3_column_name(statement, index));
  field.columnName = textOrEmpty(sqlite3_column_origin_name(statement, index));
  field.tableName = textOrEmpty(sqlite3_column_table_name(statement, index));
  field.tableAlias = resultTypes_->tableAlias(index, field.tableName);
  field.type = typeAt(index);
  return field;
}

FieldType SqliteStatement::typeAt(int index) {
  char const* const declaration = sqlite3_column_decltype(handle_.get(), index);
  if (auto const declared = declaredType(textOrEmpty(declaration))) {
    return *declared;
  }
  InferredType const inferred = resultTypes_->at(index);
  if (inferred.type) {
    return *inferred.type;
  }
  return typeInFirstRow(index).value_or(inferred.withoutRows());
}

std::optional<FieldType> SqliteStatement::typeInFirstRow(int index) const {
  if (rows_ != Rows::kFirstReady) {
    return std::nullopt;
  }
  sqlite3_value* const value = valueAt(index);
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return FieldType::kInt;
    case SQLITE_FLOAT:
      return FieldType::kDouble;
    case SQLITE_BLOB:
      return FieldType::kBlob;
    case SQLITE_TEXT:
      return parseIsoDate(textOf(value)) ? FieldType::kDate : FieldType::kText;
    default:
      return std::nullopt;
  }
}

}  // namespace mox::core
