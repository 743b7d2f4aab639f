#pragma once

#include <optional>
#include <string>

#include "cli/definitions/definition_view.h"
#include "mox/zyn/datasources/data_source.h"

namespace mox::cli {

/// "int", "double", "text", "date" or "blob"; another number as it is.
std::string typeWord(moxDataMatrixTypes::Types type);

/// How the source computes its rows from those of others, or what it changes; nothing for one that
/// asks the database for rows, or wires others.
std::optional<ComputingView> computingView(moxDataSource const& source);

}  // namespace mox::cli
