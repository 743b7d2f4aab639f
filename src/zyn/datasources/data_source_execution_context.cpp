#include "zyn/datasources/data_source_execution_context.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <stdexcept>
#include <string_view>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/core/progress_notifier.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "zyn/datasources/compose_plan.h"
#include "zyn/datasources/managed_filters.h"
#include "zyn/frame/current_user.h"

namespace {

using Context = DataSourceExecutionContext;
using ManageFilterData = Context::ManageFilterData;

template <class Map>
auto entryOf(Map const& map, std::string const& key) {
  auto const found = map.find(key);
  return found != map.end() ? found->second : typename Map::mapped_type{};
}

void requireFilter(Context::ConstFilter const& filter) {
  if (!filter) {
    throw std::invalid_argument("a filter of a run must not be empty");
  }
}

void requireExecutions(Context::List const& list) {
  for (auto const& [name, source] : list) {
    if (!source.second) {
      throw std::invalid_argument("the list of a run has no execution for \"" + name + "\"");
    }
  }
}

RunUnits unitsOfRun(std::vector<int> units, int headOffice) {
  RunUnits run{.units = std::move(units), .headOffice = headOffice};
  auto const user = currentUser();
  if (!user) {
    return run;
  }
  if (run.units.empty()) {
    run.units.push_back(user->defaultUnit());
    run.unitsFromSession = true;
  }
  if (run.headOffice == 0) {
    run.headOffice = user->headOfficeUnit();
    run.headOfficeFromSession = true;
  }
  return run;
}

bool goesOn(Context::Notifier const& notifier, int done) {
  return !notifier || notifier->step(done);
}

/// Between a group and its member, where a filter's aim names both.
constexpr std::string_view kMemberMark = "->";

/// What `filters`, by source, hold for a group and its member: under the names, then under the
/// managers as far as those let it through.
template <class FilterMap>
auto filtersFor(FilterMap const& filters, std::vector<std::string> const& names,
                std::vector<ManageFilterData> const& managers) {
  typename FilterMap::mapped_type collected;
  for (auto const& name : names) {
    auto const entry = entryOf(filters, name);
    collected.insert(collected.end(), entry.begin(), entry.end());
  }
  for (auto const& manager : managers) {
    for (auto const& filter : entryOf(filters, manager.name)) {
      if (speaksOf(manager, filter->getColumnName())) {
        collected.push_back(filter);
      }
    }
  }
  return collected;
}

/// The names in their order, each once.
std::vector<std::string> namesOfGroup(std::string const& groupName, std::string const& targetName,
                                      std::string const& filterSource) {
  std::vector<std::string> names{groupName};
  if (!targetName.empty() && targetName != groupName) {
    names.push_back(targetName);
  }
  if (std::find(names.begin(), names.end(), filterSource) == names.end()) {
    names.push_back(filterSource);
  }
  return names;
}

/// The name, in the group's own context, of the member that `aim` names: what stands behind the
/// group's name and the mark. Empty for an aim at something else.
std::string memberAimedAt(std::string const& aim, std::string const& group) {
  bool const inside = !group.empty() && aim.starts_with(group) &&
                      std::string_view(aim).substr(group.size()).starts_with(kMemberMark);
  return inside ? aim.substr(group.size() + kMemberMark.size()) : std::string();
}

/// Adds what `filters` hold for single members of a group, by their names in its own context.
template <class FilterMap>
void addFiltersOfMembers(FilterMap const& filters, std::set<std::string> const& groupNames,
                         FilterMap& inside) {
  for (auto const& group : groupNames) {
    for (auto const& [aim, entry] : filters) {
      auto const member = memberAimedAt(aim, group);
      if (!member.empty()) {
        auto& aimed = inside[member];
        aimed.insert(aimed.end(), entry.begin(), entry.end());
      }
    }
  }
}

/// Ends the record of a source on every way out of it, in the report where it began.
class RecordedSource {
 public:
  RecordedSource(std::shared_ptr<RunRecorder> recorder, moxDataSourceToProcess const& entry,
                 bool executes)
      : recorder_(std::move(recorder)) {
    recorder_->sourceStarted(entry.first, entry.second.second->name(), executes);
  }
  ~RecordedSource() { recorder_->sourceFinished(); }

  RecordedSource(RecordedSource const&) = delete;
  RecordedSource& operator=(RecordedSource const&) = delete;

