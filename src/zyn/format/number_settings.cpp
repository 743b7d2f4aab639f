#include "zyn/format/number_settings.h"

#include <cstdlib>

#include "mox/core/xml.h"
#include "zyn/frame/xml_element.h"

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

void NumberSettings::loadTexts(XmlElement const& element) {
  description = element.attribute("description");
  prefix = element.attribute("prefix");
  suffix = element.attribute("suffix");
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

void NumberSettings::loadNumber(XmlElement const& element) {
  if (auto const thousand = element.child("thousand")) {
    groupCount = static_cast<char>(NumberLayout::groupSizeOf(readNumber(thousand, "grouping")));
    groupSeparator = readByte(thousand, "separator");
  }
  if (auto const span = element.child("span")) {
    spanFiller = readByte(span, "filler");
    spanSize = static_cast<unsigned int>(readNumber(span, "width"));
  }
}

int readNumber(XmlElement const& element, char const* attribute) {
  return static_cast<int>(std::strtol(element.attribute(attribute).c_str(), nullptr, 10));
}

char readByte(XmlElement const& element, char const* attribute) {
  return element.withAttribute(
      attribute, [](std::string_view text) { return text.empty() ? '\0' : text.front(); });
}

void writeByte(moxXMLNode& node, char const* attribute, char byte) {
  node.writeAttribute(attribute, byte == '\0' ? std::string() : std::string(1, byte));
}
