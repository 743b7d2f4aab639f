#pragma once

#include <string>

#include "mox/core/error.h"
#include "mox/core/error_with_details.h"
#include "mox/core/xml.h"
#include "zyn/frame/xml_element.h"

/// Failures of definitions, told so that their author finds the place: the sentence is fixed, the
/// details name the item, the element, its line, and what to do.

/// "By, line 12"; without the line for an element that was not read from a text.
inline std::string placeOf(XmlElement const& element) {
  int const line = element.line();
  return element.name() + (line > 0 ? ", line " + std::to_string(line) : std::string());
}

inline moxDefaultErrorImpl<moxError> definitionError(std::string message, XmlElement const& element,
                                                     std::string const& advice) {
  return moxDefaultErrorImpl<moxError>(std::move(message),
                                       {"element: " + placeOf(element), advice});
}

inline moxDefaultErrorImpl<moxError> definitionError(std::string message, moxXMLNode const& element,
                                                     std::string const& advice) {
  return definitionError(std::move(message), XmlElement(element), advice);
}

/// A failure inside an item, as it was, with the item ahead of its details. `element` is the
/// item's; definitions are called by its attribute "name", where they have one.
inline moxErrorWithDetails itemFailure(moxError const& error, XmlElement const& element) {
  auto const name = element.attribute("name");
  return {error, {"item: " + placeOf(element) + (name.empty() ? "" : ", name \"" + name + "\"")}};
}

inline moxErrorWithDetails itemFailure(moxError const& error, moxXMLNode const& element) {
  return itemFailure(error, XmlElement(element));
}
