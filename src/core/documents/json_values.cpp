#include "core/documents/json_values.h"

#include <limits>
#include <nlohmann/json.hpp>

#include "core/documents/document_error.h"

namespace mox::core {

namespace {

using Type = moxJsonValue::Type;

// An index costs more than it saves while a list this long is walked.
constexpr std::size_t kUnindexed = 16;

constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

std::string nameOf(Type type) {
  switch (type) {
    case Type::kNull:
      return "null";
    case Type::kBool:
      return "a bool";
    case Type::kInteger:
      return "an integer";
    case Type::kDouble:
      return "a number";
    case Type::kString:
      return "a string";
    case Type::kObject:
      return "an object";
    case Type::kArray:
      return "an array";
  }
  return "a value";
}

[[noreturn]] void failKind(std::string const& wanted, Type found) {
  throw DocumentError("JSON", wanted + " is expected, " + nameOf(found) + " is there");
}

void writeString(std::string& out, std::string_view text) {
  try {
    out += nlohmann::json(text).dump();
  } catch (nlohmann::json::type_error const&) {
    throw DocumentError("JSON", "a text that is not UTF-8 cannot be written");
  }
}

struct ScalarWriter {
  std::string& out;

  void operator()(std::monostate) const { out += "null"; }
  void operator()(bool value) const { out += value ? "true" : "false"; }
  void operator()(std::int64_t value) const { out += std::to_string(value); }
  void operator()(double value) const { out += nlohmann::json(value).dump(); }  // NaN: null
  void operator()(std::string const& value) const { writeString(out, value); }
};

std::shared_ptr<JsonValue> scalar(JsonScalar::Content content) {
  return std::make_shared<JsonScalar>(std::move(content));
}

template <class Container>
std::shared_ptr<Container> containerBelow(int depth) {
  if (depth >= kMaxJsonDepth) {
    throw DocumentError("JSON",
                        "values cannot be nested deeper than " + std::to_string(kMaxJsonDepth));
  }
  return std::make_shared<Container>(depth + 1);
}

}  // namespace

std::shared_ptr<moxJsonValue> JsonValue::member(std::string_view) const {
  return {};
}

std::string JsonValue::readString() const {
  failKind("a string", type());
}

int JsonValue::readInt() const {
  failKind("an integer", type());
}

double JsonValue::readDouble() const {
  failKind("a number", type());
}

bool JsonValue::readBool() const {
  failKind("a bool", type());
}

std::string JsonValue::text() const {
  std::string out;
  write(out);
  return out;
}

Type JsonScalar::type() const {
  constexpr Type kTypes[] = {Type::kNull, Type::kBool, Type::kInteger, Type::kDouble,
                             Type::kString};
  return kTypes[content_.index()];
}

std::string JsonScalar::readString() const {
  auto const* const value = std::get_if<std::string>(&content_);
  return value != nullptr ? *value : JsonValue::readString();
}

int JsonScalar::readInt() const {
  auto const* const value = std::get_if<std::int64_t>(&content_);
  if (value == nullptr) {
    return JsonValue::readInt();
  }
  if (*value < std::numeric_limits<int>::min() || *value > std::numeric_limits<int>::max()) {
    throw DocumentError("JSON", "the integer " + std::to_string(*value) + " has more than 32 bits");
  }
  return static_cast<int>(*value);
}

double JsonScalar::readDouble() const {
  if (auto const* const integer = std::get_if<std::int64_t>(&content_)) {
    return static_cast<double>(*integer);
  }
  auto const* const value = std::get_if<double>(&content_);
  return value != nullptr ? *value : JsonValue::readDouble();
}

bool JsonScalar::readBool() const {
  auto const* const value = std::get_if<bool>(&content_);
  return value != nullptr ? *value : JsonValue::readBool();
}

void JsonScalar::write(std::string& out) const {
  std::visit(ScalarWriter{out}, content_);
}

std::size_t JsonObject::find(std::string_view name) const {
  if (!index_.empty()) {
    auto const found = index_.find(std::string(name));
    return found != index_.end() ? found->second : kNowhere;
  }
  for (std::size_t i = 0; i < members_.size(); ++i) {
    if (members_[i].first == name) {
      return i;
    }
  }
  return kNowhere;
}

void JsonObject::put(std::string_view name, std::shared_ptr<JsonValue> value) {
  std::size_t const place = find(name);
  if (place != kNowhere) {
    members_[place].second = std::move(value);
    return;
  }
  members_.emplace_back(name, std::move(value));
  if (!index_.empty()) {
    index_.emplace(name, members_.size() - 1);
  } else if (members_.size() > kUnindexed) {
    for (std::size_t i = 0; i < members_.size(); ++i) {
      index_.emplace(members_[i].first, i);
    }
  }
}

std::shared_ptr<moxJsonValue> JsonObject::member(std::string_view name) const {
  std::size_t const place = find(name);
  return place != kNowhere ? members_[place].second : nullptr;
}

void JsonObject::write(std::string& out) const {
  out += '{';
  char const* separator = "";
  for (auto const& [name, value] : members_) {
    out += separator;
    writeString(out, name);
    out += ':';
    value->write(out);
    separator = ",";
  }
  out += '}';
}

void JsonObject::addString(std::string_view name, std::string_view value) {
  put(name, scalar(std::string(value)));
}

void JsonObject::addInteger(std::string_view name, std::int64_t value) {
  put(name, scalar(value));
}

void JsonObject::addNumber(std::string_view name, double value) {
  put(name, scalar(value));
}

void JsonObject::addBool(std::string_view name, bool value) {
  put(name, scalar(value));
}

void JsonObject::addNull(std::string_view name) {
  put(name, scalar({}));
}

std::shared_ptr<moxJsonValueObject> JsonObject::addObject(std::string_view name) {
  auto const object = containerBelow<JsonObject>(depth_);
  put(name, object);
  return object;
}

std::shared_ptr<moxJsonValueArray> JsonObject::addArray(std::string_view name) {
  auto const array = containerBelow<JsonArray>(depth_);
  put(name, array);
  return array;
}

void JsonArray::write(std::string& out) const {
  out += '[';
  char const* separator = "";
  for (auto const& value : values_) {
    out += separator;
    value->write(out);
    separator = ",";
  }
  out += ']';
}

std::shared_ptr<moxJsonValueObject> JsonArray::addObject() {
  auto const object = containerBelow<JsonObject>(depth_);
  push(object);
  return object;
}

std::shared_ptr<moxJsonValueArray> JsonArray::addArray() {
  auto const array = containerBelow<JsonArray>(depth_);
  push(array);
  return array;
}

void JsonArray::pushString(std::string_view value) {
  push(scalar(std::string(value)));
}

void JsonArray::pushInteger(std::int64_t value) {
  push(scalar(value));
}

void JsonArray::pushNumber(double value) {
  push(scalar(value));
}

void JsonArray::pushBool(bool value) {
  push(scalar(value));
}

void JsonArray::pushNull() {
  push(scalar({}));
}

}  // namespace mox::core
