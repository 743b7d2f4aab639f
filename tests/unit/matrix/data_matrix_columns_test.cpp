#include "zyn/matrix/data_matrix_columns.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "mox/core/application.h"
#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

constexpr moxDataMatrixTypes::Types kTypes[] = {moxDataMatrixTypes::Int, moxDataMatrixTypes::Double,
                                                moxDataMatrixTypes::Text, moxDataMatrixTypes::Date,
                                                moxDataMatrixTypes::Blob};

class DataMatrixColumns : public testing::Test {
 protected:
  template <class Column>
  std::shared_ptr<Column> make(std::string const& registeredName) {
    return host_.get<Column>(registeredName);
  }

  TestHost host_;
};

TEST_F(DataMatrixColumns, TypesHaveTheirPublishedNumbers) {
  EXPECT_EQ(moxDataMatrixTypes::Int, 0);
  EXPECT_EQ(moxDataMatrixTypes::Double, 1);
  EXPECT_EQ(moxDataMatrixTypes::Text, 2);
  EXPECT_EQ(moxDataMatrixTypes::Date, 3);
  EXPECT_EQ(moxDataMatrixTypes::Blob, 4);
}

TEST_F(DataMatrixColumns, EachKindTellsItsRegisteredNameAndType) {
  for (auto const type : kTypes) {
    auto const made = makeColumn(type);

    EXPECT_EQ(made->getType(), type);
    EXPECT_EQ(made->name(), columnClassOf(type));
  }
  EXPECT_EQ(columnClassOf(moxDataMatrixTypes::Int), "moxDataMatrixIntColumn");
  EXPECT_EQ(columnClassOf(moxDataMatrixTypes::Double), "moxDataMatrixDoubleColumn");
  EXPECT_EQ(columnClassOf(moxDataMatrixTypes::Text), "moxDataMatrixTextColumn");
  EXPECT_EQ(columnClassOf(moxDataMatrixTypes::Date), "moxDataMatrixDateColumn");
  EXPECT_EQ(columnClassOf(moxDataMatrixTypes::Blob), "moxDataMatrixBlobColumn");
}

TEST_F(DataMatrixColumns, EachKindOffersItsInterface) {
  EXPECT_TRUE(make<moxDataMatrixIntColumn>("moxDataMatrixIntColumn"));
  EXPECT_TRUE(make<moxDataMatrixDoubleColumn>("moxDataMatrixDoubleColumn"));
  EXPECT_TRUE(make<moxDataMatrixTextColumn>("moxDataMatrixTextColumn"));
  EXPECT_TRUE(make<moxDataMatrixDateColumn>("moxDataMatrixDateColumn"));
  EXPECT_TRUE(make<moxDataMatrixBlobColumn>("moxDataMatrixBlobColumn"));
  EXPECT_FALSE(make<moxDataMatrixIntColumn>("moxDataMatrixTextColumn"));
}

TEST_F(DataMatrixColumns, EveryGetMakesANewColumn) {
  EXPECT_NE(makeColumn(moxDataMatrixTypes::Int), makeColumn(moxDataMatrixTypes::Int));
}

TEST_F(DataMatrixColumns, ANewIntColumnHasNoRowsAndReadsAsNull) {
  auto const made = make<moxDataMatrixIntColumn>("moxDataMatrixIntColumn");

  EXPECT_EQ(made->numRows(), 0U);
  EXPECT_TRUE(made->isNull(0));
  EXPECT_EQ(made->getValue(0), 0);
  EXPECT_EQ(made->getName(), "");
  EXPECT_EQ(made->getFormatter(), nullptr);
}

TEST_F(DataMatrixColumns, AppendNullOnATextColumnAddsARowThatReadsEmpty) {
  auto const made = make<moxDataMatrixTextColumn>("moxDataMatrixTextColumn");

  made->appendNull();

  EXPECT_EQ(made->numRows(), 1U);
  EXPECT_TRUE(made->isNull(0));
  EXPECT_EQ(made->getValue(0), "");
}

