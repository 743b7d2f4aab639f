#pragma once

#include <pugixml.hpp>
#include <string>

namespace mox::core {

/// The element with all that it holds, as text that reads back as the same. `indent` puts elements
/// on lines of their own, two blanks a level, except inside an element that has text.
std::string writeXml(pugi::xml_node root, bool indent, bool declaration);

}  // namespace mox::core
