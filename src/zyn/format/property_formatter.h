#pragma once

#include <memory>
#include <string>

#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/format/properties_object.h"
#include "zyn/format/owned_properties.h"

/// What the formatters share whose settings are properties: description, prefix, suffix.
template <class Interface>
class PropertyFormatter : public Interface, public moxPropertiesObject {
 public:
  bool save(std::shared_ptr<moxXMLNode> node) const override { return properties_->save(node); }
  bool load(std::shared_ptr<moxXMLNode> node) override { return properties_->load(node); }

  void setDescription(std::string const& description) override { description_ = description; }
  std::string getDescription() const override { return description_; }
  void setPrefix(std::string const& prefix) override { prefix_ = prefix; }
  void setSuffix(std::string const& suffix) override { suffix_ = suffix; }
  std::string getPrefix() const override { return prefix_; }
  std::string getSuffix() const override { return suffix_; }

  std::shared_ptr<moxPropertiesCollection> getProperties() const override {
    return properties_.shared();
  }
  void propertyChanged() override {}

 protected:
  PropertyFormatter(char const* descriptionKey, char const* descriptionLabel) : properties_(*this) {
    properties_->addStringProperty(descriptionKey, descriptionLabel, &description_);
    properties_->addStringProperty("prefix", "Prefixo", &prefix_);
    properties_->addStringProperty("suffix", "Sufixo", &suffix_);
  }

  std::string const& prefix() const { return prefix_; }
  std::string const& suffix() const { return suffix_; }
  OwnedProperties& properties() { return properties_; }

 private:
  std::string description_;
  std::string prefix_;
  std::string suffix_;
  OwnedProperties properties_;
};
