#include "zyn/sql/value_recorder.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mox/core/blob.h"

namespace mox_test {

namespace {

using Type = moxBoundValue::Type;

class ValueRecorderTest : public testing::Test {
 protected:
  Type lastType() const { return recorder_.values().back().type; }
  std::string lastText() const { return recorder_.values().back().text; }

  ValueRecorder recorder_;
};

TEST_F(ValueRecorderTest, Integers) {
  recorder_.bindInt(0, std::numeric_limits<int>::min());
  EXPECT_EQ(lastType(), Type::kInt);
  EXPECT_EQ(lastText(), "-2147483648");
}

TEST_F(ValueRecorderTest, DoublesWithAsManyDigitsAsTellThemApart) {
  recorder_.bindDouble(0, 0.1);
  EXPECT_EQ(lastType(), Type::kDouble);
  EXPECT_EQ(lastText(), "0.1");
  recorder_.bindDouble(0, 0.1 + 0.2);
  EXPECT_EQ(lastText(), "0.30000000000000004");
  recorder_.bindDouble(0, -2.0);
  EXPECT_EQ(lastText(), "-2");
  recorder_.bindDouble(0, std::numeric_limits<double>::lowest());
  EXPECT_EQ(std::stod(lastText()), std::numeric_limits<double>::lowest());
}

TEST_F(ValueRecorderTest, TextsAsTheyAre) {
  recorder_.bindString(0, std::string_view("a'b \"ç\0d", 9));
  EXPECT_EQ(lastType(), Type::kText);
  EXPECT_EQ(lastText(), std::string("a'b \"ç\0d", 9));
}

TEST_F(ValueRecorderTest, DaysAndMoments) {
  recorder_.bindDate(0, date_t(5, 3, 24));
  EXPECT_EQ(lastType(), Type::kDate);
  EXPECT_EQ(lastText(), "0024-03-05");
  recorder_.bindDateTime(0, datetime_t(5, 3, 2024, 1, 2, 3));
  EXPECT_EQ(lastType(), Type::kDateTime);
  EXPECT_EQ(lastText(), "2024-03-05 01:02:03");
}

TEST_F(ValueRecorderTest, EmptyDatesAreNulls) {
  recorder_.bindDate(0, date_t());
  recorder_.bindDateTime(1, datetime_t());
  recorder_.bindNull(2);
  ASSERT_EQ(recorder_.values().size(), 3u);
  for (auto const& value : recorder_.values()) {
    EXPECT_EQ(value.type, Type::kNull);
    EXPECT_EQ(value.text, "");
  }
}

TEST_F(ValueRecorderTest, BlobsByTheirSize) {
  class Bytes final : public moxReadBlob {
   public:
    std::string name() const override { return "bytes"; }
    std::size_t size() const override { return 12; }
    char const* data() const override { return nullptr; }
    std::unique_ptr<moxReadBlobCursor> openRead() const override { return {}; }
  };
  recorder_.bindBlob(0, Bytes());
  EXPECT_EQ(lastType(), Type::kBlob);
  EXPECT_EQ(lastText(), "12");
}

TEST_F(ValueRecorderTest, PositionsCountAndNotTheOrderOfTheCalls) {
  recorder_.bindInt(2, 30);
  recorder_.bindInt(0, 10);
  ASSERT_EQ(recorder_.values().size(), 3u);
  EXPECT_EQ(recorder_.values()[0].text, "10");
  EXPECT_EQ(recorder_.values()[1].type, Type::kNull);
  EXPECT_EQ(recorder_.values()[2].text, "30");
  recorder_.bindInt(0, 11);
  EXPECT_EQ(recorder_.values()[0].text, "11");
}

TEST_F(ValueRecorderTest, NegativePositionIsRefused) {
  EXPECT_THROW(recorder_.bindInt(-1, 1), std::out_of_range);
  EXPECT_TRUE(recorder_.values().empty());
}

TEST_F(ValueRecorderTest, HasNeitherARunNorRows) {
  EXPECT_THROW(recorder_.execute(), std::logic_error);
  EXPECT_THROW(recorder_.fetch(), std::logic_error);
  EXPECT_THROW(recorder_.fieldCount(), std::logic_error);
  EXPECT_THROW(recorder_.field(0), std::logic_error);
  EXPECT_THROW(recorder_.rowCount(), std::logic_error);
  EXPECT_THROW(recorder_.isNull(0), std::logic_error);
  EXPECT_THROW(recorder_.getInt(0), std::logic_error);
  EXPECT_THROW(recorder_.getDouble(0), std::logic_error);
  EXPECT_THROW(recorder_.getString(0), std::logic_error);
  EXPECT_THROW(recorder_.getBool(0), std::logic_error);
  EXPECT_THROW(recorder_.getDate(0), std::logic_error);
  EXPECT_THROW(recorder_.getDateTime(0), std::logic_error);
  EXPECT_THROW(recorder_.getBlob(0), std::logic_error);
}

}  // namespace

}  // namespace mox_test