 private:
  std::shared_ptr<RunRecorder> const recorder_;
};

std::vector<std::string> namesOf(Context::List const& list) {
  std::vector<std::string> names;
  names.reserve(list.size());
  for (auto const& entry : list) {
    names.push_back(entry.first);
  }
  return names;
}

}  // namespace

bool DataSourceExecutionContext::setDataSourceFilters(std::string const& source,
                                                      std::vector<Filter> const& filters) {
  std::for_each(filters.begin(), filters.end(), requireFilter);
  return dataSourceFilters_.emplace(source, filters).second;
}

std::vector<Context::ConstFilter> DataSourceExecutionContext::getDataSourceFilters(
    std::string const& source) const {
  if (recorder_) {
    recorder_->filtersAsked(source);
  }
  auto const users = entryOf(dataSourceFilters_, source);
  auto const fixed = entryOf(dataSourceFixedFilters_, source);
  std::vector<ConstFilter> filters(users.begin(), users.end());
  filters.insert(filters.end(), fixed.begin(), fixed.end());
  return filters;
}

void DataSourceExecutionContext::addDataSourceFixedFilter(std::string const& source,
                                                          ConstFilter filter) {
  requireFilter(filter);
  dataSourceFixedFilters_[source].push_back(std::move(filter));
}

bool DataSourceExecutionContext::isFixedFilter(std::string const& source,
                                               ConstFilter const& filter) const {
  auto const users = entryOf(dataSourceFilters_, source);
  auto const fixed = entryOf(dataSourceFixedFilters_, source);
  return std::find(users.begin(), users.end(), filter) == users.end() &&
         std::find(fixed.begin(), fixed.end(), filter) != fixed.end();
}

std::shared_ptr<moxDataMatrix> DataSourceExecutionContext::getDataMatrix(
    std::string const& name) const {
  return entryOf(dataMatrices_, name);
}

bool DataSourceExecutionContext::registerDataMatrix(std::string const& name,
                                                    std::shared_ptr<moxDataMatrix> matrix) {
  if (!matrix) {
    return false;
  }
  auto const [entry, isNew] = dataMatrices_.emplace(name, std::move(matrix));
  if (isNew && recorder_) {
    recorder_->matrixRegistered(name, entry->second->rowCount());
  }
  return isNew;
}

bool DataSourceExecutionContext::processDataSources(Notifier notifier, List const& list,
                                                    std::vector<int> units, int headOffice) {
  requireExecutions(list);
  units_ = unitsOfRun(std::move(units), headOffice);
  if (!goesOn(notifier, 0) || processed_) {
    return true;
  }
  if (notifier) {
    notifier->setTotal(static_cast<int>(list.size()));
  }
  if (goesOn(notifier, 0)) {
    runList(notifier, list);
  }
  return true;
}

void DataSourceExecutionContext::runList(Notifier const& notifier, List const& list) {
  std::vector<bool> needed;
  if (recorder_) {
    recorder_->runStarted(units_, namesOf(list));
    needed = entriesNeededForStatements(list);
  }
  int done = 0;
  for (auto const& entry : list) {
    if (recorder_) {
      runRecorded(entry, needed[static_cast<std::size_t>(done)]);
    } else {
      runEntry(entry);
    }
    if (!goesOn(notifier, ++done)) {
      return;
    }
  }
  processed_ = true;
}

void DataSourceExecutionContext::runEntry(moxDataSourceToProcess const& entry) {
  atWork_ = entry.first;
  if (!entry.second.second->generateDataMatrix(shared_from_this(), entry.first)) {
    throw moxDefaultErrorImpl<moxError>("Falha: " + entry.first);
  }
  atWork_.reset();
}

/// A group appends its context when it begins, so that only the last one can be at work.
std::vector<std::string> DataSourceExecutionContext::sourcesAtWork() const {
  if (!atWork_) {
    return {};
  }
  std::vector<std::string> names{*atWork_};
  auto const* const inside =
      appendedContexts_.empty()
          ? nullptr
          : dynamic_cast<moxRunReporter const*>(appendedContexts_.back().get());
  if (inside != nullptr) {
    auto const members = inside->sourcesAtWork();
    names.insert(names.end(), members.begin(), members.end());
  }
  return names;
}

/// A source without a statement has nothing to show unless it is executed; its place is taken by an
/// empty matrix.
void DataSourceExecutionContext::runRecorded(moxDataSourceToProcess const& entry, bool needed) {
  RecordedSource const recorded(recorder_, entry, needed);
  if (recorder_->executes() || hasStatement(entry)) {
    runEntry(entry);
  } else if (!entry.first.empty()) {
    registerDataMatrix(entry.first, moxApp->get<moxDataMatrix>("moxDataMatrix"));
  }
}

