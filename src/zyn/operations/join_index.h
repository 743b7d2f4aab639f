#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zyn/matrix/column_copy.h"

/// The rows of a table by lists, in ascending order within each. Without `starts` each list has one
/// row, the one of the list's own number: then nothing needs to be stored.
struct RowLists {
  static constexpr std::uint32_t kNoList = UINT32_MAX;

  std::vector<std::uint32_t> starts;  // where each list's rows begin, and the end of the last
  std::vector<std::uint32_t> rows;

  bool areSingleRows() const { return starts.empty(); }

  std::uint32_t front(std::uint32_t list) const {
    return areSingleRows() ? list : rows[starts[list]];
  }

  /// Hands over the rows of a list one after the other; none for a list that there is not.
  template <class Use>
  void each(std::uint32_t list, Use const& use) const {
    if (list == kNoList) {
      return;
    }
    if (areSingleRows()) {
      use(list);
      return;
    }
    for (std::uint32_t i = starts[list]; i < starts[list + 1]; ++i) {
      use(rows[i]);
    }
  }
};

/// Finds rows of one table by keys that stand in another. Keys are the same where
/// moxIterator::compare gives 0: null is a value like any other, and -0.0 is 0.0. There must be no
/// NaN, which would be the same as every number. Refers to the key columns, which must outlive it.
class JoinIndex {
 public:
  static constexpr std::uint32_t kNone = RowLists::kNoList;

  /// The module's own columns.
  using Keys = std::vector<MatrixColumn>;

  /// Of the first `rows` rows; there is a key at least.
  JoinIndex(Keys const& keys, std::uint32_t rows);
  ~JoinIndex();
  JoinIndex(JoinIndex const&) = delete;
  JoinIndex& operator=(JoinIndex const&) = delete;

  /// For each of the first `rows` rows the number of the list of rows with the same key; kNone
  /// where there is none. The keys are of the same kinds as the index's own.
  RowOrder find(Keys const& keys, std::uint32_t rows) const;

  /// Lives on without the index.
  std::shared_ptr<RowLists const> lists() const { return lists_; }

  /// What is known of one key; public for those that implement it.
  class KeyNumbers;

 private:
  class Pairs;

  RowOrder number(Keys const& keys, std::uint32_t rows);

  std::vector<std::unique_ptr<KeyNumbers>> keys_;  // one a key
  std::vector<std::unique_ptr<Pairs>> pairs_;      // for the second key on
  std::shared_ptr<RowLists> lists_;
};
