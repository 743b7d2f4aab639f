#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "escola/generator/row_sink.h"
#include "escola/generator/school_calendar.h"

namespace escola {

/// How much is generated: whole cohorts, or exactly so many grades. Cohorts come in an order that
/// does not depend on the size, so a smaller database is the beginning of a larger one.
struct Scale {
  int cohorts = 0;          // 0: as many as the grades need
  std::int64_t grades = 0;  // 0: all grades of the cohorts
};

inline constexpr std::int64_t kMostGrades =
    50'000'000;  // identifiers and registers have room for so many

/// Reads "tiny", "small", "demo", "medium", "large" or a number of grades. Throws
/// std::invalid_argument.
Scale parseScale(std::string_view text);

struct Settings {
  std::uint64_t seed = 1;
  Day today = dayOf(2024, 10, 15);
};

/// Next identifier of each table that grows with the size, and what the rows are made with.
struct Context {
  Settings settings;
  SchoolCalendar calendar;
  RowSink& sink;
  std::int64_t gradeBound;  // no grade with a higher identifier is handed on
  int staff = 0;
  int classes = 0;
  int guardians = 0;
  int students = 0;
  int enrolments = 0;
  int grades = 0;
  int attendance = 0;
  int invoices = 0;
  int payments = 0;
};

/// Called now and then with the grades made so far and the grades expected, 0 when nobody knows.
using Progress = std::function<void(std::int64_t grades, std::int64_t expected)>;

/// Hands all rows of the example to the sink, in constant memory.
void generate(Settings const& settings, Scale const& scale, RowSink& sink,
              Progress const& progress = {});

}  // namespace escola
