#pragma once

#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>

class datetime_t;

/// A civil day without a zone, years 1 to 9999, or the empty date. A small value, copied freely;
/// constant operations are safe from any thread. Days are counted in the proleptic Gregorian
/// calendar.
class date_t {
 public:
  /// The empty date.
  date_t() noexcept = default;

  /// Day 1..31, month 1..12. Values beyond are carried on as in mktime: (31, 2, 2023) is 3 March
  /// 2023. What falls outside the years 1 to 9999 gives the empty date, and so does (0, 0, 0).
  date_t(int day, int month, int year) noexcept;

  /// The day of a moment; empty for the empty one.
  explicit date_t(datetime_t const& moment) noexcept;

  /// Today, by the clock that the application was given.
  static date_t currdate();

  /// Adds to each part and carries on as the constructor does: 31 January and a month is 2 or 3
  /// March. The empty date stays empty.
  void adjust(int days, int months, int years) noexcept;

  /// Parts of the date; 0 for the empty date.
  int day() const noexcept;
  int month() const noexcept;
  int year() const noexcept;

  /// Day of the week, 0 for Sunday to 6; 0 for the empty date.
  int dow() const noexcept;

  /// Broken down, with tm_wday and tm_yday, tm_isdst 0; nothing for the empty date.
  std::optional<std::tm> asTM() const noexcept;

  /// Seconds from 1970-01-01 to midnight of the day, as if in UTC: no zone ever shifts an order.
  /// The empty date comes before all others.
  std::time_t asTime_t() const noexcept;

  /// Days from this date to `other`, negative when that is earlier; 0 when either is empty.
  int daysTo(date_t const& other) const noexcept;

  /// False for the empty date.
  explicit operator bool() const noexcept { return days_ != kEmpty; }

  bool operator==(date_t const&) const noexcept = default;
  auto operator<=>(date_t const&) const noexcept = default;

  /// Days since 1970-01-01; precondition: not empty.
  std::int32_t daysSinceEpoch() const noexcept { return days_; }

 private:
  static constexpr std::int32_t kEmpty = std::numeric_limits<std::int32_t>::min();

  std::int32_t days_ = kEmpty;  // since 1970-01-01
};
