#pragma once

#include <memory>
#include <string>

#include "mox/zyn/format/decimal_formatter.h"
#include "zyn/format/number_settings.h"
#include "zyn/frame/xml_element.h"

class DecimalFormatter final : public moxDecimalAsString, public LoadedFromElement {
 public:
  std::string name() const override { return "moxDecimalFormatter"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool loadElement(XmlElement const& element) override;

  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override;
  std::string asString(long double value) const override;

  void setDescription(std::string const& description) override {
    settings_.description = description;
  }
  std::string getDescription() const override { return settings_.description; }
  void setPrefix(std::string const& prefix) override { settings_.prefix = prefix; }
  void setSuffix(std::string const& suffix) override { settings_.suffix = suffix; }
  std::string getPrefix() const override { return settings_.prefix; }
  std::string getSuffix() const override { return settings_.suffix; }

  void setDecimalSeparator(char separator) override { decimalSeparator_ = separator; }
  void setGroupCount(char digits) override;
  void setGroupSeparator(char separator) override;
  void setSpan(unsigned int width, char filler) override;
  void setDecimalPrecision(unsigned int digits) override { precision_ = digits; }
  char getGroupCount() const override { return settings_.groupCount; }
  char getGroupSeparator() const override { return settings_.groupSeparator; }
  unsigned int getSpanSize() const override { return settings_.spanSize; }
  char getSpanFiller() const override { return settings_.spanFiller; }
  unsigned int getPrecision() const override { return precision_; }
  char getDecimalSeparator() const override { return decimalSeparator_; }
  void setAllowShrinkPrecision(bool allow) override { allowShrinkPrecision_ = allow; }
  bool getAllowShrinkPrecision() const override { return allowShrinkPrecision_; }

  /// Appends what asString gives.
  void appendTo(std::string& out, double value) const;
  void appendTo(std::string& out, long double value) const;

  /// What stands between prefix and suffix, unless decimals may be left out.
  NumberLayout layout() const;

 private:
  template <class Float>
  void append(std::string& out, Float value) const;
  void shrink(std::string& out, std::size_t from) const;

  NumberSettings settings_;
  char decimalSeparator_ = '.';
  unsigned int precision_ = 0;
  bool allowShrinkPrecision_ = false;
  mutable SeparatorSnapshot snapshot_;
};
