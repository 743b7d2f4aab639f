#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/database/line_statement.h"
#include "core/database/physical_connection.h"

namespace mox::core {

/// What the statements of every kind of database have in common: the statements that stand before
/// and after the main one, the checks of positions and indexes, and the report of progress. Belongs
/// to one thread.
///
/// The statements before the main one may make what it reads, so they run ahead of its preparation,
/// which stands for the first execution's, and ahead of every later execution. Each run of them is
/// paired with one run of the statements after: when the last row was read, when a statement
/// without rows was executed, when the next execution begins, when something failed, or when the
/// statement is dropped.
class StatementBase : public LineStatement {
 public:
  using FieldInfo = moxDatabaseConnection::FieldInfo;

  /// Runs the statements after, where they are still owed. A deriving class ends its own statement
  /// in its own destructor, so that the line is free by then.
  ~StatementBase() override;

  StatementBase(StatementBase const&) = delete;
  StatementBase& operator=(StatementBase const&) = delete;

  void execute() final;
  bool fetch() final;
  int fetchBlock(std::vector<moxFieldBlock>& fields, int capacity) final;
  int fieldCount() const final { return static_cast<int>(fields_.size()); }
  FieldInfo const& field(int index) const final;

  void setRowObserver(RowObserver observer) final { observer_ = std::move(observer); }

 protected:
  /// `connection` must not be empty; `script` without its main statement is what this class runs.
  StatementBase(std::shared_ptr<PhysicalConnection> connection, StatementScript const& script);

  /// To be called at the start of the deriving constructor, before the main statement is prepared.
  /// What a constructor throws later leads to the statements after.
  void runBefore();

  /// Fields of the result. For executeMain, or earlier where they are known earlier.
  void setFields(std::vector<FieldInfo> fields) { fields_ = std::move(fields); }

  /// Runs the main statement with its values, and sets the fields; without fields the whole is over
  /// with it.
  virtual void executeMain() = 0;

  /// Moves to the next row; false after the last.
  virtual bool fetchMain() = 0;

  /// As fetchBlock. `fields` has one entry a field, `capacity` is above 0.
  virtual int fetchBlockMain(std::vector<moxFieldBlock>& fields, int capacity) = 0;

  /// Gives up the rows not yet read, so that the line is free for other statements. Called after
  /// the last row, after a failure, and ahead of a new execution; more than once in a row does no
  /// harm.
  virtual void releaseRows() noexcept = 0;

  /// Ends the rows of the running execution ahead of their end. The statements after stay owed: to
  /// the next execution, or to the destructor.
  void stopReading();

  /// Throws std::out_of_range for an index outside the fields, std::logic_error where no row
  /// stands.
  void requireField(int index) const {
    if (!hasRow_ || index < 0 || index >= fieldCount()) {
      throwUnreadable(index);
    }
  }

 private:
  enum class State {
    kIdle,
    kReading,
    kEnded,
    kDone  // executed, and without rows
  };

  [[noreturn]] void throwUnreadable(int index) const;
  void requireReading() const;
  void runAfter();
  void runAfterQuietly() noexcept;
  void giveUp() noexcept;
  void endOfRows();
  void countRows(int rows);

  std::shared_ptr<PhysicalConnection> connection_;
  std::vector<std::string> before_;
  std::vector<std::string> after_;
  std::vector<FieldInfo> fields_;
  RowObserver observer_;
  std::int64_t rowsRead_ = 0;      // in the running execution
  std::int64_t rowsReported_ = 0;  // likewise
  State state_ = State::kIdle;
  bool afterOwed_ = false;  // the statements before have run, those after have not
  bool fresh_ = false;      // the statements before ran for a preparation that was not executed yet
  bool hasRow_ = false;     // fetch stands on a row
};

}  // namespace mox::core
