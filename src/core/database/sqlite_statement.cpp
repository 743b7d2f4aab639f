#include "core/database/sqlite_statement.h"

#include <sqlite3.h>

#include <new>
#include <utility>

#include "core/database/database_error.h"
#include "core/database/sqlite_error.h"
#include "core/database/text_dates.h"

namespace mox::core {
namespace {

std::string textOrEmpty(char const* text) {
  return text == nullptr ? std::string() : std::string(text);
}

datetime_t momentFrom(std::string_view text) {
  if (datetime_t const moment = isoDateOrEmpty(text)) {
    return moment;
  }
  return parseDateText(text).value_or(datetime_t());
}

}  // namespace

int SqliteCell::type() const {
  return sqlite3_value_type(value_);
}

bool SqliteCell::isNull() const {
  return type() == SQLITE_NULL;
}

std::int32_t SqliteCell::toInt() const {
  return static_cast<std::int32_t>(sqlite3_value_int64(value_));
}

double SqliteCell::toDouble() const {
  return sqlite3_value_double(value_);
}

std::string_view SqliteCell::toText() const {
  auto const* const text = reinterpret_cast<char const*>(sqlite3_value_text(value_));
  if (text == nullptr) {
    if (!isNull()) {
      throw std::bad_alloc();
    }
    return {};
  }
  return {text, static_cast<std::size_t>(sqlite3_value_bytes(value_))};
}

std::string_view SqliteCell::toBytes() const {
  auto const* const bytes = static_cast<char const*>(sqlite3_value_blob(value_));
  return bytes == nullptr
             ? std::string_view()
             : std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value_)));
}

datetime_t SqliteCell::toMoment() const {
  return type() == SQLITE_TEXT ? momentFrom(toText()) : datetime_t();
}

namespace {

// The way of one field into a block. The functions that read ask a value as few questions as they
// can, as every question is a call into SQLite: what a number and a text read as tells most nulls
// apart from values, and only a 0 or nothing needs the question whether it is one.
class FieldReader {
 public:
  FieldReader(int index, moxFieldBlock const& block)
      : index_(index), type_(block.readAs), nulls_(block.nulls), place_(placeIn(block)) {}

  int index() const { return index_; }

  void read(SqliteCell cell, std::size_t row, BlockArena& arena) const {
    switch (type_) {
      case FieldType::kInt:
        return readInt(cell, row);
      case FieldType::kDouble:
        return readDouble(cell, row);
      case FieldType::kDate:
        return readMoment(cell, row);
      case FieldType::kText:
        return readText(cell, row, arena);
      case FieldType::kBlob:
        return readBlob(cell, row, arena);
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

  void readInt(SqliteCell cell, std::size_t row) const {
    std::int32_t const number = cell.toInt();
    if (isStored(row, number == 0 && cell.isNull())) {
      place_.ints[row] = number;
    }
  }

  void readDouble(SqliteCell cell, std::size_t row) const {
    double const number = cell.toDouble();
    if (isStored(row, number == 0 && cell.isNull())) {
      place_.doubles[row] = number;
    }
  }

  void readMoment(SqliteCell cell, std::size_t row) const {
    datetime_t const moment = cell.toMoment();
    if (isStored(row, !moment && cell.isNull())) {
      place_.dates[row] = moment;
    }
  }

  void readText(SqliteCell cell, std::size_t row, BlockArena& arena) const {
    std::string_view const text = cell.toText();
    if (isStored(row, text.data() == nullptr)) {
      place_.texts[row] = arena.keep(text.data(), text.size());
    }
  }

  void readBlob(SqliteCell cell, std::size_t row, BlockArena& arena) const {
    if (isStored(row, cell.isNull())) {
      std::string_view const bytes = cell.toBytes();
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

/// Gives a value to a mark, each form in SQLite's own; the result is SQLite's status.
struct MarkSetter {
  int operator()(MarkNull) const { return sqlite3_bind_null(statement, mark); }
  int operator()(int value) const { return sqlite3_bind_int(statement, mark, value); }
  int operator()(double value) const { return sqlite3_bind_double(statement, mark, value); }
  int operator()(std::string_view value) const {
    return sqlite3_bind_text64(statement, mark, addressOf(value), value.size(), SQLITE_TRANSIENT,
                               SQLITE_UTF8);
  }
  int operator()(MarkBytes value) const {
    return sqlite3_bind_blob64(statement, mark, addressOf(value.bytes), value.bytes.size(),
                               SQLITE_TRANSIENT);
  }
  int operator()(date_t const& value) const { return (*this)(isoText(value)); }
  int operator()(datetime_t const& value) const { return (*this)(isoText(value)); }

  /// A null pointer would bind a null.
  static char const* addressOf(std::string_view bytes) { return bytes.empty() ? "" : bytes.data(); }

  sqlite3_stmt* statement;
  int mark;  // counted from 1
};

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
    : CellStatement(line, script), line_(std::move(line)), text_(script.main) {
  runBefore();
  handle_ = line_->compile(text_);
  requirePlainMarks();
}

// SQLite counts its named marks (@a, :a, $a, ?1) among the others: values would go to wrong places.
void SqliteStatement::requirePlainMarks() const {
  for (int mark = 1; mark <= markCount(); ++mark) {
    if (char const* const name = sqlite3_bind_parameter_name(handle_.get(), mark)) {
      throw DatabaseError(
          "The statement has \"" + std::string(name) +
              "\", a variable or named mark, which SQLite databases do not have here",
          "", text_);
    }
  }
}

int SqliteStatement::markCount() const {
  return sqlite3_bind_parameter_count(handle_.get());
}

// SQLite takes values only between two executions.
void SqliteStatement::setMark(int position, MarkValue const& value) {
  stopReading();
  requireBound(std::visit(MarkSetter{handle_.get(), position + 1}, value));
}

void SqliteStatement::bindList(int position, std::span<KeptValue const> values) {
  requirePosition(position, markCount());
  stopReading();
  lists_.push_back({values.data(), values.data() + values.size()});
  requireBound(bindSqliteList(handle_.get(), position + 1, lists_.back()));
}

void SqliteStatement::requireBound(int status) const {
  if (status != SQLITE_OK) {
    throwSqliteError(line_->handle(), status, text_);
  }
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
      reader.read(cellAt(reader.index()), static_cast<std::size_t>(row), arena_);
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
SqliteCell SqliteStatement::cellAt(int field) const {
  return SqliteCell(sqlite3_column_value(handle_.get(), field));
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
  SqliteCell const cell = cellAt(index);
  switch (cell.type()) {
    case SQLITE_INTEGER:
      return FieldType::kInt;
    case SQLITE_FLOAT:
      return FieldType::kDouble;
    case SQLITE_BLOB:
      return FieldType::kBlob;
    case SQLITE_TEXT:
      return parseIsoDate(cell.toText()) ? FieldType::kDate : FieldType::kText;
    default:
      return std::nullopt;
  }
}

}  // namespace mox::core
