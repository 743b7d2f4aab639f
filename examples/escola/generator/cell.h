#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace escola {

using Day = std::chrono::sys_days;
using Moment = std::chrono::sys_seconds;

/// Money, marks and other numbers with two places, kept whole so that sums are exact.
struct Hundredths {
  std::int64_t value = 0;

  auto operator<=>(Hundredths const&) const = default;
};

/// Bytes that are no text.
struct Bytes {
  std::string_view view;
};

/// One value on its way to the database. Text and bytes are only pointed at.
class Cell {
 public:
  enum class Kind : std::uint8_t { kNull, kInt, kHundredths, kDay, kMoment, kText, kBytes };

  constexpr Cell(std::nullopt_t) : kind_(Kind::kNull) {}
  constexpr Cell(int value) : kind_(Kind::kInt), number_(value) {}
  constexpr Cell(bool value) : kind_(Kind::kInt), number_(value ? 1 : 0) {}
  constexpr Cell(Hundredths value) : kind_(Kind::kHundredths), number_(value.value) {}
  constexpr Cell(Day value) : kind_(Kind::kDay), number_(value.time_since_epoch().count()) {}
  constexpr Cell(Moment value) : kind_(Kind::kMoment), number_(value.time_since_epoch().count()) {}
  constexpr Cell(std::string_view value) : kind_(Kind::kText), text_(value) {}
  Cell(std::string const& value) : kind_(Kind::kText), text_(value) {}
  constexpr Cell(char const* value) : kind_(Kind::kText), text_(value) {}
  constexpr Cell(Bytes value) : kind_(Kind::kBytes), text_(value.view) {}

  template <class T>
  constexpr Cell(std::optional<T> const& value) : Cell(value ? Cell(*value) : Cell(std::nullopt)) {}

  Kind kind() const { return kind_; }

  /// kInt: the value; kHundredths: a hundredth each; kDay: days, kMoment: seconds since 1970-01-01.
  std::int64_t number() const { return number_; }

  /// kText and kBytes; as long-lived as what the cell was made of.
  std::string_view text() const { return text_; }

 private:
  Kind kind_;
  std::int64_t number_ = 0;
  std::string_view text_;
};

inline constexpr Cell kNull{std::nullopt};

}  // namespace escola
