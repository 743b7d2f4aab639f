#include "zyn/format/text_formatter.h"

#include "zyn/format/cell_value.h"

std::string TextFormatter::asString(std::shared_ptr<moxIterator const> const& cell) const {
  return withBytesOf(cell.get(), [this](std::string const& text) { return asString(text); });
}

std::string TextFormatter::asString(std::string const& text) const {
  return text.empty() ? text : prefix() + text + suffix();
}
