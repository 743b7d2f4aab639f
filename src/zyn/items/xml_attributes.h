#pragma once

#include <charconv>
#include <string>
#include <string_view>

#include "mox/core/xml.h"
#include "zyn/frame/xml_element.h"

/// Values as definitions keep them in attributes. Reading never fails: what is absent or no value
/// of the kind gives the default. Writing always gives what reading takes.
namespace xml_attributes {

/// "1" is true and "0" is false.
inline bool boolOf(std::string_view text, bool defaultValue = false) {
  return text == "1" || (text != "0" && defaultValue);
}

inline bool readBool(moxXMLNode const& node, std::string_view name, bool defaultValue = false) {
  return boolOf(node.readAttribute(name), defaultValue);
}

inline bool readBool(XmlElement const& element, std::string_view name, bool defaultValue = false) {
  return element.withAttribute(name,
                               [&](std::string_view text) { return boolOf(text, defaultValue); });
}

inline void writeBool(moxXMLNode& node, std::string_view name, bool value) {
  node.writeAttribute(name, value ? "1" : "0");
}

/// A whole text of decimal digits, perhaps behind a "-", that fits into 32 bits.
inline int intOf(std::string_view text, int defaultValue = 0) {
  int value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  bool const whole = error == std::errc() && end == text.data() + text.size();
  return whole ? value : defaultValue;
}

inline int readInt(moxXMLNode const& node, std::string_view name, int defaultValue = 0) {
  return intOf(node.readAttribute(name), defaultValue);
}

inline int readInt(XmlElement const& element, std::string_view name, int defaultValue = 0) {
  return element.withAttribute(name,
                               [&](std::string_view text) { return intOf(text, defaultValue); });
}

inline void writeInt(moxXMLNode& node, std::string_view name, int value) {
  node.writeAttribute(name, std::to_string(value));
}

}  // namespace xml_attributes
