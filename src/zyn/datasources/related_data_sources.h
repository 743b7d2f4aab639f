#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/data_source.h"

/// The sources of those names, which the definition `reader` reads, in their order, as the calling
/// thread's session sees them; with `deep` each behind those that it reads itself, as often as it
/// is read. Names that nobody knows are left out. Throws as DepthGuard does, also when the lists of
/// all definitions behind `reader` together grow beyond kMostSourcesListed; for a ring the details
/// name those who are in it.
std::vector<std::shared_ptr<moxDataSource const>> relatedDataSources(
    std::string const& reader, std::vector<std::string> const& names, bool deep);

/// A list doubles with each level at which a source is read twice.
constexpr std::size_t kMostSourcesListed = 200'000;

/// The first source that the context knows by `name`, or whose own name it is; empty for none.
std::shared_ptr<moxDataSource const> sourceInContext(std::vector<moxNamedDataSource> const& sources,
                                                     std::string const& name);

/// What that source gives as its related columns; none without it.
std::vector<moxDataSourceColumnType> relatedColumnsOf(
    std::vector<moxNamedDataSource> const& sources, std::string const& name);
