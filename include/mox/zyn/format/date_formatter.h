#pragma once

#include <string>

#include "mox/core/date.h"
#include "mox/core/datetime.h"
#include "mox/zyn/format/generic_formatter.h"

/// Turns dates into text. Takes cells of date columns.
class moxDateFormatter : public virtual moxGenericFormatter {
 public:
  using moxGenericFormatter::asString;

  /// Prefix, date, suffix; the empty text for the empty date.
  virtual std::string asString(datetime_t const& moment) const = 0;
  virtual std::string asString(date_t const& date) const = 0;
};

/// Dates by a mask. Registered as "moxDateFormatter". In XML its settings are the attributes
/// `description`, `prefix`, `suffix` and `mask`, all empty by default.
class moxDateAsString : public virtual moxDateFormatter {
 public:
  /// Conversions as strftime knows them ("%d/%m/%Y"). Where the date takes 100 bytes or more, as
  /// with the empty mask, prefix and suffix stand alone.
  virtual void setMask(std::string const& mask) = 0;
  virtual std::string getMask() const = 0;
};
