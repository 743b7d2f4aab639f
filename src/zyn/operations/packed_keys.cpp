#include "zyn/operations/packed_keys.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>

#include "mox/core/datetime.h"
#include "zyn/matrix/bit_compress.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/text_ref.h"

namespace {

constexpr std::uint32_t kSamples = 16;  // blocks that are looked at for the first guess

using Raw = std::array<std::uint64_t, PackedKeys::kBlock>;

std::uint64_t wordAt(TextRef const& text, std::size_t place) {
  std::uint64_t word = 0;
  std::memcpy(&word, reinterpret_cast<char const*>(&text) + place, sizeof word);
  return word;
}

/// Whether a text stands elsewhere, so that its reference does not tell it from others.
bool someIsLong(TextRef const* texts, std::uint32_t count) {
  std::uint32_t longest = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    longest = std::max(longest, texts[i].size());
  }
  return longest > TextRef::kInlineBytes;
}

void blankNulls(NullBits const& nulls, std::uint32_t from, std::uint32_t count,
                std::uint64_t* raw) {
  for (std::uint32_t i = 0; i < count; ++i) {
    raw[i] = nulls.test(from + i) ? 0 : raw[i];
  }
}

bool isRun(std::uint64_t mask) {
  std::uint64_t const low = mask >> std::countr_zero(mask);
  return (low & (low + 1)) == 0;
}

}  // namespace

PackedKeys::PackedKeys(std::vector<MatrixColumn> const& keys, std::uint32_t rows) : rows_(rows) {
  for (auto const& key : keys) {
    addLanes(*key);
  }
  std::uint32_t const step = std::max(rows / kSamples, std::uint32_t{1});
  for (std::uint64_t from = 0; isPossible_ && from < rows; from += step) {
    auto const start = static_cast<std::uint32_t>(from);
    lookAt(start, std::min(kBlock, rows - start));
  }
  assignShifts();
}

void PackedKeys::addLanes(moxDataMatrixColumn const& key) {
  withStorage(key, [&]<class T>(ColumnStorage<T> const& column) {
    NullBits const* const nulls = column.nulls.any() ? &column.nulls : nullptr;
    void const* const cells = column.values.cells();
    if constexpr (std::is_same_v<T, int>) {
      lanes_.push_back({Part::kInt, cells, nulls});
    } else if constexpr (std::is_same_v<T, datetime_t>) {
      lanes_.push_back({Part::kDate, cells, nulls});
    } else if constexpr (std::is_same_v<T, std::string>) {
      lanes_.push_back({Part::kTextHead, cells, nulls});
      lanes_.push_back({Part::kTextTail, cells, nulls});
    } else {
      isPossible_ = false;
    }
    if (nulls != nullptr) {
      lanes_.push_back({Part::kIsNull, nullptr, nulls});
    }
  });
}

void PackedKeys::lookAtAll() {
  for (std::uint32_t from = 0; isPossible_ && from < rows_; from += kBlock) {
    lookAt(from, std::min(kBlock, rows_ - from));
  }
  assignShifts();
}

void PackedKeys::lookAt(std::uint32_t from, std::uint32_t count) {
  Raw raw;
  for (Lane& lane : lanes_) {
    if (!fetch(lane, from, count, raw.data())) {
      isPossible_ = false;
      return;
    }
    if (from == 0) {
      lane.base = raw[0];
    }
    for (std::uint32_t i = 0; i < count; ++i) {
      lane.varying |= raw[i] ^ lane.base;
    }
  }
}

void PackedKeys::assignShifts() {
  bits_ = 0;
  for (Lane& lane : lanes_) {
    lane.shift = bits_;
    bits_ += static_cast<unsigned int>(std::popcount(lane.varying));
  }
  constexpr unsigned int kIntBits = 32;
  isOneInt_ = lanes_.size() == 1 && lanes_[0].part == Part::kInt && bits_ == kIntBits;
}

bool PackedKeys::words(std::uint32_t from, std::uint32_t count, std::uint64_t* words) const {
  if (isOneInt_) {
    return fetch(lanes_[0], from, count, words);
  }
  Raw raw;
  std::fill_n(words, count, 0);
  for (Lane const& lane : lanes_) {
    if (!fetch(lane, from, count, raw.data())) {
      return false;
    }
    if (!mergeBits(lane, raw.data(), count, words)) {
      return false;
    }
  }
  return true;
}

/// Brings the lane's varying bits to their place in the words. False when others vary.
bool PackedKeys::mergeBits(Lane const& lane, std::uint64_t* raw, std::uint32_t count,
                           std::uint64_t* words) {
  std::uint64_t varying = 0;
  if (lane.varying == 0 || isRun(lane.varying)) {
    auto const low =
        lane.varying == 0 ? 0U : static_cast<unsigned int>(std::countr_zero(lane.varying));
    std::uint64_t const bits = lane.varying >> low;
    unsigned int const shift = lane.shift % kWordBits;
    for (std::uint32_t i = 0; i < count; ++i) {
      varying |= raw[i] ^ lane.base;
      words[i] |= ((raw[i] >> low) & bits) << shift;
    }
    return (varying & ~lane.varying) == 0;
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    varying |= raw[i] ^ lane.base;
  }
  BitCompress(lane.varying).apply(raw, count);
  for (std::uint32_t i = 0; i < count; ++i) {
    words[i] |= raw[i] << lane.shift;
  }
  return (varying & ~lane.varying) == 0;
}

/// False for a text that does not stand in its reference. Under a null stands 0.
bool PackedKeys::fetch(Lane const& lane, std::uint32_t from, std::uint32_t count,
                       std::uint64_t* raw) {
  auto const fill = [&]<class Cell>(std::type_identity<Cell>, auto const& wordOf) {
    auto const* const cells = static_cast<Cell const*>(lane.cells) + from;
    for (std::uint32_t i = 0; i < count; ++i) {
      raw[i] = wordOf(cells[i]);
    }
  };
  switch (lane.part) {
    case Part::kInt:
      fill(std::type_identity<int>{},
           [](int value) { return std::uint64_t{static_cast<std::uint32_t>(value)}; });
      break;
    case Part::kDate:
      fill(std::type_identity<datetime_t>{},
           [](datetime_t const& value) { return static_cast<std::uint64_t>(value.asTime_t()); });
      break;
    case Part::kTextHead:
      if (someIsLong(static_cast<TextRef const*>(lane.cells) + from, count)) {
        return false;
      }
      fill(std::type_identity<TextRef>{}, [](TextRef const& text) { return wordAt(text, 0); });
      break;
    case Part::kTextTail:
      fill(std::type_identity<TextRef>{}, [](TextRef const& text) { return wordAt(text, 8); });
      break;
    case Part::kIsNull:
      for (std::uint32_t i = 0; i < count; ++i) {
        raw[i] = lane.nulls->test(from + i) ? 1 : 0;
      }
      return true;
  }
  if (lane.nulls != nullptr) {
    blankNulls(*lane.nulls, from, count, raw);
  }
  return true;
}
