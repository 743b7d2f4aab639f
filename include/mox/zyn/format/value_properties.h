#pragma once

#include <string>

#include "mox/zyn/format/property.h"

/// An on/off setting, kept in an attribute as "1" or "0": on exactly when the text begins with
/// "1".
class moxBooleanProperty : public virtual moxProperty {
 public:
  /// Whether the setting is on.
  virtual bool hasValue() const = 0;

  /// Changes the setting, then tells the owner through the collection while that lives.
  virtual void set(bool value) const = 0;

  virtual bool get() const = 0;
};

/// A whole number, kept in an attribute in decimal digits; a text that begins with no number is 0.
class moxIntProperty : public virtual moxProperty {
 public:
  /// Whether the number is not 0.
  virtual bool hasValue() const = 0;

  /// Changes the setting, then tells the owner through the collection while that lives.
  virtual void set(int value) const = 0;

  virtual int get() const = 0;
};

/// A number, kept in an attribute with eight decimals and "." whatever the locale; an attribute
/// that is absent or empty leaves the setting as it was.
class moxDoubleProperty : public virtual moxProperty {
 public:
  /// Whether the number is not 0; true for a NaN.
  virtual bool hasValue() const = 0;

  /// Changes the setting, then tells the owner through the collection while that lives.
  virtual void set(double value) const = 0;

  virtual double get() const = 0;
};

/// A short text, kept in an attribute.
class moxStringProperty : public virtual moxProperty {
 public:
  /// Whether the text is not empty.
  virtual bool hasValue() const = 0;

  /// Changes the setting, then tells the owner through the collection while that lives.
  virtual void set(std::string const& value) const = 0;

  virtual std::string get() const = 0;
};

/// A long text, kept as the text of an element of its own; without the element it stays as it was.
class moxTextProperty : public virtual moxProperty {
 public:
  /// Whether the text is not empty.
  virtual bool hasValue() const = 0;

  /// Changes the setting, then tells the owner through the collection while that lives.
  virtual void set(std::string const& value) const = 0;

  virtual std::string get() const = 0;
};
