#include "zyn/format/number_settings.h"

#include <cstdlib>

#include "mox/core/xml.h"

void NumberSettings::resetNumber() {
  groupCount = 0;
  groupSeparator = ',';
  spanSize = 0;
  spanFiller = '\0';
}

void NumberSettings::saveTexts(moxXMLNode& node) const {
  node.writeAttribute("description", description);
  node.writeAttribute("prefix", prefix);
  node.writeAttribute("suffix", suffix);
}

void NumberSettings::loadTexts(moxXMLNode const& node) {
  description = node.readAttribute("description");
  prefix = node.readAttribute("prefix");
  suffix = node.readAttribute("suffix");
}

void NumberSettings::saveNumber(moxXMLNode& node) const {
  if (groupCount != 0) {
    auto const thousand = node.addChild("thousand");
    thousand->writeAttribute("grouping", std::to_string(static_cast<int>(groupCount)));
    writeByte(*thousand, "separator", groupSeparator);
  }
  if (spanSize != 0) {
    auto const span = node.addChild("span");
    writeByte(*span, "filler", spanFiller);
    span->writeAttribute("width", std::to_string(spanSize));
  }
}

void NumberSettings::loadNumber(moxXMLNode const& node) {
  if (auto const thousand = node.childByIndex(0, "thousand")) {
    groupCount = static_cast<char>(NumberLayout::groupSizeOf(readNumber(*thousand, "grouping")));
    groupSeparator = readByte(*thousand, "separator");
  }
  if (auto const span = node.childByIndex(0, "span")) {
    spanFiller = readByte(*span, "filler");
    spanSize = static_cast<unsigned int>(readNumber(*span, "width"));
  }
}

int readNumber(moxXMLNode const& node, char const* attribute) {
  return static_cast<int>(std::strtol(node.readAttribute(attribute).c_str(), nullptr, 10));
}

char readByte(moxXMLNode const& node, char const* attribute) {
  auto const text = node.readAttribute(attribute);
  return text.empty() ? '\0' : text.front();
}

void writeByte(moxXMLNode& node, char const* attribute, char byte) {
  node.writeAttribute(attribute, byte == '\0' ? std::string() : std::string(1, byte));
}
