#pragma once

#include <memory>
#include <string>

#include "mox/zyn/format/integral_formatter.h"
#include "zyn/format/number_settings.h"
#include "zyn/frame/xml_element.h"

class IntegralFormatter final : public moxIntegralAsString, public LoadedFromElement {
 public:
  std::string name() const override { return "moxIntegralFormatter"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool loadElement(XmlElement const& element) override;

  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override;
  std::string asString(long long value) const override;

  void setDescription(std::string const& description) override {
    settings_.description = description;
  }
  std::string getDescription() const override { return settings_.description; }
  void setPrefix(std::string const& prefix) override { settings_.prefix = prefix; }
  void setSuffix(std::string const& suffix) override { settings_.suffix = suffix; }
  std::string getPrefix() const override { return settings_.prefix; }
  std::string getSuffix() const override { return settings_.suffix; }

  void setGroupCount(char digits) override;
  void setGroupSeparator(char separator) override;
  void setSpan(unsigned int width, char filler) override;
  char getGroupCount() const override { return settings_.groupCount; }
  char getGroupSeparator() const override { return settings_.groupSeparator; }
  unsigned int getSpanSize() const override { return settings_.spanSize; }
  char getSpanFiller() const override { return settings_.spanFiller; }

  /// Appends what asString gives.
  void appendTo(std::string& out, long long value) const;

  /// What stands between prefix and suffix.
  NumberLayout layout() const;

 private:
  NumberSettings settings_;
  mutable SeparatorSnapshot snapshot_;
};
