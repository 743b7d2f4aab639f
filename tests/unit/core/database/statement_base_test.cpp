#include "core/database/statement_base.h"

#include <gtest/gtest.h>

#include "core/database/database_error.h"
#include "support/databases.h"

namespace mox::core {
namespace {

using Texts = std::vector<std::string>;
using mox_test::failureOf;

/// A line that writes down what it is told to run, and refuses one statement where that is wished.
struct RecordingLine : PhysicalConnection {
  std::shared_ptr<moxDatabaseConnection::PreparedStatement> prepare(StatementScript) override {
    return nullptr;
  }
  void execute(std::string const& sql) override {
    log.push_back(sql);
    if (sql == refused) {
      throw DatabaseError("refused " + sql, "7");
    }
  }
  void ensureUsable() override {}

  Texts log;
  std::string refused;
};

/// A statement with given rows of one number, which can break off.
class NumbersStatement : public StatementBase {
 public:
  NumbersStatement(std::shared_ptr<RecordingLine> line, StatementScript const& script, int rows)
      : StatementBase(line, script), line_(std::move(line)), rows_(rows) {
    runBefore();
    line_->execute("prepare");
  }

  void bindInt(int position, int) override {
    requirePosition(position, 2);
    stopReading();
  }
  void bindDouble(int, double) override {}
  void bindString(int, std::string_view) override {}
  void bindDate(int, date_t const&) override {}
  void bindNull(int) override {}
  void bindDateTime(int, datetime_t const&) override {}
  void bindBlob(int, moxReadBlob const&) override {}
  std::int64_t rowCount() const override { return -1; }
  bool isNull(int field) const override { return getInt(field) == 0; }
  int getInt(int field) const override {
    requireField(field);
    return place_;
  }
  double getDouble(int) const override { return 0; }
  std::string_view getString(int) const override { return {}; }
  bool getBool(int) const override { return false; }
  date_t getDate(int) const override { return {}; }
  datetime_t getDateTime(int) const override { return {}; }
  std::shared_ptr<moxReadBlob> getBlob(int) const override { return nullptr; }

  int breaksAt = -1;

 protected:
  void executeMain() override {
    line_->execute("main");
    place_ = 0;
    setFields(rows_ < 0 ? std::vector<FieldInfo>{} : std::vector<FieldInfo>(1));
  }
  bool fetchMain() override {
    if (place_ == breaksAt) {
      throw DatabaseError("broken", "");
    }
    return place_ < rows_ && ++place_ > 0;
  }
  int fetchBlockMain(std::vector<moxFieldBlock>&, int capacity) override {
    int read = 0;
    while (read < capacity && fetchMain()) {
      ++read;
    }
    return read;
  }
  void releaseRows() noexcept override { line_->log.push_back("release"); }

 private:
  std::shared_ptr<RecordingLine> line_;
  int rows_;  // -1: a statement without rows
  int place_ = 0;
};

struct StatementBaseTest : ::testing::Test {
  std::shared_ptr<NumbersStatement> make(int rows) {
    return std::make_shared<NumbersStatement>(line, StatementScript{{"before"}, "main", {"after"}},
                                              rows);
  }

  Texts takeLog() { return std::exchange(line->log, {}); }

