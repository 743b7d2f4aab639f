#pragma once

#include <memory>
#include <string>

#include "mox/zyn/format/text_formatter.h"
#include "zyn/format/property_formatter.h"

class TextFormatter final : public PropertyFormatter<moxTextAsString> {
 public:
  TextFormatter() : PropertyFormatter("description", "Descrição") {}

  std::string name() const override { return "moxTextFormatter"; }
  std::string asString(std::shared_ptr<moxIterator const> const& cell) const override;
  std::string asString(std::string const& text) const override;
};
