#include "zyn/sql/fetch_helpers.h"

#include "support/foreign_column.h"
#include "unit/sql/loader_fixture.h"

namespace mox_test {

namespace {

class FetchHelpersTest : public testing::Test {
 protected:
  /// A statement that stands on the one row of these cells.
  std::shared_ptr<moxDatabaseConnection::PreparedStatement> onRow(std::vector<FakeCell> cells) {
    database_.result.fields.assign(cells.size(), {"f", FieldType::kText});
    database_.result.rows = {std::move(cells)};
    auto statement = database_.prepare("", "", "where");
    statement->execute();
    statement->fetch();
    return statement;
  }

  TestHost host_;
  FakeDatabase database_;
};

TEST_F(FetchHelpersTest, EachKindReadsItsFieldByItsOwnReading) {
  auto const statement = onRow({5, 2.5, "text", moment("2024-03-05 10:20:30"), "bytes"});
  auto const loaded =
      matrix({{"i", ints()}, {"d", doubles()}, {"t", texts()}, {"m", dates()}, {"b", blobs()}});
  for (int field = 0; field < 5; ++field) {
    makeFetchHelper(field, loaded->columnAt(static_cast<unsigned int>(field)))->fetch(statement);
  }
  EXPECT_THAT(loaded, isMatrix({{"i", ints(5)},
                                {"d", doubles(2.5)},
                                {"t", texts("text")},
                                {"m", dates("2024-03-05 10:20:30")},
                                {"b", blobs("bytes")}}));
}

TEST_F(FetchHelpersTest, NullOfTheStatementIsTheOnlyNull) {
  auto const statement = onRow({FakeCell{}, "", 0});
  auto const text = column("t", texts());
  makeFetchHelper(0, text)->fetch(statement);
  makeFetchHelper(1, text)->fetch(statement);
  EXPECT_TRUE(text->isNull(0));
  EXPECT_FALSE(text->isNull(1));
  auto const number = column("n", ints());
  makeFetchHelper(2, number)->fetch(statement);
  EXPECT_FALSE(number->isNull(0));
}

TEST_F(FetchHelpersTest, FieldWithoutAColumnIsLeftOut) {
  auto const statement = onRow({1});
  auto const helper = makeFetchHelper(0, {});
  EXPECT_NO_THROW(helper->fetch(statement));
  EXPECT_FALSE(helper->target());
}

TEST_F(FetchHelpersTest, ColumnOfForeignMakeIsFilledThroughItsInterface) {
  auto const statement = onRow({41});
  auto const target = std::make_shared<ForeignIntColumn>("c", std::vector<std::optional<int>>{});
  auto const helper = makeFetchHelper(0, target);
  helper->fetch(statement);
  EXPECT_EQ(target->getValue(0), 41);
  EXPECT_EQ(helper->target(), target);
}

}  // namespace

}  // namespace mox_test
