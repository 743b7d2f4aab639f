#include "core/documents/json_document.h"

#include "core/documents/document_error.h"
#include "core/documents/json_reader.h"

namespace mox::core {

std::shared_ptr<moxJsonValueObject> JsonDocument::createObject() {
  auto const object = std::make_shared<JsonObject>(1);
  root_ = object;
  return object;
}

std::shared_ptr<moxJsonValueArray> JsonDocument::createArray() {
  auto const array = std::make_shared<JsonArray>(1);
  root_ = array;
  return array;
}

void JsonDocument::parse(std::string_view text, std::size_t maxBytes) {
  if (text.size() > maxBytes) {
    throw DocumentError("JSON", "it is longer than " + std::to_string(maxBytes) + " bytes");
  }
  root_ = readJson(text);
}

}  // namespace mox::core
