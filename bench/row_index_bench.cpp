// Appending, walking and indexing through the published interface, each beside the plain code that
// a program would write for the same: a ratio to a floor of the same run.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/data_matrix_row.h"

namespace {

constexpr int kRows = 1'000'000;

std::vector<int> randomInts(int distinct) {
  std::mt19937 random(7);
  std::vector<int> values(kRows);
  for (int& value : values) {
    value = static_cast<int>(random() % static_cast<unsigned int>(distinct));
  }
  return values;
}

template <class Column, class Values>
std::shared_ptr<Column> columnOf(Values const& values) {
  auto column = std::make_shared<Column>();
  column->reserve(kRows);
  for (auto const& value : values) {
    column->appendValue(value);
  }
  return column;
}

std::vector<std::string> textsOf(std::vector<int> const& numbers) {
  std::vector<std::string> texts;
  for (int const number : numbers) {
    texts.push_back("cliente " + std::to_string(number));
  }
  return texts;
}

void appendFloor(benchmark::State& state) {
  auto const values = randomInts(kRows);
  for (auto _ : state) {
    std::vector<int> cells;
    std::vector<std::uint64_t> nulls;
    cells.reserve(kRows);
    nulls.reserve(kRows / 64 + 1);
    for (int const value : values) {
      if (cells.size() % 64 == 0) {
        nulls.push_back(0);
      }
      cells.push_back(value);
    }
    benchmark::DoNotOptimize(cells.data());
    benchmark::DoNotOptimize(nulls.data());
  }
}

void appendThroughInterface(benchmark::State& state) {
  auto const values = randomInts(kRows);
  for (auto _ : state) {
    auto own = std::make_shared<moxDataMatrixIntColumn_internal>();
    std::shared_ptr<moxDataMatrixIntColumn> const column = own;
    column->reserve(kRows);
    for (int const value : values) {
      column->appendValue(value);
    }
    benchmark::DoNotOptimize(own->storage().values.cells());
  }
}

void walkFloor(benchmark::State& state) {
  auto const column = columnOf<moxDataMatrixIntColumn_internal>(randomInts(kRows));
  for (auto _ : state) {
    std::int64_t sum = 0;
    auto const& storage = column->storage();
    for (std::size_t row = 0; row < storage.size(); ++row) {
      sum += storage.nulls.test(row) ? 0 : storage.values.cells()[row];
    }
    benchmark::DoNotOptimize(sum);
  }
}

void walkWithCursor(benchmark::State& state) {
  auto const column = columnOf<moxDataMatrixIntColumn_internal>(randomInts(kRows));
  for (auto _ : state) {
    std::int64_t sum = 0;
    auto const cursor = std::dynamic_pointer_cast<moxIteratorBase<int>>(column->begin());
    do {
      sum += cursor->get();
    } while (cursor->next());
    benchmark::DoNotOptimize(sum);
  }
}

template <class Value, class Values>
void hashIndex(benchmark::State& state, Values const& values) {
  for (auto _ : state) {
    std::unordered_map<Value, std::vector<std::uint32_t>> index;
    for (std::uint32_t row = 0; row < kRows; ++row) {
      index[values[row]].push_back(row);
    }
    std::uint64_t sum = 0;
    for (auto const& value : values) {
      sum += index.find(value)->second.front();
    }
    benchmark::DoNotOptimize(sum);
  }
}

/// Builds the index with the first look-up, then looks up every row's key.
template <class Column, class Values>
void rowFilter(benchmark::State& state, Values const& values) {
  auto const column = columnOf<Column>(values);
  auto const wanted = columnOf<Column>(values);
  for (auto _ : state) {
    auto const row = std::make_shared<DataMatrixRow>();
    auto const cursor = wanted->begin();
    std::vector<std::shared_ptr<moxIterator>> const keys = {column->begin()};
    std::vector<std::shared_ptr<moxIterator const>> const sought = {cursor};
    std::uint64_t sum = 0;
    do {
      if (!row->beginWithFilter(keys, sought)) {
        state.SkipWithError("a key was not found");
        break;
      }
      sum += keys.front()->pos();
    } while (cursor->next());
    benchmark::DoNotOptimize(sum);
  }
}

void intIndexFloor(benchmark::State& state) {
  hashIndex<int>(state, randomInts(static_cast<int>(state.range(0))));
}
void intIndex(benchmark::State& state) {
  rowFilter<moxDataMatrixIntColumn_internal>(state, randomInts(static_cast<int>(state.range(0))));
}
void textIndexFloor(benchmark::State& state) {
  hashIndex<std::string>(state, textsOf(randomInts(static_cast<int>(state.range(0)))));
}
void textIndex(benchmark::State& state) {
  rowFilter<moxDataMatrixTextColumn_internal>(
      state, textsOf(randomInts(static_cast<int>(state.range(0)))));
}

/// Only the build, which one look-up sets off.
void intIndexBuild(benchmark::State& state) {
  auto const column =
      columnOf<moxDataMatrixIntColumn_internal>(randomInts(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    auto const row = std::make_shared<DataMatrixRow>();
    auto const cursor = column->begin();
    benchmark::DoNotOptimize(row->beginWithFilter({column->begin()}, {cursor}));
  }
}

}  // namespace

BENCHMARK(appendFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(appendThroughInterface)->Unit(benchmark::kMillisecond);
BENCHMARK(walkFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(walkWithCursor)->Unit(benchmark::kMillisecond);
BENCHMARK(intIndexFloor)->Arg(1000)->Arg(kRows)->Unit(benchmark::kMillisecond);
BENCHMARK(intIndex)->Arg(1000)->Arg(kRows)->Unit(benchmark::kMillisecond);
BENCHMARK(intIndexBuild)->Arg(1000)->Arg(kRows)->Unit(benchmark::kMillisecond);
BENCHMARK(textIndexFloor)->Arg(1000)->Arg(kRows)->Unit(benchmark::kMillisecond);
BENCHMARK(textIndex)->Arg(1000)->Arg(kRows)->Unit(benchmark::kMillisecond);
