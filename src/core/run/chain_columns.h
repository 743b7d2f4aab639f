#pragma once

#include <memory>
#include <string>
#include <vector>

class VELMORApplication;
class moxDataSource;
class moxDataSourceExecutionContext;

namespace mox::core {

/// What sources made of other sources say of columns and what, by the rows that the run has so far,
/// is not so, though it fails nobody: keys and orders by columns that there are not, figures of
/// another kind, columns of one name, of which only the first is found. Sentences that name source
/// and column; of many only the first ones. To be asked of a run that executed its sources.
std::vector<std::string> columnProblems(
    VELMORApplication& application,
    std::vector<std::shared_ptr<moxDataSource const>> const& sources,
    moxDataSourceExecutionContext const& context);

}  // namespace mox::core
