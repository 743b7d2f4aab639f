#include "core/database/statement_base.h"

#include <utility>

namespace mox::core {
namespace {

constexpr std::int64_t kRowsPerReport = 1024;

}  // namespace

StatementBase::StatementBase(std::shared_ptr<PhysicalConnection> connection,
                             StatementScript const& script)
    : connection_(std::move(connection)), before_(script.before), after_(script.after) {}

StatementBase::~StatementBase() {
  runAfterQuietly();
}

void StatementBase::runBefore() {
  afterOwed_ = true;
  fresh_ = true;
  for (std::string const& sql : before_) {
    connection_->execute(sql);
  }
}

void StatementBase::runAfter() {
  if (!std::exchange(afterOwed_, false)) {
    return;
  }
  for (std::string const& sql : after_) {
    connection_->execute(sql);
  }
}

// A failure on the way is already on its way to the caller, or there is nobody left to tell.
void StatementBase::runAfterQuietly() noexcept {
  try {
    runAfter();
  } catch (...) {
    afterOwed_ = false;
  }
}

void StatementBase::giveUp() noexcept {
  hasRow_ = false;
  state_ = State::kEnded;
  fresh_ = false;
  releaseRows();
  runAfterQuietly();
}

void StatementBase::endOfRows() {
  hasRow_ = false;
  state_ = State::kEnded;
  releaseRows();
  runAfter();
}

void StatementBase::execute() {
  hasRow_ = false;
  releaseRows();
  state_ = State::kIdle;
  rowsRead_ = 0;
  rowsReported_ = 0;
  try {
    if (!std::exchange(fresh_, false)) {
      runAfter();
      runBefore();
      fresh_ = false;
    }
    executeMain();
    state_ = State::kReading;
  } catch (...) {
    giveUp();
    throw;
  }
  if (fields_.empty()) {
    endOfRows();
    state_ = State::kDone;
  }
}

void StatementBase::stopReading() {
  if (state_ == State::kReading) {
    hasRow_ = false;
    state_ = State::kEnded;
    releaseRows();
  }
}

void StatementBase::requireReading() const {
  if (state_ != State::kReading) {
    throw std::logic_error("fetch without an execution whose rows are still to be read");
  }
}

bool StatementBase::fetch() {
  if (state_ == State::kDone) {
    return false;
  }
  requireReading();
  try {
    hasRow_ = fetchMain();
  } catch (...) {
    giveUp();
    throw;
  }
  if (hasRow_) {
    countRows(1);
  } else {
    endOfRows();
  }
  return hasRow_;
}

int StatementBase::fetchBlock(std::vector<moxFieldBlock>& fields, int capacity) {
  requireReading();
  if (fields.size() != fields_.size() || capacity < 1) {
    throw std::logic_error("fetchBlock needs one entry a field and room for a row");
  }
  hasRow_ = false;
  int rows = 0;
  try {
    rows = fetchBlockMain(fields, capacity);
  } catch (...) {
    giveUp();
    throw;
  }
  countRows(rows);
  if (rows < capacity) {
    endOfRows();
  }
  return rows;
}

void StatementBase::countRows(int rows) {
  rowsRead_ += rows;
  if (observer_ && rowsRead_ - rowsReported_ >= kRowsPerReport) {
    rowsReported_ = rowsRead_;
    observer_(rowsRead_);
  }
}

StatementBase::FieldInfo const& StatementBase::field(int index) const {
  if (index < 0 || index >= fieldCount()) {
    throw std::out_of_range("no field " + std::to_string(index) + " in a result of " +
                            std::to_string(fieldCount()));
  }
  return fields_[static_cast<std::size_t>(index)];
}

void StatementBase::throwUnreadable(int index) const {
  field(index);
  throw std::logic_error("a value was read where no row stands");
}

}  // namespace mox::core
