#include "core/database/mariadb_statement.h"

#include <utility>

#include "core/database/database_error.h"
#include "core/database/mariadb_value.h"
#include "core/storage/blob.h"

namespace mox::core {
namespace {

using FieldType = moxDatabaseConnection::FieldType;

std::vector<MYSQL_FIELD> resultFields(MYSQL_STMT* handle) {
  std::unique_ptr<MYSQL_RES, decltype(&mysql_free_result)> const description(
      mysql_stmt_result_metadata(handle), &mysql_free_result);
  if (!description) {
    return {};
  }
  MYSQL_FIELD const* const fields = mysql_fetch_fields(description.get());
  return {fields, fields + mysql_num_fields(description.get())};
}

std::string_view kept(BlockArena& arena, std::string_view text) {
  return arena.keep(text.data(), text.size());
}

/// The way of one field into a block.
class FieldReader {
 public:
  FieldReader(MariadbField const& cell, moxFieldBlock const& block) : cell_(&cell), block_(block) {}

  /// Copies the current value into row number `at`.
  void read(std::size_t at, BlockArena& arena, std::string& scratch) const {
    bool const isNull = cell_->isNull != 0;
    block_.nulls[at] = isNull ? 1 : 0;
    if (isNull) {
      return;
    }
    switch (block_.readAs) {
      case FieldType::kInt:
        block_.ints[at] = readInt32(*cell_);
        break;
      case FieldType::kDouble:
        block_.doubles[at] = readDouble(*cell_);
        break;
      case FieldType::kDate:
        block_.dates[at] = readMoment(*cell_);
        break;
      default:
        block_.texts[at] = kept(arena, readText(*cell_, scratch));
    }
  }

 private:
  MariadbField const* cell_;
  moxFieldBlock block_;
};

/// Of the fields that are wanted. The row's places must stay where they are.
std::vector<FieldReader> readersFor(std::vector<MariadbField> const& cells,
                                    std::vector<moxFieldBlock> const& blocks) {
  std::vector<FieldReader> readers;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (blocks[i].wanted) {
      readers.emplace_back(cells[i], blocks[i]);
    }
  }
  return readers;
}

}  // namespace

MariadbStatement::MariadbStatement(std::shared_ptr<MariadbConnection> connection,
                                   StatementScript script)
    : StatementBase(connection, script),
      connection_(std::move(connection)),
      sql_(std::move(script.main)) {
  runBefore();
  connection_->freeLine();
  handle_ = mysql_stmt_init(connection_->handle());
  if (handle_ == nullptr) {
    throw std::bad_alloc();
  }
  connection_->enter();
  try {
    if (mysql_stmt_prepare(handle_, sql_.data(), sql_.size()) != 0) {
      connection_->fail(handle_, sql_);
    }
    parameters_ = MariadbParameters(static_cast<int>(mysql_stmt_param_count(handle_)));
    readFields();
  } catch (...) {
    connection_->leave(handle_);
    throw;
  }
}

MariadbStatement::~MariadbStatement() {
  releaseRows();
  connection_->leave(handle_);
}

void MariadbStatement::readFields() {
  std::vector<MYSQL_FIELD> const described = resultFields(handle_);
  std::vector<FieldInfo> infos;
  infos.reserve(described.size());
  for (MYSQL_FIELD const& field : described) {
    infos.push_back(mariadbFieldInfo(field));
  }
  row_ = MariadbRow(described);
  isBound_ = false;
  scratch_.resize(described.size());
  setFields(std::move(infos));
}

MariadbParameters& MariadbStatement::parametersFor(int position) {
  requirePosition(position, parameters_.count());
  return parameters_;
}

void MariadbStatement::bindInt(int position, int value) {
  parametersFor(position).setInt(position, value);
}

void MariadbStatement::bindDouble(int position, double value) {
  parametersFor(position).setDouble(position, value);
}

void MariadbStatement::bindString(int position, std::string_view value) {
  parametersFor(position).setText(position, value);
}

void MariadbStatement::bindDate(int position, date_t const& value) {
  parametersFor(position).setDate(position, value);
}

void MariadbStatement::bindNull(int position) {
  parametersFor(position).setNull(position);
}

void MariadbStatement::bindDateTime(int position, datetime_t const& value) {
  parametersFor(position).setMoment(position, value);
}

void MariadbStatement::bindBlob(int position, moxReadBlob const& value) {
  parametersFor(position).setBlob(position, {value.data(), value.size()});
}

std::int64_t MariadbStatement::rowCount() const {
  return fieldCount() == 0 ? 0 : -1;
}

void MariadbStatement::executeMain() {
  connection_->freeLine();
  connection_->noteSessionState(sql_, false);
  if (!parameters_.bind(handle_) || mysql_stmt_execute(handle_) != 0) {
    connection_->fail(handle_, sql_);
  }
  connection_->setReader(this);
  // A procedure may answer with results without rows ahead of the one that has some.
  while (mysql_stmt_field_count(handle_) == 0 && mysql_stmt_more_results(handle_)) {
    if (mysql_stmt_next_result(handle_) > 0) {
      connection_->fail(handle_, sql_);
    }
  }
  connection_->noteTransaction();
  readFields();
  if (fieldCount() == 0) {
    connection_->setReader(nullptr);
  }
}

