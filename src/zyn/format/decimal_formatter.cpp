#include "zyn/format/decimal_formatter.h"

#include <utility>

#include "mox/core/xml.h"
#include "zyn/format/cell_value.h"

bool DecimalFormatter::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  settings_.saveTexts(*node);
  node->writeAttribute("precision", std::to_string(precision_));
  writeByte(*node, "separator", decimalSeparator_);
  settings_.saveNumber(*node);
  return true;
}

bool DecimalFormatter::load(std::shared_ptr<moxXMLNode> node) {
  return node && loadElement(XmlElement(std::move(node)));
}

bool DecimalFormatter::loadElement(XmlElement const& element) {
  settings_.loadTexts(element);
  settings_.resetNumber();
  precision_ = static_cast<unsigned int>(readNumber(element, "precision"));
  decimalSeparator_ = readByte(element, "separator");
  settings_.loadNumber(element);
  snapshot_.invalidate();
  return true;
}

void DecimalFormatter::setGroupCount(char digits) {
  settings_.groupCount = digits;
  snapshot_.invalidate();
}

void DecimalFormatter::setGroupSeparator(char separator) {
  settings_.groupSeparator = separator;
  snapshot_.invalidate();
}

void DecimalFormatter::setSpan(unsigned int width, char filler) {
  settings_.spanSize = width;
  settings_.spanFiller = filler;
}

std::string DecimalFormatter::asString(std::shared_ptr<moxIterator const> const& cell) const {
  std::string text;
  if (auto const* const doubles = valueCursor<double>(cell.get(), moxDataMatrixTypes::Double)) {
    appendTo(text, doubles->get());
  }
  return text;
}

std::string DecimalFormatter::asString(long double value) const {
  std::string text;
  appendTo(text, value);
  return text;
}

void DecimalFormatter::appendTo(std::string& out, double value) const {
  append(out, value);
}

void DecimalFormatter::appendTo(std::string& out, long double value) const {
  append(out, value);
}

NumberLayout DecimalFormatter::layout() const {
  auto const& taken = snapshot_.get([this] {
    return SeparatorSnapshot::Values{decimalSeparator_, settings_.groupSeparator,
                                     settings_.groupSize()};
  });
  return {.decimalSeparator = taken.decimalSeparator,
          .groupSeparator = taken.groupSeparator,
          .filler = settings_.spanFiller,
          .groupSize = taken.groupSize,
          .precision = precision_,
          .width = settings_.spanSize};
}

template <class Float>
void DecimalFormatter::append(std::string& out, Float value) const {
  std::size_t const from = out.size();
  out.append(settings_.prefix);
  appendDecimal(out, value, layout());
  if (allowShrinkPrecision_) {
    shrink(out, from);
  }
  out.append(settings_.suffix);
}

// Looks at the prefix too, and does not know where the decimals begin.
void DecimalFormatter::shrink(std::string& out, std::size_t from) const {
  std::size_t const last = out.find_last_not_of('0');
  if (last == std::string::npos || last < from) {
    return;
  }
  out.resize(out[last] == decimalSeparator_ ? last : last + 1);
}
