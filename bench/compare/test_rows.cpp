#include "compare/test_rows.h"

#include <cmath>
#include <cstdio>
#include <ctime>

namespace bench {
namespace {

constexpr std::uint64_t kFieldsPerRow = 8;
constexpr std::int64_t kFirstDay = 16436;  // 2015-01-01, in days since 1970
constexpr std::int64_t kDays = 3653;
constexpr std::int64_t kSecondsPerDay = 86400;

/// Numbers without pattern from numbers in a row.
std::uint64_t scrambled(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15U;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31);
}

void writeLetters(char* place, int count, std::uint64_t noise, char const* alphabet,
                  std::uint64_t size) {
  for (int i = 0; i < count; ++i) {
    place[i] = alphabet[noise % size];
    noise /= size;
  }
}

void writeCode(TestRow& row, std::uint64_t key) {
  writeLetters(row.code, 4, scrambled(key), "abcdefghijklmnopqrstuvwxyz", 26);
  std::snprintf(row.code + 4, sizeof row.code - 4, "%06u", static_cast<unsigned>(key));
}

void writeDescription(TestRow& row, std::uint64_t index, std::uint64_t noise) {
  constexpr char const* kAlphabet = "aaabcdeeefghiiijklmnooopqrstuuvxz ";
  writeLetters(row.description, 11, noise, kAlphabet, 34);
  writeLetters(row.description + 11, 11, scrambled(noise), kAlphabet, 34);
  std::snprintf(row.description + 22, sizeof row.description - 22, "%08u",
                static_cast<unsigned>(index % 100'000'000));
}

}  // namespace

std::uint64_t noiseOf(std::uint64_t row, std::uint64_t field) {
  return scrambled(row * kFieldsPerRow + field);
}

TestRow testRow(std::uint64_t row) {
  auto const noise = [row](std::uint64_t field) { return noiseOf(row, field); };
  TestRow made{};
  made.number = static_cast<std::int32_t>(noise(0) % 100'000);
  made.ratingIsNull = noise(1) % 10 == 0;
  made.rating = made.ratingIsNull ? 0 : static_cast<std::int32_t>(noise(2) % 1000);
  made.amountIsNull = noise(3) % 20 == 0;
  auto const cents = static_cast<std::int64_t>(noise(4) % 200'000'000) - 50'000'000;
  made.amount = made.amountIsNull ? 0 : static_cast<double>(cents) / 100;
  made.day = (kFirstDay + static_cast<std::int64_t>(noise(5) % kDays)) * kSecondsPerDay;
  writeCode(made, noise(6) % 1'000'000);
  writeDescription(made, row, noise(7));
  return made;
}

std::string dayText(std::int64_t seconds) {
  std::time_t const moment = seconds;
  std::tm parts{};
  gmtime_r(&moment, &parts);
  char text[16];
  std::strftime(text, sizeof text, "%Y-%m-%d", &parts);
  return text;
}

FloorTable makeFloorTable(std::size_t rows, std::size_t first) {
  FloorTable table(rows);
  for (std::size_t i = 0; i < rows; ++i) {
    TestRow const row = testRow(first + i);
    table.number.push(row.number);
    table.rating.push(row.rating);
    table.ratingNulls.push(row.ratingIsNull);
    table.amount.push(row.amount);
    table.amountNulls.push(row.amountIsNull);
    table.day.push(row.day);
    table.pushText(table.code, row.code, sizeof row.code - 1);
    table.pushText(table.description, row.description, sizeof row.description - 1);
  }
  return table;
}

}  // namespace bench
