#pragma once

#include <string>

#include "cli/definitions/definition_view.h"

namespace mox::cli {

/// A definition as a JSON object over several lines.
std::string jsonText(DefinitionView const& view);

}  // namespace mox::cli
