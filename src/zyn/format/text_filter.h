#pragma once

#include <memory>
#include <optional>
#include <regex>
#include <string>

#include "mox/zyn/format/text_filter.h"
#include "zyn/format/property_formatter.h"

class TextFilter final : public PropertyFormatter<moxTextFilter> {
 public:
  TextFilter();

  std::string name() const override { return "moxTextFilter"; }
  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override;
  std::string asString(std::string const& text) const override;

  void setAsciiOnly(bool enable, std::string const& pattern) override;
  void setTrim(bool enable) override { trim_ = enable; }

 private:
  void moreSettings(SettingVisitor const& visitor) override;
  void removePattern(std::string& text) const;

  bool upper_ = false;
  bool asciiOnly_ = false;
  bool trim_ = false;
  std::string asciiPattern_;
  std::optional<std::regex> compiled_;  // of asciiPattern_; none for the default, and for a bad one
};
