#pragma once

#include "cli/definitions/definition_view.h"
#include "cli/definitions/group_view.h"
#include "mox/zyn/datasources/data_source.h"

namespace mox::cli {

/// Adds all that a source tells of itself, and what it reads.
void addSource(DefinitionView& view, moxDataSource const& source);

/// The same for a source inside others.
void addSource(DefinitionView& view, moxDataSource const& source, ViewTrail& trail);

/// Adds a source's columns and filters only.
void addColumns(DefinitionView& view, moxDataSource const& source);

/// A source and all that it reads. A source that was met before is told by its name alone, so that
/// definitions that read each other in a ring come to an end.
DependencyView dependencyTree(moxDataSource const& source);

}  // namespace mox::cli
