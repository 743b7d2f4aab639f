#include "zyn/matrix/temporary_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/databases.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

/// The host opens the database by its URL, as an application does; the table is read back on the
/// same thread, whose connection it belongs to.
class TemporaryTableOnDatabase : public OnEveryDatabase {
 protected:
  using Rows = std::vector<std::vector<std::string>>;

  Rows rows(std::string const& sql) {
    auto const statement = host_.database().prepare(sql);
    statement->execute();
    Rows all;
    while (statement->fetch()) {
      all.emplace_back();
      for (int field = 0; field < statement->fieldCount(); ++field) {
        all.back().push_back(statement->isNull(field) ? "NULL"
                                                      : std::string(statement->getString(field)));
      }
    }
    return all;
  }

  TestHost host_{db.url()};
};

TEST_P(TemporaryTableOnDatabase, HoldsTheCellsOfTheMatrix) {
  auto const table = matrix({{"i", ints(-7, null)},
                             {"d", doubles(0.5, null)},
                             {"t", texts("Concei\xC3\xA7\xC3\xA3o de Ara\xC3\xBAjo", null)},
                             {"m", dates("2024-03-05 10:20:30", null)}});

  dumpToTemporaryTable(*table, "resultado");

  EXPECT_EQ(
      rows("select i, d, t from resultado order by i desc"),
      Rows({{"-7", "0.5", "Concei\xC3\xA7\xC3\xA3o de Ara\xC3\xBAjo"}, {"NULL", "NULL", "NULL"}}));
  auto const moments = host_.database().prepare("select m from resultado where i = -7");
  moments->execute();
  ASSERT_TRUE(moments->fetch());
  EXPECT_EQ(moments->getDateTime(0), moment("2024-03-05 10:20:30"));
}

TEST_P(TemporaryTableOnDatabase, ReplacesATableOfThatName) {
  dumpToTemporaryTable(*matrix({{"a", ints(1, 2)}}), "r");
  dumpToTemporaryTable(*matrix({{"b", texts("x")}}), "r");

  EXPECT_EQ(rows("select * from r"), Rows({{"x"}}));
}

TEST_P(TemporaryTableOnDatabase, TakesAnyNames) {
  std::vector<NamedCells> const columns = {{"2024 Janeiro", ints(1)},
                                           {"order", ints(2)},
                                           {"a`b", ints(3)},
                                           {"m\xC3\xA9"
                                            "dia",
                                            ints(4)},
                                           {"select", ints(5)},
                                           {"Key", ints(6)}};

  dumpToTemporaryTable(*matrix(columns), "Total Geral");

  EXPECT_EQ(rows("select * from `Total Geral`"), Rows({{"1", "2", "3", "4", "5", "6"}}));
}

TEST_P(TemporaryTableOnDatabase, AMatrixWithoutRowsMakesAnEmptyTable) {
  dumpToTemporaryTable(*matrix({{"a", ints()}}), "r");

  EXPECT_TRUE(rows("select * from r").empty());
}

TEST_P(TemporaryTableOnDatabase, AMatrixWithoutColumnsMakesNone) {
  dumpToTemporaryTable(*matrix({}), "r");

  EXPECT_TRUE(failureOf([&] { rows("select * from r"); }));
}

TEST_P(TemporaryTableOnDatabase, ANaNIsStoredAsNull) {
  dumpToTemporaryTable(*matrix({{"d", doubles(NAN, 1.5)}}), "r");

  EXPECT_EQ(rows("select d from r order by d is null"), Rows({{"1.5"}, {"NULL"}}));
}

TEST_P(TemporaryTableOnDatabase, TwoColumnsOfOneNameAreTheDatabasesError) {
  EXPECT_TRUE(failureOf([] {
    dumpToTemporaryTable(*matrix({{"a", ints(1)}, {"a", ints(2)}}), "r");
  }));
}

TEST_P(TemporaryTableOnDatabase, TextsBeyondTheTypeWordAreTheDatabasesBusiness) {
  auto const table = matrix({{"t", texts(std::string(201, 'x'))}});

  auto const failure = failureOf([&] { dumpToTemporaryTable(*table, "r"); });

  EXPECT_EQ(failure.has_value(), db.isMariadb());
}

TEST_P(TemporaryTableOnDatabase, BlobsAreForDatabasesThatNeedNoTypeWord) {
  auto const table = matrix({{"b", blobs(std::string("x\0y", 3), null)}});

  auto const failure = failureOf([&] { dumpToTemporaryTable(*table, "r"); });

  EXPECT_EQ(failure.has_value(), db.isMariadb());
  if (!db.isMariadb()) {
    EXPECT_EQ(rows("select b from r"), Rows({{std::string("x\0y", 3)}, {"NULL"}}));
  }
}

MOX_ON_EVERY_DATABASE(TemporaryTableOnDatabase);

}  // namespace