bool MariadbStatement::nextRowOnLine(MariadbRow& row) {
  if (!isBound_) {
    if (!row.bind(handle_)) {
      connection_->fail(handle_, sql_);
    }
    isBound_ = true;
  }
  int const outcome = mysql_stmt_fetch(handle_);
  if (outcome == 0) {
    return true;
  }
  if (outcome == MYSQL_DATA_TRUNCATED) {
    isBound_ = false;
    if (!row.complete(handle_)) {
      connection_->fail(handle_, sql_);
    }
    return true;
  }
  if (outcome != MYSQL_NO_DATA) {
    connection_->setReader(nullptr);
    connection_->fail(handle_, sql_);
  }
  finishResults();
  return false;
}

/// Reads off what a procedure answers behind its first result with rows: a failure of it may stand
/// there.
void MariadbStatement::finishResults() {
  connection_->setReader(nullptr);
  while (mysql_stmt_more_results(handle_)) {
    if (mysql_stmt_next_result(handle_) > 0) {
      connection_->fail(handle_, sql_);
    }
    mysql_stmt_free_result(handle_);
  }
}

bool MariadbStatement::nextStoredRow() {
  if (!store_.empty()) {
    store_.pop(row_);
    return true;
  }
  if (storedFailure_) {
    std::rethrow_exception(std::exchange(storedFailure_, nullptr));
  }
  return false;
}

bool MariadbStatement::nextRow() {
  return isReader() ? nextRowOnLine(row_) : nextStoredRow();
}

bool MariadbStatement::fetchMain() {
  return nextRow();
}

int MariadbStatement::fetchBlockMain(std::vector<moxFieldBlock>& fields, int capacity) {
  arena_.clear();
  auto const readers = readersFor(row_.fields(), fields);
  std::string scratch;
  int rows = 0;
  while (rows < capacity && nextRow()) {
    for (FieldReader const& reader : readers) {
      reader.read(static_cast<std::size_t>(rows), arena_, scratch);
    }
    ++rows;
  }
  return rows;
}

void MariadbStatement::keepRemainingRows() noexcept {
  try {
    storeRows();
  } catch (...) {
    storedFailure_ = std::current_exception();
    leaveLine();
  }
}

/// Drops what still stands on the line, when anything does.
void MariadbStatement::leaveLine() noexcept {
  if (!isReader()) {
    return;
  }
  connection_->setReader(nullptr);
  if (!connection_->isLost()) {
    skipResults();
  }
}

/// The row that the caller stands on stays where it is, as texts of it may be in use.
void MariadbStatement::storeRows() {
  MariadbRow incoming(resultFields(handle_));
  isBound_ = false;
  while (nextRowOnLine(incoming)) {
    store_.push(incoming);
  }
}

void MariadbStatement::releaseRows() noexcept {
  store_.clear();
  storedFailure_ = nullptr;
  leaveLine();
}

/// The protocol has no way to call rows off: they are read and dropped.
void MariadbStatement::skipResults() noexcept {
  bool more = true;
  while (more) {
    mysql_stmt_free_result(handle_);
    more = mysql_stmt_more_results(handle_) && mysql_stmt_next_result(handle_) == 0;
  }
  connection_->noteFailure(mysql_errno(connection_->handle()));
}

MariadbField const& MariadbStatement::cell(int field) const {
  requireField(field);
  return row_.fields()[static_cast<std::size_t>(field)];
}

bool MariadbStatement::isNull(int field) const {
  return cell(field).isNull != 0;
}

int MariadbStatement::getInt(int field) const {
  MariadbField const& value = cell(field);
  return value.isNull != 0 ? 0 : readInt32(value);
}

double MariadbStatement::getDouble(int field) const {
  MariadbField const& value = cell(field);
  return value.isNull != 0 ? 0 : readDouble(value);
}

std::string_view MariadbStatement::getString(int field) const {
  MariadbField const& value = cell(field);
  return value.isNull != 0 ? std::string_view()
                           : readText(value, scratch_[static_cast<std::size_t>(field)]);
}

bool MariadbStatement::getBool(int field) const {
  return getDouble(field) != 0;
}

date_t MariadbStatement::getDate(int field) const {
  return date_t(getDateTime(field));
}

datetime_t MariadbStatement::getDateTime(int field) const {
  MariadbField const& value = cell(field);
  return value.isNull != 0 ? datetime_t() : readMoment(value);
}

std::shared_ptr<moxReadBlob> MariadbStatement::getBlob(int field) const {
  return std::make_shared<Blob>(std::string(getString(field)));
}

}  // namespace mox::core
