#include "compare/join_table.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace bench {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

/// Numbers without pattern from numbers in a row.
std::uint64_t scrambled(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15U;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31);
}

/// Another int for each customer: steps that change no bit without others, none of which loses any.
std::int32_t keyOf(std::uint32_t customer) {
  std::uint32_t key = customer * 0x9E3779B1U;
  key ^= key >> 15;
  key *= 0x85EBCA77U;
  return static_cast<std::int32_t>(key ^ (key >> 13));
}

FloorText textOf(std::uint64_t letters, std::uint32_t digits) {
  char bytes[11] = {};
  for (int i = 0; i < 4; ++i, letters /= 26) {
    bytes[i] = static_cast<char>('a' + letters % 26);
  }
  std::snprintf(bytes + 4, sizeof bytes - 4, "%06u", digits % 1'000'000);
  FloorText text;
  text.length = 10;
  std::memcpy(text.content, bytes, text.length);
  return text;
}

/// Of customers with the same digits no two have the same letters.
FloorText codeOf(std::uint32_t customer) {
  std::uint32_t const digits = customer % 1'000'000;
  return textOf((scrambled(digits) + customer / 1'000'000) % 456'976, digits);
}

void addCustomer(JoinTables& tables, std::uint32_t customer) {
  std::uint64_t const noise = scrambled(customer + 0x1000000000U);
  bool const ratingNull = noise % 10 == 0;
  bool const creditNull = noise / 10 % 20 == 0;
  tables.customerKey.push(keyOf(customer));
  tables.customerCode.push(codeOf(customer));
  tables.rating.push(ratingNull ? 0 : static_cast<std::int32_t>(noise / 200 % 1000));
  tables.ratingNulls.push(ratingNull);
  tables.credit.push(creditNull ? 0 : static_cast<double>(noise / 200'000 % 100'000'000) / 100);
  tables.creditNulls.push(creditNull);
  tables.label.push(textOf(noise >> 20, static_cast<std::uint32_t>(noise >> 40)));
  tables.since.push(static_cast<std::int64_t>(16436 + noise % 3653) * kSecondsPerDay);
}

void addSale(JoinTables& tables, std::size_t sale) {
  std::uint64_t const noise = scrambled(sale);
  std::uint32_t const customer = customerOf(tables, sale);
  bool const null = noise % 20 == 0;
  tables.saleKey.push(keyOf(customer));
  tables.saleCode.push(codeOf(customer));
  tables.value.push(null ? 0 : static_cast<double>(noise / 20 % 1'000'000) / 100);
  tables.valueNulls.push(null);
}

std::string money(double value, bool null) {
  return null ? "" : fmt::format("{:.2f}", value);
}

/// A file that is written in large pieces.
class CsvWriter {
 public:
  CsvWriter(std::string const& path, char const* header) : path_(path), file_(path) {
    file_ << header;
  }

  template <class... Values>
  void line(fmt::format_string<Values...> format, Values&&... values) {
    fmt::format_to(std::back_inserter(text_), format, std::forward<Values>(values)...);
    if (text_.size() > kPiece) {
      flush();
    }
  }

  void close() {
    flush();
    if (!file_.flush()) {
      throw std::runtime_error("cannot write " + path_);
    }
  }

 private:
  static constexpr std::size_t kPiece = std::size_t{1} << 20;

  void flush() {
    file_ << text_;
    text_.clear();
  }

  std::string path_;
  std::ofstream file_;
  std::string text_;
};

}  // namespace

JoinTables::JoinTables(std::size_t rows)
    : saleRows(rows),
      customerRows(rows < 10 ? 1 : rows / 10),
      saleKey(rows),
      saleCode(rows),
      value(rows),
      valueNulls(rows),
      customerKey(customerRows),
      customerCode(customerRows),
      rating(customerRows),
      ratingNulls(customerRows),
      credit(customerRows),
      creditNulls(customerRows),
      label(customerRows),
      since(customerRows) {
  for (std::uint32_t customer = 0; customer < customerRows; ++customer) {
    addCustomer(*this, customer);
  }
  for (std::size_t sale = 0; sale < saleRows; ++sale) {
    addSale(*this, sale);
  }
}

JoinResult::JoinResult(std::size_t capacity)
    : key(capacity),
      code(capacity),
      value(capacity),
      valueNulls(capacity),
      rating(capacity),
      ratingNulls(capacity),
      credit(capacity),
      creditNulls(capacity),
      label(capacity),
      since(capacity) {}

std::uint32_t customerOf(JoinTables const& tables, std::size_t sale) {
  std::uint64_t const customers = tables.customerRows + tables.customerRows / 4;
  return static_cast<std::uint32_t>(scrambled(sale + 0x2000000000U) % customers);
}

void writeCsv(JoinTables const& tables, std::string const& salesPath,
              std::string const& customersPath) {
  CsvWriter sales(salesPath, "key,code,value\n");
  for (std::size_t row = 0; row < tables.saleRows; ++row) {
    sales.line("{},{},{}\n", tables.saleKey[row], tables.saleCode[row].view(),
               money(tables.value[row], tables.valueNulls.test(row)));
  }
  sales.close();
  CsvWriter customers(customersPath, "key,code,rating,credit,label,since\n");
  for (std::size_t row = 0; row < tables.customerRows; ++row) {
    customers.line("{},{},{},{},{},{}\n", tables.customerKey[row], tables.customerCode[row].view(),
                   tables.ratingNulls.test(row) ? "" : std::to_string(tables.rating[row]),
                   money(tables.credit[row], tables.creditNulls.test(row)),
                   tables.label[row].view(), tables.since[row]);
  }
  customers.close();
}

}  // namespace bench
