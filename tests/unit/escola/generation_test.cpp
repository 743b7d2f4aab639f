#include "escola/generator/generation.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "escola/generator/checksum.h"
#include "unit/escola/collected_rows.h"

namespace {

using escola::TableId;
using escola_test::collect;
using escola_test::Row;

std::string reportOf(escola::Scale const& scale, escola::Settings const& settings = {}) {
  escola::ChecksumSink sums;
  escola::generate(settings, scale, sums);
  return escola::checksumReport(sums);
}

TEST(EscolaGeneration, TwoRunsGiveTheSameSchool) {
  EXPECT_EQ(reportOf({10, 0}), reportOf({10, 0}));
}

TEST(EscolaGeneration, AnotherSeedGivesAnotherSchool) {
  EXPECT_NE(reportOf({3, 0}, {1}), reportOf({3, 0}, {2}));
}

TEST(EscolaGeneration, ASmallerSchoolIsTheBeginningOfALargerOne) {
  auto const smaller = collect({10, 0});
  auto const larger = collect({14, 0});
  for (escola::Table const& table : escola::allTables()) {
    auto const& rows = smaller.of(table.id);
    ASSERT_LE(rows.size(), larger.of(table.id).size()) << table.name;
    for (std::size_t place = 0; place < rows.size(); ++place) {
      ASSERT_EQ(rows[place], larger.of(table.id)[place]) << table.name << " row " << place;
    }
  }
}

TEST(EscolaGeneration, ANumberOfGradesIsMetExactly) {
  for (int const grades : {1, 999, 5000}) {
    EXPECT_EQ(collect({0, grades}).of(TableId::kGrades).size(), static_cast<std::size_t>(grades));
  }
}

TEST(EscolaGeneration, GradesThatAreCutOffAreTheBeginningOfAll) {
  auto const cut = collect({0, 1234}).of(TableId::kGrades);
  auto const whole = collect({10, 0}).of(TableId::kGrades);
  EXPECT_TRUE(std::equal(cut.begin(), cut.end(), whole.begin()));
}

TEST(EscolaGeneration, TinyHasAFewHundredStudents) {
  std::size_t const students = escola_test::tinySchool().of(TableId::kStudents).size();
  EXPECT_GE(students, 200U);
  EXPECT_LE(students, 400U);
}

TEST(EscolaGeneration, DemoHasSomeTensOfThousandsOfGrades) {
  escola::ChecksumSink sums;
  escola::generate({}, escola::parseScale("demo"), sums);
  EXPECT_GE(sums.of(TableId::kGrades).rows(), 30'000);
  EXPECT_LE(sums.of(TableId::kGrades).rows(), 150'000);
}

TEST(EscolaGeneration, ScaleTellsWhatItTakes) {
  EXPECT_EQ(escola::parseScale("large").grades, 10'000'000);
  EXPECT_EQ(escola::parseScale("4711").grades, 4711);
  for (char const* text : {"", "huge", "0", "-5", "12x", "99999999999999999999", "50000001"}) {
    EXPECT_THROW(escola::parseScale(text), std::invalid_argument) << text;
  }
}

TEST(EscolaGeneration, KeysAscendWithoutAGap) {
  for (escola::Table const& table : escola::allTables()) {
    if (table.keyColumns != 1) {
      continue;
    }
    std::int64_t expected = 1;
    for (Row const& row : escola_test::tinySchool().of(table.id)) {
      ASSERT_EQ(row[0].number, expected++) << table.name;
    }
  }
}

TEST(EscolaGeneration, TheCalendarEndsWithTheGivenDay) {
  escola::Settings settings;
  settings.today = escola::dayOf(2031, 3, 10);
  auto const rows = collect({12, 0}, settings);
  std::int64_t const today = settings.today.time_since_epoch().count();
  for (auto const& [table, name] : {std::pair{TableId::kGrades, "lancada_em"},
                                    {TableId::kEnrolments, "data_matricula"},
                                    {TableId::kEnrolments, "data_saida"}}) {
    for (auto const& value : column(rows, table, name)) {
      EXPECT_TRUE(value.isNull() || value.number <= today) << name;
    }
  }
  for (auto const& value : column(rows, TableId::kClasses, "ano")) {
    EXPECT_GE(value.number, 2022);
    EXPECT_LE(value.number, 2031);
  }
}

TEST(EscolaGeneration, ProgressIsToldWithTheGradesExpected) {
  std::int64_t last = 0;
  escola::ChecksumSink sums;
  escola::generate({}, {0, 3000}, sums, [&last](std::int64_t grades, std::int64_t expected) {
    EXPECT_GT(grades, last);
    EXPECT_EQ(expected, 3000);
    last = grades;
  });
  EXPECT_GE(last, 3000);
}

}  // namespace
