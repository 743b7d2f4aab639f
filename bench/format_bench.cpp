// What a formatted cell costs: ten million numbers and dates, beside loops written by hand for one
// layout that round carelessly. A case counts its bytes against the floor's.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "zyn/format/date_mask.h"
#include "zyn/format/number_text.h"

namespace {

constexpr std::size_t kCells = 10'000'000;

std::vector<double> const& amounts() {
  static std::vector<double> const values = [] {
    std::mt19937_64 random(1);
    std::vector<double> made(kCells);
    for (double& value : made) {
      value = static_cast<double>(random() % 100'000'000) / 100.0;
    }
    return made;
  }();
  return values;
}

std::vector<datetime_t> const& moments() {
  static std::vector<datetime_t> const values = [] {
    std::mt19937_64 random(2);
    std::vector<datetime_t> made(kCells);
    for (datetime_t& value : made) {
      value = datetime_t::fromTime_t(static_cast<std::int64_t>(random() % 2'000'000'000));
    }
    return made;
  }();
  return values;
}

// 1.234.567,89
void amountByHand(std::string& out, double value) {
  auto cents = static_cast<std::uint64_t>(std::fabs(value) * 100 + 0.5);
  char buffer[40];
  char* first = buffer + sizeof buffer;
  *--first = static_cast<char>('0' + cents % 10);
  cents /= 10;
  *--first = static_cast<char>('0' + cents % 10);
  cents /= 10;
  *--first = ',';
  int inGroup = 0;
  do {
    if (inGroup++ == 3) {
      *--first = '.';
      inGroup = 1;
    }
    *--first = static_cast<char>('0' + cents % 10);
    cents /= 10;
  } while (cents != 0);
  if (value < 0) {
    *--first = '-';
  }
  out.append(first, static_cast<std::size_t>(buffer + sizeof buffer - first));
}

void putTwo(char* at, unsigned int value) {
  at[0] = static_cast<char>('0' + value / 10);
  at[1] = static_cast<char>('0' + value % 10);
}

// 05/03/2024
void dateByHand(std::string& out, datetime_t const& moment) {
  auto const days = static_cast<std::uint32_t>(moment.asTime_t() / 86'400 + 719'468);
  std::uint32_t const era = days / 146'097;
  std::uint32_t const dayOfEra = days - era * 146'097;
  std::uint32_t const yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
  std::uint32_t const dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  std::uint32_t const shifted = (5 * dayOfYear + 2) / 153;
  std::uint32_t const month = shifted < 10 ? shifted + 3 : shifted - 9;
  std::uint32_t const year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
  char text[] = "dd/mm/yyyy";
  putTwo(text, dayOfYear - (153 * shifted + 2) / 5 + 1);
  putTwo(text + 3, month);
  putTwo(text + 6, year / 100);
  putTwo(text + 8, year % 100);
  out.append(text, 10);
}

// The buffer is emptied every few cells, as a writer does.
template <class Values, class Write>
std::size_t pass(Values const& values, std::string& buffer, Write const& write) {
  std::size_t bytes = 0;
  for (auto const& value : values) {
    write(buffer, value);
    if (buffer.size() > 32'000) {
      bytes += buffer.size();
      buffer.clear();
    }
  }
  bytes += buffer.size();
  buffer.clear();
  return bytes;
}

template <class Values, class Floor, class Write>
void run(benchmark::State& state, Values const& values, Floor const& floor, Write const& write) {
  std::string buffer;
  buffer.reserve(65'536);
  std::size_t const expected = pass(values, buffer, floor);
  for (auto _ : state) {
    if (pass(values, buffer, write) != expected) {
      state.SkipWithError("the texts differ in length from the floor's");
      return;
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

void amountsFloor(benchmark::State& state) {
  run(state, amounts(), amountByHand, amountByHand);
}

void amountsFormatted(benchmark::State& state) {
  NumberLayout const layout{
      .decimalSeparator = ',', .groupSeparator = '.', .groupSize = 3, .precision = 2};
  run(state, amounts(), amountByHand,
      [&](std::string& out, double value) { appendDecimal(out, value, layout); });
}

void datesFloor(benchmark::State& state) {
  run(state, moments(), dateByHand, dateByHand);
}

void datesFormatted(benchmark::State& state) {
  DateMask const mask("%d/%m/%Y");
  run(state, moments(), dateByHand,
      [&](std::string& out, datetime_t const& moment) { mask.appendTo(out, moment); });
}

BENCHMARK(amountsFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(amountsFormatted)->Unit(benchmark::kMillisecond);
BENCHMARK(datesFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(datesFormatted)->Unit(benchmark::kMillisecond);

}  // namespace
