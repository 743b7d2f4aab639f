#include "core/database/mariadb_statement.h"

#include <utility>

#include "core/database/database_error.h"

namespace mox::core {
namespace {

using FieldType = moxDatabaseConnection::FieldType;

// What the protocol puts ahead of a statement or its values; more than it is.
constexpr std::size_t kPacketHead = 64;

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
    : CellStatement(connection, script),
      connection_(std::move(connection)),
      sql_(std::move(script.main)) {
  runBefore();
  connection_->requireFits(sql_.size() + kPacketHead, sql_);
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

void MariadbStatement::setMark(int position, MarkValue const& value) {
  std::visit([&](auto const& given) { parameters_.set(position, given); }, value);
}

std::int64_t MariadbStatement::rowCount() const {
  return fieldCount() == 0 ? 0 : -1;
}

void MariadbStatement::executeMain() {
  connection_->freeLine();
  connection_->requireFits(parameters_.byteCount() + kPacketHead, sql_);
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

MariadbCell MariadbStatement::cellAt(int field) const {
  auto const index = static_cast<std::size_t>(field);
  return {row_.fields()[index], scratch_[index]};
}

}  // namespace mox::core
