#include "zyn/matrix/temporary_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "mox/core/error.h"
#include "support/fake_database.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

using Texts = std::vector<std::string>;

class TemporaryTable : public testing::Test {
 protected:
  TemporaryTable() : TemporaryTable(std::make_unique<FakeDatabase>()) {}

  FakeDatabase& database_;
  TestHost host_;

 private:
  explicit TemporaryTable(std::unique_ptr<FakeDatabase> database)
      : database_(*database), host_(std::move(database)) {}
};

TEST_F(TemporaryTable, StatementsOfAColumnOfEachKindButBlob) {
  auto const table =
      matrix({{"i", ints(1)}, {"d", doubles(0.5)}, {"t", texts("x")}, {"m", dates("2024-03-05")}});

  dumpToTemporaryTable(*table, "resultado");

  EXPECT_EQ(database_.preparedTexts(),
            Texts({"create or replace temporary table resultado (i int ,d double ,t varchar(200) "
                   ",m datetime )",
                   "insert into resultado (i,d,t,m) values (?,?,?,?)"}));
}

TEST_F(TemporaryTable, ABlobColumnHasNoTypeWord) {
  dumpToTemporaryTable(*matrix({{"i", ints()}, {"b", blobs()}, {"t", texts()}}), "r");

  EXPECT_EQ(database_.preparedTexts(),
            Texts({"create or replace temporary table r (i int ,b,t varchar(200) )",
                   "insert into r (i,b,t) values (?,?,?)"}));
}

TEST_F(TemporaryTable, OneColumnHasNoComma) {
  dumpToTemporaryTable(*matrix({{"k", ints()}}), "r");

  EXPECT_EQ(database_.preparedTexts(), Texts({"create or replace temporary table r (k int )",
                                              "insert into r (k) values (?)"}));
}

TEST_F(TemporaryTable, NamesThatCannotStandBareAreQuoted) {
  dumpToTemporaryTable(*matrix({{"2024 Janeiro", ints()}, {"order", ints()}, {"a`b", ints()}}),
                       "Total Geral");

  EXPECT_EQ(database_.preparedTexts(),
            Texts({"create or replace temporary table `Total Geral` (`2024 Janeiro` int ,`order` "
                   "int ,`a``b` int )",
                   "insert into `Total Geral` (`2024 Janeiro`,`order`,`a``b`) values (?,?,?)"}));
}

TEST_F(TemporaryTable, WithoutColumnsNothingIsSent) {
  dumpToTemporaryTable(*matrix({}), "r");

  EXPECT_TRUE(database_.preparedTexts().empty());
}

TEST_F(TemporaryTable, EachCellIsBoundByItsTypeAndANullAsNull) {
  auto const table = matrix({{"i", ints(7, null)},
                             {"d", doubles(0.5, null)},
                             {"t", texts("a text that is longer than twelve", null)},
                             {"m", dates("2024-03-05 10:20:30", null)},
                             {"b", blobs("xyz", null)}});

  dumpToTemporaryTable(*table, "r");

  EXPECT_EQ(database_.binds(),
            Texts({"0: int 7", "1: double 0.5", "2: text a text that is longer than twelve",
                   "3: moment 2024-03-05", "4: blob of 3", "0: null", "1: null", "2: null",
                   "3: null", "4: null"}));
}

TEST_F(TemporaryTable, WhatADatabaseHasNoValueForIsBoundAsNull) {
  dumpToTemporaryTable(*matrix({{"d", doubles(NAN)}, {"b", blobs(std::shared_ptr<moxReadBlob>())}}),
                       "r");

  EXPECT_EQ(database_.binds(), Texts({"0: null", "1: null"}));
}

TEST_F(TemporaryTable, OnlyRowsThatStandInEveryColumnAreWritten) {
  dumpToTemporaryTable(*matrix({{"a", ints(1, 2, 3)}, {"b", ints(4, 5)}}), "r");

  EXPECT_EQ(database_.binds(), Texts({"0: int 1", "1: int 4", "0: int 2", "1: int 5"}));
}

TEST_F(TemporaryTable, ForeignColumnsAreReadThroughTheirInterface) {
  auto const table = matrix({{"a", ints(1, 2)}});
  table->addColumn(std::make_shared<ForeignTextColumn>(
      "f", std::vector<std::optional<std::string>>{"x", std::nullopt}));

  dumpToTemporaryTable(*table, "r");

  EXPECT_EQ(database_.binds(), Texts({"0: int 1", "1: text x", "0: int 2", "1: null"}));
}

TEST_F(TemporaryTable, AFailureOfTheDatabasePassesThrough) {
  database_.failAt(FakeCall::kExecute, 3);  // the table, a row, and then this

  EXPECT_THROW(dumpToTemporaryTable(*matrix({{"a", ints(1, 2, 3)}}), "r"), moxError);

  EXPECT_EQ(database_.binds(), Texts({"0: int 1", "0: int 2"}));
}

}  // namespace
