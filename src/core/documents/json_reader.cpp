#include "core/documents/json_reader.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/documents/document_error.h"
#include "core/documents/utf8.h"

namespace mox::core {

namespace {

/// The library's complaint without its own numbering and position, and without the piece of text
/// that it quotes, which may be long or hold anything.
std::string complaintOf(std::string what) {
  for (std::string_view const until : {"] ", "column "}) {
    std::size_t const found = what.find(until);
    what.erase(0, found == std::string::npos ? 0 : found + until.size());
  }
  std::size_t const digits = what.find_first_not_of("0123456789: ");
  what.erase(0, digits == std::string::npos ? 0 : digits);
  return what.substr(0, what.find("; last read"));
}

/// Where the bracket stands that opens one level too many. Asked only for a text whose beginning
/// was read as JSON up to there.
std::size_t offsetOfDepth(std::string_view text, int depth) {
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const c = text[i];
    if (inString && c == '\\') {
      ++i;
    } else if (c == '"') {
      inString = !inString;
    } else if (!inString && (c == '[' || c == '{') && --depth == 0) {
      return i;
    } else if (!inString && (c == ']' || c == '}')) {
      ++depth;
    }
  }
  return text.size();
}

/// Builds the values from what the library finds, one after the other. Each operation gives true to
/// go on; failures are thrown.
class Builder {
 public:
  explicit Builder(std::string_view text) : text_(text) {}

  std::shared_ptr<JsonValue> takeRoot() { return std::move(root_); }

  bool null() { return scalar({}); }
  bool boolean(bool value) { return scalar(value); }
  bool number_integer(std::int64_t value) { return scalar(value); }
  bool number_unsigned(std::uint64_t value) {
    constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return value <= kMax ? scalar(static_cast<std::int64_t>(value))
                         : scalar(static_cast<double>(value));
  }
  bool number_float(double value, std::string const&) { return scalar(value); }
  bool string(std::string& value) { return scalar(std::move(value)); }
  bool binary(nlohmann::json::binary_t&) { return false; }  // no text holds one

  bool start_object(std::size_t) {
    auto object = std::make_shared<JsonObject>(nextDepth());
    place(object);
    open_.push_back({object.get(), nullptr, {}});
    return true;
  }
  bool start_array(std::size_t) {
    auto array = std::make_shared<JsonArray>(nextDepth());
    place(array);
    open_.push_back({nullptr, array.get(), {}});
    return true;
  }
  bool key(std::string& name) {
    open_.back().key = std::move(name);
    return true;
  }
  bool end_object() { return end(); }
  bool end_array() { return end(); }

  bool parse_error(std::size_t bytesRead, std::string const&,
                   nlohmann::json::exception const& error) {
    // Bytes are counted with the one that did not fit.
    std::size_t const at = bytesRead > 0 ? bytesRead - 1 : 0;
    throw DocumentError("JSON", positionAt(text_, at), complaintOf(error.what()));
  }

 private:
  /// A container that is being filled; one of the two is set. Its owner is what holds it.
  struct Open {
    JsonObject* object;
    JsonArray* array;
    std::string key;  // of the member that comes next
  };

  bool scalar(JsonScalar::Content content) {
    place(std::make_shared<JsonScalar>(std::move(content)));
    return true;
  }

  int nextDepth() const {
    if (open_.size() >= static_cast<std::size_t>(kMaxJsonDepth)) {
      throw DocumentError("JSON", positionAt(text_, offsetOfDepth(text_, kMaxJsonDepth + 1)),
                          "values are nested deeper than " + std::to_string(kMaxJsonDepth));
    }
    return static_cast<int>(open_.size()) + 1;
  }

  void place(std::shared_ptr<JsonValue> value) {
    if (++values_ > kMaxJsonValues) {
      throw DocumentError("JSON",
                          "it holds more than " + std::to_string(kMaxJsonValues) + " values");
    }
    if (open_.empty()) {
      root_ = std::move(value);
    } else if (open_.back().object != nullptr) {
      open_.back().object->put(open_.back().key, std::move(value));
    } else {
      open_.back().array->push(std::move(value));
    }
  }

  bool end() {
    open_.pop_back();
    return true;
  }

  std::string_view text_;
  std::shared_ptr<JsonValue> root_;
  std::vector<Open> open_;
  std::size_t values_ = 0;
};

}  // namespace

std::shared_ptr<JsonValue> readJson(std::string_view text) {
  std::size_t const invalid = findInvalidUtf8(text);
  if (invalid != std::string_view::npos) {
    throw DocumentError("JSON", positionAt(text, invalid), "the text is not UTF-8");
  }
  Builder builder(text);
  nlohmann::json::sax_parse(text.begin(), text.end(), &builder);
  return builder.takeRoot();
}

}  // namespace mox::core
