#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "mox/core/database_connection.h"

namespace mox_test {

/// One cell of a fake result; the first kind is a null. Readings of another kind than the cell's
/// convert numbers and give the empty value otherwise.
using FakeCell = std::variant<std::monostate, int, double, std::string, datetime_t>;

/// What every statement of a fake database answers.
struct FakeResult {
  struct Field {
    std::string name;
    moxDatabaseConnection::FieldType type;
  };

  std::vector<Field> fields;
  std::vector<std::vector<FakeCell>> rows;
  std::int64_t rowCount = -1;  // as reported ahead of the rows
};

/// The calls that a fake database can be told to fail at.
enum class FakeCall { kPrepare, kBind, kExecute, kFetch };

/// A database that asks nothing of a test but what it should answer: it writes down each text that
/// is prepared and each value that is bound, serves the rows it was given, and fails where it is
/// told to.
class FakeDatabase final : public moxDatabaseConnection {
 public:
  /// Answer of all statements that are prepared from now on.
  FakeResult result;

  /// Whether statements also offer to be read in blocks.
  bool offersBlocks = false;

  /// Texts in the order in which they were prepared, with what came along.
  std::vector<std::string> const& preparedTexts() const { return log_->texts; }
  std::vector<std::string> const& extraWheres() const { return log_->extraWheres; }

  /// The values bound to the last statement, in the order in which they were bound: "0: int 5", "1:
  /// null", "2: double 2.5", "3: text ab%", "4: date 2024-03-05".
  std::vector<std::string> const& binds() const { return log_->binds; }

  /// How often rows were asked for, one by one and by blocks.
  int fetchCalls() const { return log_->fetches; }
  int blockCalls() const { return log_->blocks; }

  /// Has the `n`th of the calls to come fail, counted from 1, with the message "fake failure".
  /// Blocks count as fetches.
  void failAt(FakeCall call, int n) { log_->failures[call] = n; }

  std::shared_ptr<PreparedStatement> prepare(std::string const& sql, std::string const& extraWhere,
                                             std::string const& whereWord) override;
  std::shared_ptr<PreparedStatement> prepareForUnit(std::string const& sql,
                                                    std::string const& order,
                                                    std::string const& alias,
                                                    std::string const& column,
                                                    std::string const& joiningWord) override;
  void execute(std::string const& sql) override;

  /// Shared with the statements, which may outlive the database's use.
  struct Log {
    std::vector<std::string> texts;
    std::vector<std::string> extraWheres;
    std::vector<std::string> binds;
    int fetches = 0;
    int blocks = 0;
    std::map<FakeCall, int> failures;

    /// Throws when the call is the one that was told to fail.
    void count(FakeCall call);
  };

 private:
  std::shared_ptr<Log> log_ = std::make_shared<Log>();
};

}  // namespace mox_test
