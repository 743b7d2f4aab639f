#include "core/database/mariadb_row_store.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using mox::core::MariadbKind;
using mox::core::MariadbRow;
using mox::core::MariadbRowStore;

MYSQL_FIELD described(enum_field_types type, unsigned long length) {
  MYSQL_FIELD field{};
  field.type = type;
  field.length = length;
  field.charsetnr = 45;
  return field;
}

MariadbRow emptyRow() {
  return MariadbRow({described(MYSQL_TYPE_LONG, 11), described(MYSQL_TYPE_DATETIME, 19),
                     described(MYSQL_TYPE_VAR_STRING, 40)});
}

/// Row number `n`; every third value is a null, every hundredth text a long one.
MariadbRow rowOf(int n) {
  MariadbRow row = emptyRow();
  auto& fields = row.fields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    fields[i].isNull = (n + static_cast<int>(i)) % 3 == 0 ? 1 : 0;
  }
  std::memcpy(&fields[0].number, &n, sizeof n);
  fields[1].time.year = 2000 + static_cast<unsigned>(n % 100);
  std::string const text(n % 100 == 0 ? 50000U : static_cast<unsigned>(n % 30), 'x');
  fields[2].bytes.assign(text.begin(), text.end());
  fields[2].length = text.size();
  return row;
}

void expectSame(MariadbRow const& expected, MariadbRow const& row) {
  for (std::size_t i = 0; i < expected.fields().size(); ++i) {
    ASSERT_EQ(row.fields()[i].isNull, expected.fields()[i].isNull);
  }
  auto const& fields = expected.fields();
  if (fields[0].isNull == 0) {
    ASSERT_EQ(row.fields()[0].number, fields[0].number);
  }
  if (fields[1].isNull == 0) {
    ASSERT_EQ(row.fields()[1].time.year, fields[1].time.year);
  }
  if (fields[2].isNull == 0) {
    ASSERT_TRUE(row.fields()[2].view() == fields[2].view());
  }
}

TEST(MariadbRowStore, IsBornEmpty) {
  EXPECT_TRUE(MariadbRowStore().empty());
}

TEST(MariadbRowStore, GivesRowsInTheirOrder) {
  MariadbRowStore store;
  for (int n = 0; n < 3000; ++n) {
    store.push(rowOf(n));
  }
  MariadbRow row = emptyRow();
  for (int n = 0; n < 3000; ++n) {
    ASSERT_FALSE(store.empty());
    store.pop(row);
    expectSame(rowOf(n), row);
  }
  EXPECT_TRUE(store.empty());
}

TEST(MariadbRowStore, IsFilledAgainWhenEmpty) {
  MariadbRowStore store;
  MariadbRow row = emptyRow();
  for (int n = 0; n < 5; ++n) {
    store.push(rowOf(n));
    store.pop(row);
    expectSame(rowOf(n), row);
    EXPECT_TRUE(store.empty());
  }
}

TEST(MariadbRowStore, ClearForgetsARowThatWasHalfRead) {
  MariadbRowStore store;
  MariadbRow row = emptyRow();
  store.push(rowOf(1));
  store.push(rowOf(2));
  store.pop(row);
  store.clear();
  EXPECT_TRUE(store.empty());
  store.push(rowOf(3));
  store.pop(row);
  expectSame(rowOf(3), row);
}

}  // namespace
