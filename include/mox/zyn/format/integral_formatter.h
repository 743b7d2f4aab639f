#pragma once

#include <string>

#include "mox/zyn/format/generic_formatter.h"

/// Turns whole numbers into text. Takes cells of integer columns.
class moxIntegralFormatter : public virtual moxGenericFormatter {
 public:
  using moxGenericFormatter::asString;

  /// Prefix, number, suffix.
  virtual std::string asString(long long value) const = 0;
};

/// Whole numbers in decimal digits. Registered as "moxIntegralFormatter"; born with no groups and
/// no padding, "," between groups. In XML as moxDecimalAsString, without the decimals' attributes.
class moxIntegralAsString : public virtual moxIntegralFormatter {
 public:
  /// Digits in a group, counted from the last; groups only for 1 to 126.
  virtual void setGroupCount(char digits) = 0;
  virtual void setGroupSeparator(char separator) = 0;

  /// Least length of the number, without prefix and suffix, and the byte put before shorter ones,
  /// also before the sign. 0 pads nothing; what is beyond 65,536 counts as that.
  virtual void setSpan(unsigned int width, char filler) = 0;

  /// The settings, as they were set.
  virtual char getGroupCount() const = 0;
  virtual char getGroupSeparator() const = 0;
  virtual unsigned int getSpanSize() const = 0;
  virtual char getSpanFiller() const = 0;
};
