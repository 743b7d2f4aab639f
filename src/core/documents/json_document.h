#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "core/documents/json_values.h"
#include "mox/core/json.h"

namespace mox::core {

/// A JSON document; the nlohmann-json library reads the text and writes the scalars.
class JsonDocument : public moxJsonDocument {
 public:
  std::string name() const override { return "moxJsonDocument"; }
  std::shared_ptr<moxJsonValueObject> createObject() override;
  std::shared_ptr<moxJsonValueArray> createArray() override;
  std::shared_ptr<moxJsonValue> root() const override { return root_; }
  std::string text() const override { return root_->text(); }
  void parse(std::string_view text, std::size_t maxBytes = kDefaultMaxBytes) override;

 private:
  std::shared_ptr<JsonValue> root_ = std::make_shared<JsonObject>(1);
};

}  // namespace mox::core