  std::shared_ptr<RecordingLine> line = std::make_shared<RecordingLine>();
};

TEST_F(StatementBaseTest, StatementsBeforeRunAheadOfPreparationAndThoseAfterBehindTheLastRow) {
  auto const statement = make(2);
  EXPECT_EQ(takeLog(), (Texts{"before", "prepare"}));
  statement->execute();
  EXPECT_EQ(takeLog(), (Texts{"release", "main"}));
  EXPECT_TRUE(statement->fetch());
  EXPECT_TRUE(statement->fetch());
  EXPECT_EQ(takeLog(), Texts{});
  EXPECT_FALSE(statement->fetch());
  EXPECT_EQ(takeLog(), (Texts{"release", "after"}));
}

TEST_F(StatementBaseTest, ASecondExecutionRunsTheWholeScriptAgain) {
  auto const statement = make(0);
  statement->execute();
  EXPECT_FALSE(statement->fetch());
  takeLog();
  statement->execute();
  EXPECT_FALSE(statement->fetch());
  EXPECT_EQ(takeLog(), (Texts{"release", "before", "main", "release", "after"}));
}

TEST_F(StatementBaseTest, ExecutingAnewBeforeTheEndFinishesTheScriptFirst) {
  auto const statement = make(5);
  statement->execute();
  statement->fetch();
  takeLog();
  statement->execute();
  EXPECT_EQ(takeLog(), (Texts{"release", "after", "before", "main"}));
}

TEST_F(StatementBaseTest, AStatementWithoutRowsIsOverWithItsExecution) {
  auto const statement = make(-1);
  takeLog();
  statement->execute();
  EXPECT_EQ(takeLog(), (Texts{"release", "main", "release", "after"}));
  EXPECT_EQ(statement->fieldCount(), 0);
}

TEST_F(StatementBaseTest, AStatementWithoutRowsHasNoRowToFetch) {
  auto const statement = make(-1);
  EXPECT_THROW(statement->fetch(), std::logic_error);
  statement->execute();
  EXPECT_FALSE(statement->fetch());
  EXPECT_FALSE(statement->fetch());
  EXPECT_EQ(takeLog(), (Texts{"before", "prepare", "release", "main", "release", "after"}));
  line->refused = "main";
  EXPECT_TRUE(failureOf([&] { statement->execute(); }));
  EXPECT_THROW(statement->fetch(), std::logic_error);
}

TEST_F(StatementBaseTest, DroppedBeforeItsEndItRunsTheStatementsAfterOnce) {
  auto statement = make(5);
  statement->execute();
  statement->fetch();
  takeLog();
  statement.reset();
  EXPECT_EQ(takeLog(), (Texts{"after"}));
  statement = make(5);
  takeLog();
  statement.reset();
  EXPECT_EQ(takeLog(), (Texts{"after"}));
  statement = make(-1);
  statement->execute();
  takeLog();
  statement.reset();
  EXPECT_EQ(takeLog(), Texts{});
}

TEST_F(StatementBaseTest, AFailureOfPreparationStillRunsTheStatementsAfter) {
  line->refused = "prepare";
  EXPECT_EQ(failureOf([&] { make(1); })->message, "refused prepare");
  EXPECT_EQ(takeLog(), (Texts{"before", "prepare", "after"}));
  line->refused = "before";
  EXPECT_EQ(failureOf([&] { make(1); })->message, "refused before");
  EXPECT_EQ(takeLog(), (Texts{"before", "after"}));
}

TEST_F(StatementBaseTest, AFailureOfExecutionKeepsItsOwnMessage) {
  auto const statement = make(1);
  line->refused = "main";
  takeLog();
  EXPECT_EQ(failureOf([&] { statement->execute(); })->message, "refused main");
  EXPECT_EQ(takeLog(), (Texts{"release", "main", "release", "after"}));
  EXPECT_THROW(statement->fetch(), std::logic_error);
}

TEST_F(StatementBaseTest, ARowThatBreaksOffThrowsAndEndsTheResult) {
  auto const statement = make(5);
  statement->breaksAt = 2;
  statement->execute();
  EXPECT_TRUE(statement->fetch());
  EXPECT_TRUE(statement->fetch());
  takeLog();
  EXPECT_EQ(failureOf([&] { statement->fetch(); })->message, "broken");
  EXPECT_EQ(takeLog(), (Texts{"release", "after"}));
  EXPECT_THROW(statement->fetch(), std::logic_error);
}

TEST_F(StatementBaseTest, ABlockThatBreaksOffThrowsEvenBehindRows) {
  auto const statement = make(5);
  statement->breaksAt = 2;
  statement->execute();
  std::vector<moxFieldBlock> fields(1);
  EXPECT_EQ(failureOf([&] { statement->fetchBlock(fields, 10); })->message, "broken");
}

TEST_F(StatementBaseTest, AFailureOfTheStatementsAfterIsReported) {
  auto const statement = make(0);
  line->refused = "after";
  statement->execute();
  auto const failure = failureOf([&] { statement->fetch(); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message, "refused after");
  EXPECT_EQ(failure->code, "7");
}

TEST_F(StatementBaseTest, ValuesAreReadOnlyWhereARowStands) {
  auto const statement = make(1);
  EXPECT_THROW(statement->getInt(0), std::out_of_range);
  statement->execute();
  EXPECT_THROW(statement->getInt(0), std::logic_error);
  ASSERT_TRUE(statement->fetch());
  EXPECT_EQ(statement->getInt(0), 1);
  EXPECT_THROW(statement->getInt(1), std::out_of_range);
  EXPECT_THROW(statement->getInt(-1), std::out_of_range);
  EXPECT_THROW(statement->field(1), std::out_of_range);
  EXPECT_THROW(statement->field(-1), std::out_of_range);
  EXPECT_FALSE(statement->fetch());
  EXPECT_THROW(statement->getInt(0), std::logic_error);
}

TEST_F(StatementBaseTest, FetchingWithoutAnExecutionIsAProgrammersError) {
  auto const statement = make(1);
  EXPECT_THROW(statement->fetch(), std::logic_error);
  std::vector<moxFieldBlock> fields(1);
  EXPECT_THROW(statement->fetchBlock(fields, 1), std::logic_error);
  statement->execute();
  std::vector<moxFieldBlock> tooMany(2);
  EXPECT_THROW(statement->fetchBlock(tooMany, 1), std::logic_error);
  EXPECT_THROW(statement->fetchBlock(fields, 0), std::logic_error);
}

TEST_F(StatementBaseTest, PositionsOutsideAreRefused) {
  auto const statement = make(1);
  auto const failure = failureOf([&] { statement->bindInt(2, 0); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->message,
            "A value was given for position 2, but the statement has 2 marks, counted from 0");
  EXPECT_TRUE(failureOf([&] { statement->bindInt(-1, 0); }));
  EXPECT_FALSE(failureOf([&] { statement->bindInt(1, 0); }));
}

TEST_F(StatementBaseTest, SealedPositionsAreRefused) {
  auto const statement = make(1);
  statement->sealMarks(1);
  EXPECT_FALSE(failureOf([&] { statement->bindInt(0, 0); }));
  EXPECT_EQ(failureOf([&] { statement->bindInt(1, 0); })->message,
            "A value was given for position 1, but the statement has 1 marks, counted from 0");
}

TEST_F(StatementBaseTest, TheObserverHearsOfAboutEveryThousandRows) {
  auto const statement = make(3000);
  std::vector<std::int64_t> heard;
  statement->setRowObserver([&](std::int64_t rows) { heard.push_back(rows); });
  statement->execute();
  while (statement->fetch()) {
  }
  EXPECT_EQ(heard, (std::vector<std::int64_t>{1024, 2048}));
  heard.clear();
  statement->execute();
  std::vector<moxFieldBlock> fields(1);
  while (statement->fetchBlock(fields, 700) == 700) {
  }
  EXPECT_EQ(heard, (std::vector<std::int64_t>{1400, 2800}));
}

}  // namespace
}  // namespace mox::core
