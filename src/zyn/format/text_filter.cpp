#include "zyn/format/text_filter.h"

#include "zyn/format/ascii_text.h"
#include "zyn/format/cell_value.h"

namespace {

constexpr char const* kDefaultPattern = "[^a-zA-Z0-9 ]";

}  // namespace

TextFilter::TextFilter() : PropertyFormatter("name", "Nome"), asciiPattern_(kDefaultPattern) {}

void TextFilter::moreSettings(SettingVisitor const& visitor) {
  visitor.flag("upper", "Tornar maiúsculas", upper_);
  visitor.flag("asciiOnly", "Somente ASCII", asciiOnly_);
  visitor.flag("trim", "Remover Espaços iniciais e finais", trim_);
}

// A pattern that is none is kept, and complains when it is used.
void TextFilter::setAsciiOnly(bool enable, std::string const& pattern) {
  asciiOnly_ = enable;
  asciiPattern_ = pattern;
  compiled_.reset();
  if (pattern != kDefaultPattern) {
    try {
      compiled_.emplace(pattern);
    } catch (std::regex_error const&) {
      compiled_.reset();
    }
  }
}

std::string TextFilter::asString(std::shared_ptr<moxIterator const> const& cell) const {
  return withBytesOf(cell.get(), [this](std::string const& text) { return asString(text); });
}

std::string TextFilter::asString(std::string const& text) const {
  std::string filtered = text;
  if (asciiOnly_) {
    replaceAccents(filtered);
    removePattern(filtered);
  }
  if (upper_) {
    toUpperBytes(filtered);
  }
  if (trim_) {
    trimSpace(filtered);
  }
  return prefix() + filtered + suffix();
}

void TextFilter::removePattern(std::string& text) const {
  if (asciiPattern_ == kDefaultPattern) {
    keepLettersDigitsAndBlanks(text);
  } else if (compiled_) {
    text = std::regex_replace(text, *compiled_, "");
  } else {
    text = std::regex_replace(text, std::regex(asciiPattern_), "");
  }
}
