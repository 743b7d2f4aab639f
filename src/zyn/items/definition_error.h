#pragma once

#include <string>
#include <vector>

#include "mox/core/error.h"
#include "mox/core/xml.h"

/// Failures of definitions, told so that their author finds the place: the sentence is fixed, the
/// details name the item, the element, its line, and what to do.

/// "By, line 12"; without the line for an element that was not read from a text.
inline std::string placeOf(moxXMLNode const& element) {
  int const line = element.line();
  return element.elementName() + (line > 0 ? ", line " + std::to_string(line) : std::string());
}

inline moxDefaultErrorImpl<moxError> definitionError(std::string message, moxXMLNode const& element,
                                                     std::string const& advice) {
  return moxDefaultErrorImpl<moxError>(std::move(message),
                                       {"element: " + placeOf(element), advice});
}

/// A failure inside an item, as it was, with the item ahead of its details.
class ItemFailure final : public moxError {
 public:
  /// `element` is the item's; definitions are called by its attribute "name", where they have one.
  ItemFailure(moxError const& error, moxXMLNode const& element)
      : message_(error.errorMessage()), code_(error.errorCode()), details_(error.errorDetails()) {
    auto const name = element.readAttribute("name");
    details_.insert(details_.begin(),
                    "item: " + placeOf(element) + (name.empty() ? "" : ", name \"" + name + "\""));
  }

  std::string errorMessage() const override { return message_; }
  std::vector<std::string> errorDetails() const override { return details_; }
  std::string errorCode() const override { return code_; }

 private:
  std::string message_;
  std::string code_;
  std::vector<std::string> details_;
};
