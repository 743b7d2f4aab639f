// How a text cell is best stored: three ways to hold a million texts, over what tables do with
// them. Every case checks its own result and reports the heap that the stored texts take.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "zyn/matrix/column_storage.h"

namespace {

constexpr std::uint32_t kRows = 1'000'000;

/// A string object a cell; the library keeps up to 15 bytes in it.
class StringPerCell {
 public:
  void push(std::string_view text) { cells_.emplace_back(text); }
  std::string_view at(std::uint32_t row) const { return cells_[row]; }
  bool less(std::uint32_t left, std::uint32_t right) const { return cells_[left] < cells_[right]; }
  bool same(std::uint32_t left, std::uint32_t right) const { return cells_[left] == cells_[right]; }

  StringPerCell gathered(std::vector<std::uint32_t> const& rows) const {
    StringPerCell target;
    target.cells_.reserve(rows.size());
    for (std::uint32_t const row : rows) {
      target.cells_.push_back(cells_[row]);
    }
    return target;
  }

 private:
  std::vector<std::string> cells_;
};

/// All bytes one after the other, and where each text begins.
class OffsetsAndBytes {
 public:
  void push(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    ends_.push_back(bytes_.size());
  }
  std::string_view at(std::uint32_t row) const {
    return {bytes_.data() + ends_[row], ends_[row + 1] - ends_[row]};
  }
  bool less(std::uint32_t left, std::uint32_t right) const { return at(left) < at(right); }
  bool same(std::uint32_t left, std::uint32_t right) const { return at(left) == at(right); }

  OffsetsAndBytes gathered(std::vector<std::uint32_t> const& rows) const {
    OffsetsAndBytes target;
    target.bytes_.reserve(bytes_.size());
    target.ends_.reserve(ends_.size());
    for (std::uint32_t const row : rows) {
      target.push(at(row));
    }
    return target;
  }

 private:
  std::vector<char> bytes_;
  std::vector<std::uint64_t> ends_ = {0};
};

/// The module's own: references of 16 bytes, and an arena for what does not fit in them.
class References {
 public:
  void push(std::string_view text) { values_.push(text); }
  std::string_view at(std::uint32_t row) const { return values_.cells()[row].view(); }
  bool less(std::uint32_t left, std::uint32_t right) const {
    return TextRef::compare(values_.cells()[left], values_.cells()[right]) < 0;
  }
  bool same(std::uint32_t left, std::uint32_t right) const {
    return values_.cells()[left] == values_.cells()[right];
  }

  References gathered(std::vector<std::uint32_t> const& rows) const {
    References target;
    auto& cells = target.values_.array();
    cells.reserve(rows.size());
    for (std::uint32_t const row : rows) {
      cells.push_back(values_.cells()[row]);
    }
    target.values_.arena().share(values_.arena());
    return target;
  }

  References() = default;
  References(References&&) noexcept = default;

 private:
  TextValues values_;
};

/// The rows of a result as a database hands them over: bytes somewhere, and views of them.
struct Source {
  Source(std::size_t length, std::uint32_t distinct) {
    std::mt19937_64 random(20240305);
    bytes.reserve(kRows * length);
    for (std::uint32_t row = 0; row < kRows; ++row) {
      std::uint64_t number = random() % distinct;
      for (std::size_t i = 0; i < length; ++i) {
        bytes.push_back(static_cast<char>('a' + number % 23));
        number = number * 6364136223846793005U + 1442695040888963407U;
        number ^= number >> 29U;
      }
    }
    for (std::uint32_t row = 0; row < kRows; ++row) {
      views.emplace_back(bytes.data() + row * length, length);
    }
  }

  std::string bytes;
  std::vector<std::string_view> views;
};

Source const& sourceOf(benchmark::State const& state) {
  static Source const kShort(10, kRows);
  static Source const kLong(30, kRows);
  return state.range(0) == 10 ? kShort : kLong;
}

Source const& repeatedSourceOf(benchmark::State const& state) {
  static Source const kShort(10, 1000);
  static Source const kLong(30, 1000);
  return state.range(0) == 10 ? kShort : kLong;
}

template <class Store>
Store loaded(Source const& source) {
  Store store;
  for (std::string_view const text : source.views) {
    store.push(text);
  }
  return store;
}

std::size_t heapInUse() {
  auto const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

template <class Store>
void load(benchmark::State& state) {
  Source const& source = sourceOf(state);
  std::size_t bytes = 0;
  for (auto _ : state) {
    std::size_t const before = heapInUse();
    Store const store = loaded<Store>(source);
    bytes = heapInUse() - before;
    if (store.at(kRows / 2) != source.views[kRows / 2]) {
      state.SkipWithError("a text was stored wrongly");
    }
  }
  state.counters["bytesPerCell"] = static_cast<double>(bytes) / kRows;
}

template <class Store>
void sortByText(benchmark::State& state) {
  Store const store = loaded<Store>(sourceOf(state));
  for (auto _ : state) {
    std::vector<std::uint32_t> order(kRows);
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
      return store.less(left, right);
    });
    Store const sorted = store.gathered(order);
    state.PauseTiming();
    for (std::uint32_t row = 1; row < kRows; ++row) {
      if (sorted.at(row) < sorted.at(row - 1)) {
        state.SkipWithError("the result is not sorted");
      }
    }
    state.ResumeTiming();
  }
}

/// Gives each row the number of its text, through a table of open addressing.
template <class Store>
std::vector<std::uint32_t> groupNumbers(Store const& store, std::uint32_t& groups) {
  std::size_t const mask = (std::size_t{1} << 21U) - 1;
  std::vector<std::uint32_t> firstRow(mask + 1, kRows);
  std::vector<std::uint32_t> numbers(kRows);
  for (std::uint32_t row = 0; row < kRows; ++row) {
    std::size_t place = std::hash<std::string_view>()(store.at(row)) & mask;
    while (firstRow[place] != kRows && !store.same(firstRow[place], row)) {
      place = (place + 1) & mask;
    }
    bool const first = firstRow[place] == kRows;
    firstRow[place] = first ? row : firstRow[place];
    numbers[row] = first ? groups++ : numbers[firstRow[place]];
  }
  return numbers;
}

template <class Store>
void groupByText(benchmark::State& state, Source const& source, std::uint32_t expected) {
  Store const store = loaded<Store>(source);
  for (auto _ : state) {
    std::uint32_t groups = 0;
    benchmark::DoNotOptimize(groupNumbers(store, groups));
    if (groups > expected || groups < expected / 2) {
      state.SkipWithError("not the number of groups that the data has");
    }
  }
}

template <class Store>
void groupDistinct(benchmark::State& state) {
  groupByText<Store>(state, sourceOf(state), kRows);
}

template <class Store>
void groupRepeated(benchmark::State& state) {
  groupByText<Store>(state, repeatedSourceOf(state), 1000);
}

}  // namespace

#define TEXT_CASE(name)                                                                       \
  BENCHMARK_TEMPLATE(name, StringPerCell)->Arg(10)->Arg(30)->Unit(benchmark::kMillisecond);   \
  BENCHMARK_TEMPLATE(name, OffsetsAndBytes)->Arg(10)->Arg(30)->Unit(benchmark::kMillisecond); \
  BENCHMARK_TEMPLATE(name, References)->Arg(10)->Arg(30)->Unit(benchmark::kMillisecond)

TEXT_CASE(load);
TEXT_CASE(sortByText);
TEXT_CASE(groupDistinct);
TEXT_CASE(groupRepeated);
