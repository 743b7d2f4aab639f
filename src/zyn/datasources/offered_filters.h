#pragma once

#include <memory>
#include <vector>

#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/filters/filter_specification.h"

/// What a user can be asked for in a run, of the filters that its definition offers. With managers,
/// those that these let him use, once for each manager; and without those that the first filter
/// source has a condition of its own for, or none on purpose. None of the sources is empty.
std::vector<std::shared_ptr<moxFilterSpecification const>> offeredFilters(
    std::vector<std::shared_ptr<moxFilterSpecification const>> const& definitions,
    std::vector<moxManageFilterDataSource::ManageFilterData> const& managers,
    std::vector<std::shared_ptr<moxFilterDataSource const>> const& filterSources);
