#pragma once

#include <memory>
#include <string>

#include "mox/zyn/format/date_formatter.h"
#include "zyn/format/date_mask.h"
#include "zyn/format/property_formatter.h"

class DateFormatter final : public PropertyFormatter<moxDateAsString> {
 public:
  DateFormatter();

  std::string name() const override { return "moxDateFormatter"; }
  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override;
  std::string asString(datetime_t const& moment) const override;
  std::string asString(date_t const& date) const override;

  void setMask(std::string const& mask) override;
  std::string getMask() const override { return mask_; }
  void propertyChanged() override;

  /// Appends what asString gives.
  void appendTo(std::string& out, datetime_t const& moment) const { append(out, moment); }
  void appendTo(std::string& out, date_t const& date) const { append(out, date); }

  /// What stands between prefix and suffix.
  DateMask const& compiledMask() const { return compiled_; }

 private:
  void moreSettings(SettingVisitor const& visitor) override;

  template <class DateOrMoment>
  void append(std::string& out, DateOrMoment const& value) const {
    if (value) {
      out.append(prefix());
      compiled_.appendTo(out, value);
      out.append(suffix());
    }
  }

  std::string mask_;
  DateMask compiled_;  // of mask_
};
