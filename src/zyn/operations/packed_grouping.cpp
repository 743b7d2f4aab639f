#include "zyn/operations/packed_grouping.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "zyn/matrix/large_allocator.h"
#include "zyn/matrix/word_table.h"
#include "zyn/operations/packed_keys.h"

namespace {

constexpr std::uint32_t kBlock = PackedKeys::kBlock;
constexpr std::uint32_t kAbsent = WordTable::kAbsent;

using Words = std::array<std::uint64_t, kBlock>;
using Groups = std::array<std::uint32_t, kBlock>;
using FirstRows = std::vector<std::uint32_t>;

std::uint32_t newGroup(FirstRows& firstRow, std::uint32_t row) {
  firstRow.push_back(row);
  return static_cast<std::uint32_t>(firstRow.size() - 1);
}

/// Asks memory for what a row needs some rows before the row is looked at. To ask for a whole block
/// first would take more lines than the nearest cache has.
template <class Ask, class Look>
void eachRowWithAhead(std::uint32_t count, Ask const& ask, Look const& look) {
  constexpr std::uint32_t kAhead = 32;
  for (std::uint32_t i = 0; i < std::min(kAhead, count); ++i) {
    ask(i);
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    ask(std::min(i + kAhead, count - 1));
    look(i);
  }
}

/// Groups by their words themselves: an array with a place for each word.
class DirectTable {
 public:
  explicit DirectTable(unsigned int bits) : groups_(std::size_t{1} << bits, kAbsent) {}

  void find(Words const& words, std::uint32_t from, std::uint32_t count, FirstRows& firstRow,
            Groups& groups) {
    if (isLarge()) {
      eachRowWithAhead(
          count, [&](std::uint32_t i) { __builtin_prefetch(&groups_[words[i]]); },
          [&](std::uint32_t i) { groups[i] = groupOf(words[i], from + i, firstRow); });
      return;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
      groups[i] = groupOf(words[i], from + i, firstRow);
    }
  }

 private:
  bool isLarge() const { return groups_.size() > kNear; }

  [[gnu::always_inline]] std::uint32_t groupOf(std::uint64_t word, std::uint32_t row,
                                               FirstRows& firstRow) {
    std::uint32_t& group = groups_[word];
    if (group == kAbsent) {
      group = newGroup(firstRow, row);
    }
    return group;
  }

  static constexpr std::size_t kNear = std::size_t{1} << 14;  // the nearest cache holds them

  std::vector<std::uint32_t, LargeAllocator<std::uint32_t>> groups_;
};

/// `Word` is as wide as the words are.
template <class Word>
class HashTable {
 public:
  void find(Words const& words, std::uint32_t from, std::uint32_t count, FirstRows& firstRow,
            Groups& groups) {
    if (table_.capacity() <= kNear) {
      for (std::uint32_t i = 0; i < count; ++i) {
        auto const word = static_cast<Word>(words[i]);
        groups[i] = groupOf(table_.hashOf(word), word, from + i, firstRow);
      }
    } else {
      findFar(words, from, count, firstRow, groups);
    }
  }

 private:
  static constexpr std::size_t kNear = std::size_t{1} << 15;  // slots that the nearer caches hold

  /// Asks memory for the places of some rows ahead, as each is anywhere.
  [[gnu::noinline]] void findFar(Words const& words, std::uint32_t from, std::uint32_t count,
                                 FirstRows& firstRow, Groups& groups) {
    std::array<std::uint64_t, kBlock> hashes;
    for (std::uint32_t i = 0; i < count; ++i) {
      hashes[i] = table_.hashOf(static_cast<Word>(words[i]));
    }
    eachRowWithAhead(
        count, [&](std::uint32_t i) { table_.prefetchAt(hashes[i]); },
        [&](std::uint32_t i) {
          groups[i] = groupOf(hashes[i], static_cast<Word>(words[i]), from + i, firstRow);
        });
  }

  [[gnu::always_inline]] std::uint32_t groupOf(std::uint64_t hash, Word word, std::uint32_t row,
                                               FirstRows& firstRow) {
    return table_.findOrAddAt(
        hash, word, [](std::uint32_t) { return true; }, [&] { return newGroup(firstRow, row); });
  }

  WordTableOf<Word> table_;
};

/// False when the keys differ in more bits than was guessed.
template <class Table>
bool groupBy(Table table, PackedKeys const& keys, std::uint32_t rows, GroupTaker& taker,
             FirstRows& firstRow) {
  Words words;
  Groups groups;
  for (std::uint32_t from = 0; from < rows; from += kBlock) {
    std::uint32_t const count = std::min(kBlock, rows - from);
    if (!keys.words(from, count, words.data())) {
      return false;
    }
    table.find(words, from, count, firstRow, groups);
    taker.take(from, count, groups.data(), static_cast<std::uint32_t>(firstRow.size()));
  }
  return true;
}

/// An array with a place for each word is worth its memory.
bool isDense(PackedKeys const& keys, std::uint32_t rows) {
  constexpr unsigned int kMostBits = 22;
  constexpr std::size_t kFewWords = 4096;
  return keys.bits() <= kMostBits &&
         (std::size_t{1} << keys.bits()) <= std::max<std::size_t>(rows, kFewWords);
}

bool groupBy(PackedKeys const& keys, std::uint32_t rows, GroupTaker& taker, FirstRows& firstRow) {
  constexpr unsigned int kNarrowBits = 32;
  if (isDense(keys, rows)) {
    return groupBy(DirectTable(keys.bits()), keys, rows, taker, firstRow);
  }
  return keys.bits() <= kNarrowBits
             ? groupBy(HashTable<std::uint32_t>(), keys, rows, taker, firstRow)
             : groupBy(HashTable<std::uint64_t>(), keys, rows, taker, firstRow);
}

}  // namespace

bool groupPackedRows(std::vector<MatrixColumn> const& keys, std::uint32_t rows, GroupTaker& taker,
                     FirstRows& firstRow) {
  PackedKeys packed(keys, rows);
  if (!packed.isPossible()) {
    return false;
  }
  if (groupBy(packed, rows, taker, firstRow)) {
    return true;
  }
  taker.restart();
  firstRow.clear();
  packed.lookAtAll();
  return packed.isPossible() && groupBy(packed, rows, taker, firstRow);
}
