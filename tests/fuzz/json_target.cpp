#include "fuzz/targets.h"

#include "core/documents/json_document.h"
#include "fuzz/promise.h"

namespace mox::fuzz {

namespace {

void walk(moxJsonValue const& value) {
  if (auto const* const object = dynamic_cast<moxJsonValueObject const*>(&value)) {
    for (std::size_t i = 0; i < object->size(); ++i) {
      auto const member = object->member(object->memberName(i));
      require(member != nullptr, "a member is found by its name");
      walk(*member);
    }
  } else if (auto const* const array = dynamic_cast<moxJsonValueArray const*>(&value)) {
    for (std::size_t i = 0; i < array->size(); ++i) {
      walk(*array->at(i));
    }
  }
}

}  // namespace

void readJson(std::string_view bytes) {
  mox::core::JsonDocument document;
  if (!accepted([&] { document.parse(bytes); })) {
    return;
  }
  walk(*document.root());
  std::string const text = document.text();
  mox::core::JsonDocument again;
  require(accepted([&] { again.parse(text); }), "what was written can be read");
  require(again.text() == text, "reading and writing gives the same text");
}

}  // namespace mox::fuzz
