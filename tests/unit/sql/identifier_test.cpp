#include "zyn/sql/identifier.h"

#include <gtest/gtest.h>

TEST(Identifier, LeavesPlainNamesBare) {
  for (char const* name : {"a", "_", "Total2024", "valor_pago", "a$b", "key_", "nome"}) {
    EXPECT_EQ(identifier(name), name);
  }
}

TEST(Identifier, QuotesWhatIsNoPlainName) {
  EXPECT_EQ(identifier("Total Geral"), "`Total Geral`");
  EXPECT_EQ(identifier("2024 Janeiro"), "`2024 Janeiro`");
  EXPECT_EQ(identifier("2024"), "`2024`");
  EXPECT_EQ(identifier("$a"), "`$a`");
  EXPECT_EQ(identifier("a.b"), "`a.b`");
  EXPECT_EQ(identifier("média"), "`média`");
  EXPECT_EQ(identifier("a\"b"), "`a\"b`");
}

TEST(Identifier, NothingIsPassedRaw) {
  EXPECT_EQ(identifier(""), "``");
  EXPECT_EQ(identifier("`"), "````");
  EXPECT_EQ(identifier("a` int); drop table t; --"), "`a`` int); drop table t; --`");
}

TEST(Identifier, DoublesBackticksInside) {
  EXPECT_EQ(identifier("a`b``c"), "`a``b````c`");
}

TEST(Identifier, QuotesReservedWordsInAnyCase) {
  EXPECT_EQ(identifier("order"), "`order`");
  EXPECT_EQ(identifier("ORDER"), "`ORDER`");
  EXPECT_EQ(identifier("Group"), "`Group`");
  EXPECT_EQ(identifier("accessible"), "`accessible`");        // the first of the list
  EXPECT_EQ(identifier("zerofill"), "`zerofill`");            // the last
  EXPECT_EQ(identifier("autoincrement"), "`autoincrement`");  // SQLite's alone
  EXPECT_EQ(identifier("rows"), "`rows`");                    // MariaDB's alone
}

TEST(Identifier, WordsThatNoDatabaseRefusesStayBare) {
  EXPECT_EQ(identifier("date"), "date");
  EXPECT_EQ(identifier("count"), "count");
  EXPECT_EQ(identifier("year"), "year");
}
