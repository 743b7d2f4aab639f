#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace mox::core {

/// Marks in round brackets that hold nothing else: "(?, ?, ?)".
struct MarkRun {
  std::size_t first = 0;   // number of its first mark, from 0
  std::size_t count = 0;   // of its marks
  bool isInList = false;   // stands behind the word "in"
  std::size_t behind = 0;  // place in the text behind its last mark
};

/// Where the marks of a statement stand.
struct MarkPlaces {
  std::vector<std::size_t> places;  // of each mark in the text
  std::vector<MarkRun> runs;        // in the order of the text
};

/// The marks outside quotes and comments. A single mark in brackets is a run only where a value
/// must stand, behind "in", "values" or another bracket's comma: elsewhere a number could mean
/// something else than a value.
MarkPlaces findMarks(std::string_view statement);

}  // namespace mox::core
