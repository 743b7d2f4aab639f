#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mox/zyn/format/value_properties.h"
#include "zyn/format/property_base.h"

/// A property over one member of the owner. Without the owner it reads as an empty value.
template <class Interface, class Value>
class ValueProperty : public PropertyBase<Interface> {
 public:
  ValueProperty(std::string name, std::string description, Value* target)
      : PropertyBase<Interface>(std::move(name), std::move(description)), target_(target) {}

  void detach() override { target_ = nullptr; }

 protected:
  Value value() const { return target_ != nullptr ? *target_ : Value(); }

  void store(Value const& value) const {
    if (target_ != nullptr) {
      *target_ = value;
    }
    this->tellOwner();
  }

 private:
  Value* target_;  // null once the owner is gone
};

class BooleanProperty final : public ValueProperty<moxBooleanProperty, bool> {
 public:
  using ValueProperty::ValueProperty;

  std::string name() const override { return "BooleanProperty"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) const override;
  bool hasValue() const override { return value(); }
  void set(bool value) const override { store(value); }
  bool get() const override { return value(); }
};

class IntProperty final : public ValueProperty<moxIntProperty, int> {
 public:
  using ValueProperty::ValueProperty;

  std::string name() const override { return "IntProperty"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) const override;
  bool hasValue() const override { return value() != 0; }
  void set(int value) const override { store(value); }
  int get() const override { return value(); }
};

class DoubleProperty final : public ValueProperty<moxDoubleProperty, double> {
 public:
  using ValueProperty::ValueProperty;

  std::string name() const override { return "DoubleProperty"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) const override;
  bool hasValue() const override { return value() != 0; }
  void set(double value) const override { store(value); }
  double get() const override { return value(); }
};

class StringProperty final : public ValueProperty<moxStringProperty, std::string> {
 public:
  using ValueProperty::ValueProperty;

  std::string name() const override { return "StringProperty"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) const override;
  bool hasValue() const override { return !value().empty(); }
  void set(std::string const& value) const override { store(value); }
  std::string get() const override { return value(); }
};

class TextProperty final : public ValueProperty<moxTextProperty, std::string> {
 public:
  using ValueProperty::ValueProperty;

  std::string name() const override { return "TextProperty"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) const override;
  bool hasValue() const override { return !value().empty(); }
  void set(std::string const& value) const override { store(value); }
  std::string get() const override { return value(); }
};
