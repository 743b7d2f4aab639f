#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "mox/core/plugin_base.h"

/// A value of a JSON document, with all that it holds. It lives as long as somebody holds it, also
/// when its document was dropped or the value was replaced there. A document and its values belong
/// to one thread at a time.
class moxJsonValue {
 public:
  /// What kind of value it is. The numbers are part of the interface; 5 is not in use.
  enum class Type {
    kNull = 0,
    kBool = 1,
    kInteger = 2,  // written without fraction and exponent, within 64 bits
    kDouble = 3,   // every other number
    kString = 4,
    kObject = 6,
    kArray = 7
  };

  virtual ~moxJsonValue() = default;

  /// The member of an object; empty when there is none of that name, or the value is no object.
  virtual std::shared_ptr<moxJsonValue> member(std::string_view name) const = 0;

  virtual Type type() const = 0;

  /// The value, when it is of the kind asked for; otherwise a moxError that names both kinds.
  /// readInt also throws for an integer beyond 32 bits; readDouble takes both kinds of number.
  virtual std::string readString() const = 0;
  virtual int readInt() const = 0;
  virtual double readDouble() const = 0;
  virtual bool readBool() const = 0;

  /// The value as JSON text, on one line. Throws moxError for a text that is not UTF-8.
  virtual std::string text() const = 0;
};

class moxJsonValueArray;

/// An object whose members stand in the order they were first added.
///
/// Adding a name that is there already replaces the value in its place. A number that JSON cannot
/// write (NaN, infinite) becomes null. addObject and addArray throw moxError when values would be
/// nested deeper than 64, the bound of reading.
class moxJsonValueObject : public virtual moxJsonValue {
 public:
  virtual void addString(std::string_view name, std::string_view value) = 0;
  virtual void addInteger(std::string_view name, std::int64_t value) = 0;
  virtual void addNumber(std::string_view name, double value) = 0;
  virtual void addBool(std::string_view name, bool value) = 0;
  virtual void addNull(std::string_view name) = 0;

  /// Adds an empty object or array and hands it out to be filled.
  virtual std::shared_ptr<moxJsonValueObject> addObject(std::string_view name) = 0;
  virtual std::shared_ptr<moxJsonValueArray> addArray(std::string_view name) = 0;

  virtual std::size_t size() const = 0;

  /// Name of the member with number `index`, from 0. Throws std::out_of_range.
  virtual std::string memberName(std::size_t index) const = 0;
};

/// An array; pushes go behind the last value. Rules are those of moxJsonValueObject.
class moxJsonValueArray : public virtual moxJsonValue {
 public:
  virtual std::shared_ptr<moxJsonValueObject> addObject() = 0;
  virtual std::shared_ptr<moxJsonValueArray> addArray() = 0;

  virtual void pushString(std::string_view value) = 0;
  virtual void pushInteger(std::int64_t value) = 0;
  virtual void pushNumber(double value) = 0;
  virtual void pushBool(bool value) = 0;
  virtual void pushNull() = 0;

  virtual std::size_t size() const = 0;

  /// The value with number `index`, from 0; never empty. Throws std::out_of_range.
  virtual std::shared_ptr<moxJsonValue> at(std::size_t index) const = 0;
};

/// A JSON document. Registered as "moxJsonDocument"; born with an empty object as its root. Belongs
/// to one thread at a time.
class moxJsonDocument : public virtual moxPluginBase {
 public:
  /// How much text parse takes unless told otherwise: 16 MiB.
  static constexpr std::size_t kDefaultMaxBytes = std::size_t{16} << 20;

  /// Starts anew with an empty root of the kind, and hands it out.
  virtual std::shared_ptr<moxJsonValueObject> createObject() = 0;
  virtual std::shared_ptr<moxJsonValueArray> createArray() = 0;

  /// The root; never empty.
  virtual std::shared_ptr<moxJsonValue> root() const = 0;

  /// The document as UTF-8 text on one line, members in their order. Throws moxError for a text in
  /// it that is not UTF-8.
  virtual std::string text() const = 0;

  /// Reads one value, of any kind, with nothing but white space around it. Of members with one name
  /// the last one counts. Throws a moxError that tells line and column, and leaves the document as
  /// it was, for a text that is no JSON, is not UTF-8, is nested deeper than 64, holds more than a
  /// million values, or is longer than `maxBytes`.
  virtual void parse(std::string_view text, std::size_t maxBytes = kDefaultMaxBytes) = 0;
};