TEST_F(DataMatrixColumns, ANullReadsAsTheDefaultOfEachKind) {
  auto const made = matrix({{"i", ints(null)},
                            {"d", doubles(null)},
                            {"t", texts(null)},
                            {"m", dates(null)},
                            {"b", blobs(null)}});
  auto const valueIn = [&]<class T>(unsigned int place, T) {
    return dynamic_cast<moxDataMatrixTypedColumn<T>&>(*made->columnAt(place)).getValue(0);
  };

  EXPECT_EQ(valueIn(0, 1), 0);
  EXPECT_EQ(valueIn(1, 1.0), 0.0);
  EXPECT_EQ(valueIn(2, std::string("x")), "");
  EXPECT_EQ(valueIn(3, moment("2024-03-05")), datetime_t());
  EXPECT_EQ(valueIn(4, blob("x")), nullptr);
}

TEST_F(DataMatrixColumns, KeepsValuesOfEachKind) {
  auto const bytes = blob("xyz");
  auto const made = matrix({{"i", ints(INT_MIN, 0, INT_MAX)},
                            {"d", doubles(-0.5, null, 1e300)},
                            {"t", texts("short", "a text that is longer than twelve", "")},
                            {"m", dates("2024-03-05 10:20:30", null, "0001-01-01")},
                            {"b", blobs(bytes, null, bytes)}});

  EXPECT_THAT(made, isMatrix({{"i", ints(INT_MIN, 0, INT_MAX)},
                              {"d", doubles(-0.5, null, 1e300)},
                              {"t", texts("short", "a text that is longer than twelve", "")},
                              {"m", dates("2024-03-05 10:20:30", null, "0001-01-01")},
                              {"b", blobs("xyz", null, "xyz")}}));
  EXPECT_EQ(std::get<std::shared_ptr<moxReadBlob>>(cellAt(*made->columnAt(4), 0)), bytes);
}

TEST_F(DataMatrixColumns, ReadsPastTheEndGiveNull) {
  auto const made = column("k", ints(1, 2));
  auto const& typed = dynamic_cast<moxDataMatrixTypedColumn<int>&>(*made);

  EXPECT_TRUE(made->isNull(2));
  EXPECT_TRUE(made->isNull(UINT_MAX));
  EXPECT_EQ(typed.getValue(2), 0);
  EXPECT_EQ(typed.getValue(UINT_MAX), 0);
}

TEST_F(DataMatrixColumns, ReserveChangesNoRow) {
  auto const made = column("k", ints(1));

  made->reserve(1000);
  made->reserve(0);

  EXPECT_EQ(made->numRows(), 1U);
}

TEST_F(DataMatrixColumns, ReserveOfANegativeNumberIsALengthError) {
  for (auto const type : kTypes) {
    EXPECT_THROW(makeColumn(type)->reserve(-1), std::length_error);
  }
}

TEST_F(DataMatrixColumns, ClearTakesTheRowsAndKeepsNameAndUse) {
  auto const made = column("t", texts("a text that is longer than twelve", null));

  made->clear();

  EXPECT_EQ(made->numRows(), 0U);
  EXPECT_EQ(made->getName(), "t");
  append(*made, std::string("another text of some length"));
  EXPECT_EQ(std::get<std::string>(cellAt(*made, 0)), "another text of some length");
}

TEST_F(DataMatrixColumns, TextsKeepZeroBytesAndBytesAbove127) {
  std::string const zero("a\0b", 3);
  std::string const accents = "Concei\xC3\xA7\xC3\xA3o de Araújo";

  auto const made = column("t", texts(zero, accents));

  EXPECT_EQ(std::get<std::string>(cellAt(*made, 0)), zero);
  EXPECT_EQ(std::get<std::string>(cellAt(*made, 1)), accents);
}

TEST_F(DataMatrixColumns, WithStorageOpensOwnColumnsOnly) {
  auto const own = column("t", texts("a", null));
  ForeignIntColumn foreign("k", {1});
  std::size_t rows = 0;

  EXPECT_TRUE(withStorage(*own, [&](auto& storage) { rows = storage.size(); }));
  EXPECT_EQ(rows, 2U);
  EXPECT_FALSE(withStorage(foreign, [](auto&) { FAIL() << "not the module's own"; }));
}

TEST_F(DataMatrixColumns, WithStorageOfAConstantColumnGivesConstantStorage) {
  std::shared_ptr<moxDataMatrixColumn const> const own = column("k", ints(7));

  EXPECT_TRUE(withStorage(*own, []<class Storage>(Storage& storage) {
    static_assert(std::is_const_v<Storage>);
    EXPECT_EQ(storage.size(), 1U);
  }));
}

}  // namespace
