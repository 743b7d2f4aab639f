#include "core/database/value_placement.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace mox::core {
namespace {

// SQLite's own default; Debian's build takes more, but what runs here is to run on every build.
constexpr std::size_t kSqliteMarks = 32766;

// The protocol counts them in 16 bits.
constexpr std::size_t kMariadbMarks = 65535;

std::vector<MarkRun> longestFirst(std::vector<MarkRun> runs) {
  std::stable_sort(runs.begin(), runs.end(),
                   [](MarkRun const& a, MarkRun const& b) { return a.count > b.count; });
  return runs;
}

std::string counted(std::size_t count, char const* one, char const* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

ManyValuesRules sqliteManyValues() {
  return {.mostMarks = kSqliteMarks, .bindsLists = true};
}

ManyValuesRules mariadbManyValues() {
  return {.mostMarks = kMariadbMarks, .writesDoubles = true, .writesHexadecimals = true};
}

ValuePlacement::ValuePlacement(MarkPlaces const& marks, std::vector<moxValueKind> const& kinds,
                               ManyValuesRules const& rules)
    : rules_(rules), roads_(kinds.size(), ValueRoad::kMark), marksNeeded_(kinds.size()) {
  if (fits()) {
    return;
  }
  auto const runs = longestFirst(marks.runs);
  if (rules_.bindsLists) {
    bindLists(runs);
  }
  write(runs, kinds, moxValueKind::kInt, ValueRoad::kNumeral);
  if (rules_.writesDoubles) {
    write(runs, kinds, moxValueKind::kDouble, ValueRoad::kNumeral);
  }
  write(runs, kinds, moxValueKind::kNull, ValueRoad::kNull);
  if (rules_.writesHexadecimals) {
    write(runs, kinds, moxValueKind::kText, ValueRoad::kHexadecimal);
  }
}

void ValuePlacement::bindLists(std::vector<MarkRun> const& runs) {
  for (auto const& run : runs) {
    if (fits()) {
      return;
    }
    if (run.isInList && run.count > 1) {
      std::fill_n(roads_.begin() + static_cast<std::ptrdiff_t>(run.first), run.count,
                  ValueRoad::kList);
      marksNeeded_ -= run.count - 1;
      ++lists_;
    }
  }
}

// A run is written as a whole: a server with tens of thousands of marks spends most of its time on
// them.
void ValuePlacement::write(std::vector<MarkRun> const& runs, std::vector<moxValueKind> const& kinds,
                           moxValueKind kind, ValueRoad road) {
  for (auto const& run : runs) {
    if (fits()) {
      return;
    }
    for (std::size_t mark = run.first; mark < run.first + run.count; ++mark) {
      if (roads_[mark] == ValueRoad::kMark && kinds[mark] == kind) {
        roads_[mark] = road;
        --marksNeeded_;
      }
    }
  }
}

std::size_t ValuePlacement::countOn(ValueRoad road) const {
  return static_cast<std::size_t>(std::count(roads_.begin(), roads_.end(), road));
}

std::string ValuePlacement::describe() const {
  if (roads_.size() <= rules_.mostMarks) {
    return {};
  }
  std::vector<std::string> roads;
  if (auto const count = countOn(ValueRoad::kList); count > 0) {
    roads.push_back(fmt::format("{} are bound as {}", count,
                                counted(lists_, "list of one mark", "lists of one mark each")));
  }
  if (auto const count = countOn(ValueRoad::kNumeral); count > 0) {
    roads.push_back(
        counted(count, "number is written as a numeral", "numbers are written as numerals"));
  }
  if (auto const count = countOn(ValueRoad::kNull); count > 0) {
    roads.push_back(counted(count, "null is written by name", "nulls are written by name"));
  }
  if (auto const count = countOn(ValueRoad::kHexadecimal); count > 0) {
    roads.push_back(counted(count, "text is written as the hexadecimal numeral of its bytes",
                            "texts are written as the hexadecimal numerals of their bytes"));
  }
  if (auto const count = countOn(ValueRoad::kMark); count > 0) {
    roads.push_back(counted(
        count, "is bound to a mark of its own",
        fits() ? "are bound to marks of their own" : "would need a mark of their own each"));
  }
  return fmt::format("{} values are more than the {} marks that the database takes: {}",
                     roads_.size(), rules_.mostMarks, fmt::join(roads, ", "));
}

}  // namespace mox::core
