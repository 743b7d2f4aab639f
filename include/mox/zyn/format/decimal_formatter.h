#pragma once

#include <string>

#include "mox/zyn/format/generic_formatter.h"

/// Turns numbers into text. Takes cells of double columns.
class moxDecimalFormatter : public virtual moxGenericFormatter {
 public:
  using moxGenericFormatter::asString;

  /// Prefix, number, suffix; a NaN and an infinity read "nan" and "inf", with their sign.
  virtual std::string asString(long double value) const = 0;
};

/// Numbers in decimal digits, never with an exponent, rounded half to even by the number's exact
/// binary value. Registered as "moxDecimalFormatter"; born with no decimals, no groups and no
/// padding, "." before decimals and "," between groups.
///
/// In XML: attributes `description`, `prefix`, `suffix`, `precision`, `separator`; an element
/// `thousand` with `grouping` and `separator`; an element `span` with `filler` and `width`. A NUL
/// character is an empty attribute.
class moxDecimalAsString : public virtual moxDecimalFormatter {
 public:
  /// The byte before the decimals. On a formatter that was used already it waits for the next
  /// setGroupCount, setGroupSeparator or load.
  virtual void setDecimalSeparator(char separator) = 0;

  /// Digits in a group, counted from the decimals; groups only for 1 to 126.
  virtual void setGroupCount(char digits) = 0;
  virtual void setGroupSeparator(char separator) = 0;

  /// Least length of the number, without prefix and suffix, and the byte put before shorter ones,
  /// also before the sign. 0 pads nothing; what is beyond 65,536 counts as that.
  virtual void setSpan(unsigned int width, char filler) = 0;

  /// Number of decimals; what is beyond 512 counts as that.
  virtual void setDecimalPrecision(unsigned int digits) = 0;

  /// The settings, as they were set.
  virtual char getGroupCount() const = 0;
  virtual char getGroupSeparator() const = 0;
  virtual unsigned int getSpanSize() const = 0;
  virtual char getSpanFiller() const = 0;
  virtual unsigned int getPrecision() const = 0;
  virtual char getDecimalSeparator() const = 0;

  /// Whether zeros at the end, and a decimal separator that is then last, are cut. Meant for
  /// formatters with decimals: without any, 100 becomes "1". The prefix is not spared, a text of
  /// zeros alone and the suffix are. False from the start; not kept in XML.
  virtual void setAllowShrinkPrecision(bool allow) = 0;
  virtual bool getAllowShrinkPrecision() const = 0;
};
