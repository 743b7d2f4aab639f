#include "zyn/datasources/column_tags.h"

#include <gtest/gtest.h>

TEST(ColumnTags, EachOfTheFiveKindsHasItsTag) {
  EXPECT_EQ(columnTypeOfTag("moxDataMatrixIntColumn"), moxDataMatrixTypes::Int);
  EXPECT_EQ(columnTypeOfTag("moxDataMatrixDoubleColumn"), moxDataMatrixTypes::Double);
  EXPECT_EQ(columnTypeOfTag("moxDataMatrixTextColumn"), moxDataMatrixTypes::Text);
  EXPECT_EQ(columnTypeOfTag("moxDataMatrixDateColumn"), moxDataMatrixTypes::Date);
  EXPECT_EQ(columnTypeOfTag("moxDataMatrixBlobColumn"), moxDataMatrixTypes::Blob);
}

TEST(ColumnTags, TagsAndKindsAreEachOthersReverse) {
  for (auto const& [tag, type] : kColumnTags) {
    ASSERT_STREQ(tagOfColumnType(type), tag);
    EXPECT_EQ(columnTypeOfTag(tag), type);
  }
}

TEST(ColumnTags, UnknownTagsAndNumbersAreTold) {
  EXPECT_EQ(columnTypeOfTag("moxdatamatrixintcolumn"), std::nullopt);
  EXPECT_EQ(columnTypeOfTag(""), std::nullopt);
  EXPECT_EQ(tagOfColumnType(static_cast<moxDataMatrixTypes::Types>(5)), nullptr);
}
