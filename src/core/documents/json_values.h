#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "mox/core/json.h"

namespace mox::core {

/// How deep values may be nested, the root being 1. Whoever walks a document may recurse.
constexpr int kMaxJsonDepth = 64;

/// What all values share: they answer that they are nothing special, and write themselves.
class JsonValue : public virtual moxJsonValue {
 public:
  std::shared_ptr<moxJsonValue> member(std::string_view name) const override;
  std::string readString() const override;
  int readInt() const override;
  double readDouble() const override;
  bool readBool() const override;
  std::string text() const override;

  /// Appends the value's JSON text. Throws DocumentError for a text that is not UTF-8.
  virtual void write(std::string& out) const = 0;
};

/// A value that holds no others.
class JsonScalar : public JsonValue {
 public:
  using Content = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

  explicit JsonScalar(Content content) : content_(std::move(content)) {}

  Type type() const override;
  std::string readString() const override;
  int readInt() const override;
  double readDouble() const override;
  bool readBool() const override;
  void write(std::string& out) const override;

 private:
  Content content_;
};

/// Members in order; beyond a few of them an index finds them by name.
class JsonObject : public JsonValue, public moxJsonValueObject {
 public:
  explicit JsonObject(int depth) : depth_(depth) {}

  /// Puts a value behind the others, or in the place of the one with that name.
  void put(std::string_view name, std::shared_ptr<JsonValue> value);

  Type type() const override { return Type::kObject; }
  std::shared_ptr<moxJsonValue> member(std::string_view name) const override;
  void write(std::string& out) const override;

  void addString(std::string_view name, std::string_view value) override;
  void addInteger(std::string_view name, std::int64_t value) override;
  void addNumber(std::string_view name, double value) override;
  void addBool(std::string_view name, bool value) override;
  void addNull(std::string_view name) override;
  std::shared_ptr<moxJsonValueObject> addObject(std::string_view name) override;
  std::shared_ptr<moxJsonValueArray> addArray(std::string_view name) override;
  std::size_t size() const override { return members_.size(); }
  std::string memberName(std::size_t index) const override { return members_.at(index).first; }

 private:
  std::size_t find(std::string_view name) const;

  int depth_;
  std::vector<std::pair<std::string, std::shared_ptr<JsonValue>>> members_;
  std::unordered_map<std::string, std::size_t> index_;  // empty while the members are few
};

class JsonArray : public JsonValue, public moxJsonValueArray {
 public:
  explicit JsonArray(int depth) : depth_(depth) {}

  void push(std::shared_ptr<JsonValue> value) { values_.push_back(std::move(value)); }

  Type type() const override { return Type::kArray; }
  void write(std::string& out) const override;

  std::shared_ptr<moxJsonValueObject> addObject() override;
  std::shared_ptr<moxJsonValueArray> addArray() override;
  void pushString(std::string_view value) override;
  void pushInteger(std::int64_t value) override;
  void pushNumber(double value) override;
  void pushBool(bool value) override;
  void pushNull() override;
  std::size_t size() const override { return values_.size(); }
  std::shared_ptr<moxJsonValue> at(std::size_t index) const override { return values_.at(index); }

 private:
  int depth_;
  std::vector<std::shared_ptr<JsonValue>> values_;
};

}  // namespace mox::core
