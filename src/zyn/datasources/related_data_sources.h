#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source.h"

/// The sources of those names in their order, as the calling thread's session sees them, and with
/// `deep` each behind those that it reads itself. Names that nobody knows are left out. Throws as
/// DepthGuard does; for a ring the details name those who are in it.
std::vector<std::shared_ptr<moxDataSource const>> relatedDataSources(
    std::vector<std::string> const& names, bool deep);

/// The first source that the context knows by `name`, or whose own name it is; empty for none.
std::shared_ptr<moxDataSource const> sourceInContext(std::vector<moxNamedDataSource> const& sources,
                                                     std::string const& name);

/// What that source gives as its related columns; none without it.
std::vector<moxDataSourceColumnType> relatedColumnsOf(
    std::vector<moxNamedDataSource> const& sources, std::string const& name);
