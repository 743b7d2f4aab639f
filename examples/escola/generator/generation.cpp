#include "escola/generator/generation.h"

#include <array>
#include <charconv>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include "escola/generator/cohort.h"
#include "escola/generator/network_rows.h"

namespace escola {

namespace {

constexpr std::array<std::pair<std::string_view, Scale>, 5> kNamedScales{{
    {"tiny", {10, 0}},
    {"small", {20, 0}},
    {"demo", {40, 0}},
    {"medium", {0, 1'000'000}},
    {"large", {0, 10'000'000}},
}};

bool isComplete(Scale const& scale, Context const& context, int cohorts) {
  return scale.cohorts != 0 ? cohorts >= scale.cohorts : context.grades >= scale.grades;
}

}  // namespace

Scale parseScale(std::string_view text) {
  for (auto const& [name, scale] : kNamedScales) {
    if (name == text) {
      return scale;
    }
  }
  std::int64_t grades = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), grades);
  if (error != std::errc() || end != text.data() + text.size() || grades < 1 ||
      grades > kMostGrades) {
    throw std::invalid_argument(
        "scale '" + std::string(text) +
        "' is none of tiny, small, demo, medium, large, and no number of grades from 1 to " +
        std::to_string(kMostGrades));
  }
  return {0, grades};
}

void generate(Settings const& settings, Scale const& scale, RowSink& sink,
              Progress const& progress) {
  Context context{settings, SchoolCalendar(settings.today), sink,
                  scale.grades != 0 ? scale.grades : std::numeric_limits<std::int64_t>::max()};
  writeNetworkRows(context);
  CohortWriter cohorts(context);
  for (int count = 0; !isComplete(scale, context, count); ++count) {
    cohorts.writeNext();
    if (progress) {
      progress(context.grades, scale.grades);
    }
  }
}

}  // namespace escola
