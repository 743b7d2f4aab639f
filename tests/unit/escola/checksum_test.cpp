#include "escola/generator/checksum.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using escola::Bytes;
using escola::Cell;
using escola::ChecksumSink;
using escola::Hundredths;
using escola::kNull;
using escola::TableId;

std::uint64_t sumOf(std::initializer_list<Cell> cells) {
  ChecksumSink sums;
  sums.row(TableId::kUserAreas, cells);
  return sums.of(TableId::kUserAreas).value();
}

TEST(EscolaChecksum, ValuesThatLookAlikeAreToldApart) {
  std::set<std::uint64_t> const sums{sumOf({1, kNull}),   sumOf({kNull, 1}),
                                     sumOf({1, ""}),      sumOf({"", 1}),
                                     sumOf({"1", kNull}), sumOf({"ab", "c"}),
                                     sumOf({"a", "bc"}),  sumOf({Bytes{"ab"}, "c"}),
                                     sumOf({0, kNull}),   sumOf({Hundredths{1}, kNull})};
  EXPECT_EQ(sums.size(), 10U);
}

TEST(EscolaChecksum, TheOrderOfRowsCounts) {
  ChecksumSink first;
  first.row(TableId::kUserAreas, {1});
  first.row(TableId::kUserAreas, {2});
  ChecksumSink second;
  second.row(TableId::kUserAreas, {2});
  second.row(TableId::kUserAreas, {1});
  EXPECT_NE(first.of(TableId::kUserAreas).value(), second.of(TableId::kUserAreas).value());
}

TEST(EscolaChecksum, ReportHasALineForEachTableAndOneForAll) {
  ChecksumSink sums;
  sums.row(TableId::kUserAreas, {1});
  std::string const report = escola::checksumReport(sums);
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'),
            static_cast<std::ptrdiff_t>(escola::allTables().size()) + 1);
  EXPECT_NE(report.find("genericos_areasusuario "), std::string::npos);
  EXPECT_NE(report.find("total "), std::string::npos);
}

}  // namespace
