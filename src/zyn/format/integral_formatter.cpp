#include "zyn/format/integral_formatter.h"

#include <utility>

#include "mox/core/xml.h"
#include "zyn/format/cell_value.h"

bool IntegralFormatter::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  settings_.saveTexts(*node);
  settings_.saveNumber(*node);
  return true;
}

bool IntegralFormatter::load(std::shared_ptr<moxXMLNode> node) {
  return node && loadElement(XmlElement(std::move(node)));
}

bool IntegralFormatter::loadElement(XmlElement const& element) {
  settings_.loadTexts(element);
  settings_.resetNumber();
  settings_.loadNumber(element);
  snapshot_.invalidate();
  return true;
}

void IntegralFormatter::setGroupCount(char digits) {
  settings_.groupCount = digits;
  snapshot_.invalidate();
}

void IntegralFormatter::setGroupSeparator(char separator) {
  settings_.groupSeparator = separator;
  snapshot_.invalidate();
}

void IntegralFormatter::setSpan(unsigned int width, char filler) {
  settings_.spanSize = width;
  settings_.spanFiller = filler;
}

std::string IntegralFormatter::asString(std::shared_ptr<moxIterator const> const& cell) const {
  auto const* const ints = valueCursor<int>(cell.get(), moxDataMatrixTypes::Int);
  return ints != nullptr ? asString(static_cast<long long>(ints->get())) : std::string();
}

std::string IntegralFormatter::asString(long long value) const {
  std::string text;
  appendTo(text, value);
  return text;
}

NumberLayout IntegralFormatter::layout() const {
  auto const& taken = snapshot_.get([this] {
    return SeparatorSnapshot::Values{'.', settings_.groupSeparator, settings_.groupSize()};
  });
  return {.groupSeparator = taken.groupSeparator,
          .filler = settings_.spanFiller,
          .groupSize = taken.groupSize,
          .width = settings_.spanSize};
}

void IntegralFormatter::appendTo(std::string& out, long long value) const {
  out.append(settings_.prefix);
  appendInteger(out, value, layout());
  out.append(settings_.suffix);
}
