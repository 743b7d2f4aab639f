#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/format/properties_object.h"
#include "zyn/format/owned_properties.h"
#include "zyn/format/setting_visitors.h"
#include "zyn/frame/xml_element.h"

/// What the formatters share whose settings are properties: description, prefix, suffix. The
/// properties themselves are made when they are first asked for: definitions hold thousands of
/// formatters, and only settings screens look at their properties.
template <class Interface>
class PropertyFormatter : public Interface, public moxPropertiesObject, public LoadedFromElement {
 public:
  bool save(std::shared_ptr<moxXMLNode> node) const override {
    if (node) {
      settings(SettingWriter(*node));
    }
    return node != nullptr;
  }

  bool load(std::shared_ptr<moxXMLNode> node) override {
    return node && loadElement(XmlElement(std::move(node)));
  }

  bool loadElement(XmlElement const& element) override {
    settings(SettingReader(element));
    propertyChanged();
    return true;
  }

  void setDescription(std::string const& description) override { description_ = description; }
  std::string getDescription() const override { return description_; }
  void setPrefix(std::string const& prefix) override { prefix_ = prefix; }
  void setSuffix(std::string const& suffix) override { suffix_ = suffix; }
  std::string getPrefix() const override { return prefix_; }
  std::string getSuffix() const override { return suffix_; }

  std::shared_ptr<moxPropertiesCollection> getProperties() const override {
    return properties_.get([this](moxPropertiesCollection& collection) {
      collection.setObject(const_cast<PropertyFormatter*>(this));
      settings(PropertyMaker(collection));
    });
  }
  void propertyChanged() override {}

 protected:
  PropertyFormatter(char const* descriptionKey, char const* descriptionLabel)
      : descriptionKey_(descriptionKey), descriptionLabel_(descriptionLabel) {}

  std::string const& prefix() const { return prefix_; }
  std::string const& suffix() const { return suffix_; }

 private:
  /// Tells the settings that one kind of formatter has beyond the others.
  virtual void moreSettings(SettingVisitor const& /*visitor*/) {}

  // Properties change the formatter also where they were got from a constant one.
  void settings(SettingVisitor const& visitor) const {
    auto& self = const_cast<PropertyFormatter&>(*this);
    visitor.text(descriptionKey_, descriptionLabel_, self.description_);
    visitor.text("prefix", "Prefixo", self.prefix_);
    visitor.text("suffix", "Sufixo", self.suffix_);
    self.moreSettings(visitor);
  }

  char const* descriptionKey_;
  char const* descriptionLabel_;
  std::string description_;
  std::string prefix_;
  std::string suffix_;
  LazyProperties properties_;
};
