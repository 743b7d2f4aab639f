#pragma once

#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>

#include "mox/core/date.h"

/// A civil moment to the second, without a zone, years 1 to 9999, or the empty moment. A small
/// value, copied freely; constant operations are safe from any thread.
class datetime_t {
 public:
  /// The empty moment.
  datetime_t() noexcept = default;

  /// Parts beyond their range are carried on as in mktime; outside the years 1 to 9999, and for
  /// day, month and year all 0, the result is empty.
  datetime_t(int day, int month, int year, int hour = 0, int minute = 0, int second = 0) noexcept;

  /// Midnight of the day; empty for the empty date.
  explicit datetime_t(date_t const& date) noexcept;

  /// The moment that many seconds after 1970-01-01 00:00, as if in UTC; empty outside the years 1
  /// to 9999.
  static datetime_t fromTime_t(std::time_t seconds) noexcept;

  /// As date_t::adjust; the time of day stays.
  void adjust(int days, int months, int years) noexcept;

  /// Parts; 0 for the empty moment.
  int day() const noexcept;
  int month() const noexcept;
  int year() const noexcept;
  int dow() const noexcept;
  int hour() const noexcept;
  int minute() const noexcept;
  int second() const noexcept;

  /// Broken down, with tm_wday and tm_yday, tm_isdst 0; nothing for the empty moment.
  std::optional<std::tm> asTM() const noexcept;

  /// Seconds from 1970-01-01 00:00, as if in UTC. The empty moment comes before all others.
  std::time_t asTime_t() const noexcept { return seconds_; }

  /// False for the empty moment.
  explicit operator bool() const noexcept { return seconds_ != kEmpty; }

  bool operator==(datetime_t const&) const noexcept = default;
  auto operator<=>(datetime_t const&) const noexcept = default;

 private:
  static constexpr std::int64_t kEmpty = std::numeric_limits<std::int64_t>::min();

  std::int64_t seconds_ = kEmpty;  // since 1970-01-01 00:00
};
