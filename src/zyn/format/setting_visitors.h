#pragma once

#include <string>
#include <string_view>

#include "mox/core/xml.h"
#include "mox/zyn/format/properties_collection.h"
#include "zyn/frame/xml_element.h"

/// What is done with each setting of a formatter, in the order of its properties. `key` is the
/// attribute, `label` what users read.
class SettingVisitor {
 public:
  virtual void text(char const* key, char const* label, std::string& value) const = 0;
  virtual void flag(char const* key, char const* label, bool& value) const = 0;

 protected:
  ~SettingVisitor() = default;
};

/// As the properties load.
class SettingReader final : public SettingVisitor {
 public:
  explicit SettingReader(XmlElement const& element) : element_(element) {}

  void text(char const* key, char const* /*label*/, std::string& value) const override {
    value = element_.attribute(key);
  }
  void flag(char const* key, char const* /*label*/, bool& value) const override {
    value =
        element_.withAttribute(key, [](std::string_view text) { return text.starts_with('1'); });
  }

 private:
  XmlElement const& element_;
};

/// As the properties save.
class SettingWriter final : public SettingVisitor {
 public:
  explicit SettingWriter(moxXMLNode& node) : node_(node) {}

  void text(char const* key, char const* /*label*/, std::string& value) const override {
    node_.writeAttribute(key, value);
  }
  void flag(char const* key, char const* /*label*/, bool& value) const override {
    node_.writeAttribute(key, value ? "1" : "0");
  }

 private:
  moxXMLNode& node_;
};

/// Adds a property for each.
class PropertyMaker final : public SettingVisitor {
 public:
  explicit PropertyMaker(moxPropertiesCollection& collection) : collection_(collection) {}

  void text(char const* key, char const* label, std::string& value) const override {
    collection_.addStringProperty(key, label, &value);
  }
  void flag(char const* key, char const* label, bool& value) const override {
    collection_.addBooleanProperty(key, label, &value);
  }

 private:
  moxPropertiesCollection& collection_;
};
