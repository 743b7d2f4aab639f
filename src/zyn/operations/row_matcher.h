#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zyn/operations/join_index.h"

/// Which rows of a source each row of another table meets.
struct RowMatches {
  RowOrder listOf;  // of each row: its list, or JoinIndex::kNone
  std::shared_ptr<RowLists const> lists;
};

/// Finds the rows of a source whose keys compare equal to keys that stand in another table: by
/// hashing, and where a NaN is in the way, which equals every number, row by row, for the rows that
/// have one and for no others.
class RowMatcher {
 public:
  using Keys = JoinIndex::Keys;

  /// Over the first `rows` rows; there is a key at least. The keys must outlive it.
  RowMatcher(Keys keys, std::uint32_t rows);

  /// Of the first `rows` rows of a table; the keys are of the same kinds. Throws moxError as soon
  /// as there are more matches than a result may have rows.
  RowMatches match(Keys const& keys, std::uint32_t rows) const;

 private:
  std::uint32_t sourceRowOf(std::uint32_t ordinaryRow) const;
  RowMatches matchAround(Keys const& keys, std::uint32_t rows) const;

  Keys const keys_;
  std::uint32_t const rows_;
  RowOrder unordinary_;               // ascending: those with a NaN
  RowOrder ordinary_;                 // the others; not kept when there is no NaN
  Keys ordinaryKeys_;                 // theirs; not kept either
  std::unique_ptr<JoinIndex> index_;  // of the ordinary rows
};
