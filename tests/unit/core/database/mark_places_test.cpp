#include "core/database/mark_places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace mox::core {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Each run as "first+count", with "in" where it is a list.
std::vector<std::string> runs(std::string_view sql) {
  std::vector<std::string> texts;
  for (auto const& run : findMarks(sql).runs) {
    texts.push_back(std::to_string(run.first) + "+" + std::to_string(run.count) +
                    (run.isInList ? "in" : ""));
  }
  return texts;
}

TEST(MarkPlaces, MarksAreFoundOutsideQuotesAndComments) {
  std::string const sql = "select '?', \"?\", `?`, ? /* ? */ from t -- ?\nwhere a = ? # ?";
  auto const found = findMarks(sql);
  EXPECT_THAT(found.places, ElementsAre(sql.find("? /*"), sql.find("? # ")));
  EXPECT_THAT(found.runs, IsEmpty());
}

TEST(MarkPlaces, ListsAndRowsAreRuns) {
  EXPECT_THAT(runs("select ? from t where a in (?, ?,?) and b not IN(?)"),
              ElementsAre("1+3in", "4+1in"));
  EXPECT_THAT(runs("insert into t values (?, ?), (?,?)"), ElementsAre("0+2", "2+2"));
  EXPECT_THAT(runs("insert into t values (?), (?)"), ElementsAre("0+1", "1+1"));
  EXPECT_THAT(runs("select coalesce(?, ?)"), ElementsAre("0+2"));
}

TEST(MarkPlaces, ARunEndsBehindItsLastMark) {
  std::string const sql = "a in (?, /* x */ ? )";
  auto const found = findMarks(sql);
  ASSERT_EQ(found.runs.size(), 1U);
  EXPECT_EQ(found.runs[0].behind, sql.rfind('?') + 1);
}

TEST(MarkPlaces, WhatIsNotMarksAloneIsNoRun) {
  EXPECT_THAT(runs("select * from t where a in (1, ?, ?)"), IsEmpty());
  EXPECT_THAT(runs("select * from t where a in (?, ?, 1)"), IsEmpty());
  EXPECT_THAT(runs("select * from t where a in (?, -?)"), IsEmpty());
  EXPECT_THAT(runs("select * from t where a in (?,)"), IsEmpty());
  EXPECT_THAT(runs("select * from t where a in (?, ?"), IsEmpty());
  EXPECT_THAT(runs("select * from t where (a = ? or b = ?) order by (?)"), IsEmpty());
  EXPECT_THAT(runs("select * from t limit ?, ?"), IsEmpty());
  EXPECT_THAT(runs("(?"), IsEmpty());
  EXPECT_THAT(runs(""), IsEmpty());
}

}  // namespace
}  // namespace mox::core
