#pragma once

#include <string>

#include "cli/definitions/definition_view.h"

namespace mox::cli {

/// A definition as a tree of lines for people. Nothing in it steers a terminal.
std::string treeText(DefinitionView const& view);

}  // namespace mox::cli
