#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "zyn/matrix/large_allocator.h"
#include "zyn/matrix/word_table.h"

/// Numbers words from 0 in the order in which they come, for joins: words of 32 bits take slots of
/// eight bytes, so that eight of them share a line of memory, and the table lies in large pages. It
/// is filled once and then asked far more often than WordTable, which counts groups on the way.
template <class Word>
class WordNumbers {
 public:
  static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

  std::size_t homeOf(Word word) const { return mixWord(word ^ seed_) & mask_; }

  /// Asks memory for a place that will be looked at soon.
  void prefetch(std::size_t home) const { __builtin_prefetch(&slots_[home]); }

  /// The number that stands where the word would stand, were there no others.
  std::uint32_t guess(std::size_t home) const { return slots_[home].number; }

  /// The word's number, or kNone. `same(number)` decides between different things of one word.
  template <class Same>
  std::uint32_t find(Word word, std::size_t home, Same const& same) const {
    return slots_[placeOf(word, home, same)].number;
  }

  /// The word's number, the next one for a word that has none yet.
  template <class Same>
  std::uint32_t findOrAdd(Word word, Same const& same) {
    std::size_t const place = placeOf(word, homeOf(word), same);
    if (slots_[place].number != kNone) {
      return slots_[place].number;
    }
    std::uint32_t const given = used_++;
    slots_[place] = {word, given};
    if (std::size_t{used_} * 2 > slots_.size()) {
      grow();
    }
    return given;
  }

 private:
  struct Slot {
    Word word = 0;
    std::uint32_t number = kNone;
  };
  using Slots = std::vector<Slot, LargeAllocator<Slot>>;

  static constexpr std::size_t kFirstSize = 2048;

  /// Where the word stands, or would have to.
  template <class Same>
  std::size_t placeOf(Word word, std::size_t place, Same const& same) const {
    while (slots_[place].number != kNone &&
           !(slots_[place].word == word && same(slots_[place].number))) {
      place = (place + 1) & mask_;
    }
    return place;
  }

  void grow() {
    Slots old(slots_.size() * 4);
    old.swap(slots_);
    mask_ = slots_.size() - 1;
    auto const different = [](std::uint32_t) { return false; };
    for (Slot const& slot : old) {
      if (slot.number != kNone) {
        slots_[placeOf(slot.word, homeOf(slot.word), different)] = slot;
      }
    }
  }

  Slots slots_ = Slots(kFirstSize);  // a power of two, at most half of it used
  std::size_t mask_ = kFirstSize - 1;
  std::uint32_t used_ = 0;
  std::uint64_t seed_ = hashSeed();
};
