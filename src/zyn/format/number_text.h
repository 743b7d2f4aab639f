#pragma once

#include <cstddef>
#include <string>

/// How a number is laid out. A plain value: copied freely, read by any thread.
struct NumberLayout {
  static constexpr unsigned int kMaxWidth = 65'536;
  static constexpr unsigned int kMaxPrecision = 512;

  /// The group size for a number from a file: 1 to 126, anything else is no groups.
  static constexpr unsigned int groupSizeOf(long digits) {
    return digits >= 1 && digits <= 126 ? static_cast<unsigned int>(digits) : 0;
  }

  char decimalSeparator = '.';
  char groupSeparator = ',';
  char filler = '\0';
  unsigned int groupSize = 0;  // 0: no groups
  unsigned int precision = 0;  // decimals, clamped at use
  unsigned int width = 0;      // least length, clamped at use; 0: no padding
};

/// Appends a whole number in decimal digits; decimals of the layout are not looked at.
void appendInteger(std::string& out, long long value, NumberLayout const& layout);

/// Appends a number in fixed notation, its exact binary value rounded half to even: byte for byte
/// what printf gives, then grouped. "inf" and "nan" have their sign, no groups and no decimals.
void appendDecimal(std::string& out, double value, NumberLayout const& layout);
void appendDecimal(std::string& out, long double value, NumberLayout const& layout);

/// The same without a string, for whoever writes many: written from `place` on, where there must be
/// room for kNumberRoom bytes; gives the end of the text. Bytes behind it may be overwritten.
/// The layout has no width.
constexpr std::size_t kNumberRoom = 64;
char* putInteger(char* place, long long value, NumberLayout const& layout);

/// Likewise; empty, with nothing written, for numbers that take more room or more care.
char* putDecimal(char* place, double value, NumberLayout const& layout);
