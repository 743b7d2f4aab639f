#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/database/mark_places.h"
#include "mox/core/many_values.h"

namespace mox::core {

/// What a kind of database offers for values beyond its marks. Integers can be written as numerals
/// everywhere, and nulls by name.
struct ManyValuesRules {
  std::size_t mostMarks = 0;
  bool bindsLists = false;          // one mark takes all values of an "in" list
  bool writesDoubles = false;       // its numerals give every double back exactly
  bool writesHexadecimals = false;  // a text can be written as the numeral of its bytes
};

ManyValuesRules sqliteManyValues();
ManyValuesRules mariadbManyValues();

/// How a value reaches the database.
enum class ValueRoad : std::uint8_t { kMark, kList, kNumeral, kHexadecimal, kNull };

/// Finds a road for every value of a statement. Values keep their marks where these are enough.
/// Else whole lists are bound to one mark each, then numbers are written as numerals, then nulls by
/// name, then texts as hexadecimal numerals; each time run by run, the longest first, and no more
/// runs than needed.
class ValuePlacement {
 public:
  /// `kinds` has one entry a mark.
  ValuePlacement(MarkPlaces const& marks, std::vector<moxValueKind> const& kinds,
                 ManyValuesRules const& rules);

  /// Whether the database can take the values so.
  bool fits() const { return marksNeeded_ <= rules_.mostMarks; }

  ValueRoad roadOf(std::size_t mark) const { return roads_[mark]; }

  /// A sentence for people; empty where every value has a mark of its own.
  std::string describe() const;

 private:
  void bindLists(std::vector<MarkRun> const& runs);
  void write(std::vector<MarkRun> const& runs, std::vector<moxValueKind> const& kinds,
             moxValueKind kind, ValueRoad road);
  std::size_t countOn(ValueRoad road) const;

  ManyValuesRules rules_;
  std::vector<ValueRoad> roads_;
  std::size_t marksNeeded_;
  std::size_t lists_ = 0;  // that are bound to one mark
};

}  // namespace mox::core