std::shared_ptr<moxDataMatrixRow> DataSourceExecutionContext::getDataSourceRow(
    std::string const& rowKey, std::string const& matrixName) {
  auto const known = dataRows_.find(rowKey);
  if (known != dataRows_.end()) {
    return known->second;
  }
  auto const matrix = getDataMatrix(matrixName);
  return matrix ? dataRows_.emplace(rowKey, matrix->begin()).first->second : nullptr;
}

std::string DataSourceExecutionContext::getDataMatrixName(
    std::shared_ptr<moxDataMatrix const> const& matrix) const {
  auto const holdsIt = [&](auto const& entry) { return entry.second == matrix; };
  auto const found = std::find_if(dataMatrices_.begin(), dataMatrices_.end(), holdsIt);
  return found != dataMatrices_.end() ? found->first : std::string();
}

bool DataSourceExecutionContext::setDataSourceOptions(std::string const& source,
                                                      std::vector<Option> const& options) {
  std::vector<ConstOption> answers(options.begin(), options.end());
  return dataSourceOptions_.emplace(source, std::move(answers)).second;
}

std::vector<Context::ConstOption> DataSourceExecutionContext::getDataSourceOptions(
    std::string const& source) const {
  return entryOf(dataSourceOptions_, source);
}

void DataSourceExecutionContext::setReportContext(
    std::shared_ptr<moxReportExecutionContext> reportContext) {
  reportContext_ = std::move(reportContext);
}

std::shared_ptr<moxReportExecutionContext> DataSourceExecutionContext::getReportContext() const {
  return reportContext_;
}

void DataSourceExecutionContext::keepRunReport() {
  recorder_ = std::make_shared<RunRecorder>(RunRecorder::Mode::kExecute);
}

void DataSourceExecutionContext::composeOnly() {
  recorder_ = std::make_shared<RunRecorder>(RunRecorder::Mode::kComposeOnly);
}

moxRunReport DataSourceExecutionContext::runReport() const {
  if (!recorder_) {
    return {};
  }
  RunRecorder::FiltersBySource given = dataSourceFixedFilters_;
  for (auto const& [source, filters] : dataSourceFilters_) {
    auto& all = given[source];
    all.insert(all.begin(), filters.begin(), filters.end());
  }
  return recorder_->report(given);
}

void DataSourceExecutionContext::appendContext(
    std::shared_ptr<moxDataSourceExecutionContext> const& child, std::string const& filterSource,
    std::string const& groupName, std::string const& targetName,
    std::vector<ManageFilterData> const& manageData) const {
  if (!child || child.get() == this) {
    throw std::invalid_argument("a context takes filters from another one");
  }
  appendedContexts_.push_back(child);
  auto const names = namesOfGroup(groupName, targetName, filterSource);
  std::set<std::string> const groupNames{groupName, targetName};
  decltype(dataSourceFixedFilters_) fixed{
      {filterSource, filtersFor(dataSourceFixedFilters_, names, manageData)}};
  addFiltersOfMembers(dataSourceFixedFilters_, groupNames, fixed);
  for (auto const& [member, filters] : fixed) {
    for (auto const& filter : filters) {
      child->addDataSourceFixedFilter(member, filter);
    }
  }
  decltype(dataSourceFilters_) users{
      {filterSource, filtersFor(dataSourceFilters_, names, manageData)}};
  addFiltersOfMembers(dataSourceFilters_, groupNames, users);
  for (auto const& [member, filters] : users) {
    if (!filters.empty()) {  // an empty entry would shut out one that is set later
      child->setDataSourceFilters(member, filters);
    }
  }
  shareRecorder(*child, names, manageData);
}

/// The group's sources are part of this run's report, and whoever is passed on has been asked for.
void DataSourceExecutionContext::shareRecorder(
    moxDataSourceExecutionContext& child, std::vector<std::string> const& names,
    std::vector<ManageFilterData> const& manageData) const {
  if (!recorder_) {
    return;
  }
  if (auto* const own = dynamic_cast<DataSourceExecutionContext*>(&child)) {
    own->recorder_ = recorder_;
  }
  for (auto const& name : names) {
    recorder_->filtersAsked(name);
  }
  for (auto const& manager : manageData) {
    recorder_->filtersAsked(manager.name);
  }
}
