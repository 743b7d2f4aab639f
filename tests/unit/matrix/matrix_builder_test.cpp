#include "support/matrix_builder.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/test_host.h"

using namespace mox_test;

namespace {

class MatrixBuilder : public testing::Test {
  TestHost host_;
};

TEST_F(MatrixBuilder, MakesEveryKindOfColumn) {
  auto const made = matrix({{"i", ints(1, null)},
                            {"d", doubles(0.5, NAN)},
                            {"t", texts("a", null)},
                            {"m", dates("2024-03-05", "2024-03-05 10:20:30")},
                            {"b", blobs("xyz", null)}});

  EXPECT_EQ(made->columnCount(), 5U);
  EXPECT_EQ(made->rowCount(), 2U);
  EXPECT_EQ(asText(*made),
            "  i:Int  d:Double  t:Text  m:Date               b:Blob   \n"
            "  1      0.5       \"a\"     2024-03-05 00:00:00  blob\"xyz\"\n"
            "  null   nan       null    2024-03-05 10:20:30  null     \n");
}

TEST_F(MatrixBuilder, TakesVectorsOfOptionals) {
  std::vector<std::optional<int>> const cells = {1, std::nullopt};

  EXPECT_THAT(matrix({{"k", ints(cells)}}), isMatrix({{"k", ints(1, null)}}));
}

TEST_F(MatrixBuilder, ComparisonSaysWhichCellDiffers) {
  auto const result = sameMatrix(*matrix({{"k", ints(1, 2)}}), *matrix({{"k", ints(1, null)}}));

  EXPECT_FALSE(result);
  EXPECT_THAT(result.message(),
              testing::StartsWith("column 0 \"k\", row 1: 2, expected null\nactual:\n"));
}

TEST_F(MatrixBuilder, TheMatcherTellsWhetherAndWhy) {
  testing::Matcher<std::shared_ptr<moxDataMatrix>> const matcher = isMatrix({{"k", ints(1, null)}});
  EXPECT_TRUE(matcher.Matches(matrix({{"k", ints(1, null)}})));
  EXPECT_FALSE(matcher.Matches(matrix({{"k", ints(1, 2)}})));
  EXPECT_FALSE(matcher.Matches(nullptr));

  testing::StringMatchResultListener why;
  matcher.MatchAndExplain(matrix({{"k", ints(1, 2)}}), &why);
  EXPECT_THAT(why.str(), testing::StartsWith("which differs:\ncolumn 0 \"k\", row 1: 2, "));
  testing::StringMatchResultListener whyNot;
  matcher.MatchAndExplain(nullptr, &whyNot);
  EXPECT_EQ(whyNot.str(), "which is no matrix but an empty pointer");
}

TEST_F(MatrixBuilder, ComparisonSeesNamesKindsLengthsAndColumns) {
  auto const expected = matrix({{"k", ints(1)}});

  EXPECT_FALSE(sameMatrix(*matrix({{"K", ints(1)}}), *expected));
  EXPECT_FALSE(sameMatrix(*matrix({{"k", doubles(1)}}), *expected));
  EXPECT_FALSE(sameMatrix(*matrix({{"k", ints(1, 1)}}), *expected));
  EXPECT_FALSE(sameMatrix(*matrix({{"k", ints(1)}, {"l", ints(1)}}), *expected));
  EXPECT_TRUE(sameMatrix(*matrix({{"k", ints(1)}}), *expected));
}

TEST_F(MatrixBuilder, ComparisonTakesNaNForNaNAndBlobsByTheirBytes) {
  EXPECT_THAT(matrix({{"d", doubles(NAN)}}), isMatrix({{"d", doubles(NAN)}}));
  EXPECT_THAT(matrix({{"b", blobs("x")}}), isMatrix({{"b", blobs("x")}}));
  EXPECT_FALSE(sameMatrix(*matrix({{"b", blobs("x")}}), *matrix({{"b", blobs("y")}})));
}

}  // namespace
