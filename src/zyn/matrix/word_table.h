#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "zyn/matrix/large_allocator.h"

/// Spreads the bits of a word over all others.
inline std::uint64_t mixWord(std::uint64_t word) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;
  __extension__ using Wide = unsigned __int128;
  Wide const product = static_cast<Wide>(word ^ (word >> 32U)) * kOdd;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

/// Drawn once a process, so that nobody can prepare data whose keys all fall on one place. It
/// decides how long a look-up takes and nothing else.
std::uint64_t hashSeed();

/// Gives words numbers of 32 bits. Open addressing, a step of one place; the word stands in the
/// slot, so that most probes touch one line of memory and growing touches nothing else. `Word` has
/// 32 bits or 64: half the memory, or words of any kind.
template <class Word>
class WordTableOf {
 public:
  static constexpr std::uint32_t kAbsent = std::numeric_limits<std::uint32_t>::max();

  /// The word's number; `number()` gives one to a word that has none yet. `same(number)` decides
  /// between different things of one word.
  template <class Same, class Number>
  std::uint32_t findOrAdd(Word word, Same const& same, Number const& number) {
    return findOrAddAt(hashOf(word), word, same, number);
  }

  /// The same where the word's hash is known already.
  template <class Same, class Number>
  std::uint32_t findOrAddAt(std::uint64_t hash, Word word, Same const& same, Number const& number) {
    std::size_t const place = placeFrom(hash & mask_, word, same);
    if (slots_[place].number != kAbsent) {
      return slots_[place].number;
    }
    std::uint32_t const given = number();
    slots_[place] = {word, given};
    if (++used_ * 2 > slots_.size()) {
      grow();
    }
    return given;
  }

  /// Asks memory for the place of a word that will be looked for soon. Whoever looks for many words
  /// asks for some of them ahead, as the place of each is anywhere.
  void prefetch(Word word) const { prefetchAt(hashOf(word)); }
  void prefetchAt(std::uint64_t hash) const { __builtin_prefetch(&slots_[hash & mask_]); }

  /// Words that there are places for.
  std::size_t capacity() const { return slots_.size(); }

  /// Stays the same while the table grows.
  std::uint64_t hashOf(Word word) const { return mixWord(word ^ seed_); }

  /// The number that stands where the word would stand, were there no others: mostly the word's
  /// own.
  std::uint32_t guess(Word word) const { return slots_[homeOf(word)].number; }

  /// The word's number; kAbsent when it has none.
  template <class Same>
  std::uint32_t find(Word word, Same const& same) const {
    return slots_[placeOf(word, same)].number;
  }

 private:
  struct Slot {
    Word word = 0;
    std::uint32_t number = kAbsent;
  };
  using Slots = std::vector<Slot, LargeAllocator<Slot>>;

  std::size_t homeOf(Word word) const { return hashOf(word) & mask_; }

  /// Where the word stands, or would have to.
  template <class Same>
  std::size_t placeOf(Word word, Same const& same) const {
    return placeFrom(homeOf(word), word, same);
  }

  template <class Same>
  std::size_t placeFrom(std::size_t place, Word word, Same const& same) const {
    while (slots_[place].number != kAbsent &&
           !(slots_[place].word == word && same(slots_[place].number))) {
      place = (place + 1) & mask_;
    }
    return place;
  }

  void grow() {
    Slots old(slots_.size() * 2);
    old.swap(slots_);
    mask_ = slots_.size() - 1;
    auto const different = [](std::uint32_t) { return false; };
    for (Slot const& slot : old) {
      if (slot.number != kAbsent) {
        slots_[placeOf(slot.word, different)] = slot;
      }
    }
  }

  Slots slots_ = Slots(1024);  // a power of two, at most half of it used
  std::size_t mask_ = slots_.size() - 1;
  std::size_t used_ = 0;
  std::uint64_t seed_ = hashSeed();
};

using WordTable = WordTableOf<std::uint64_t>;
