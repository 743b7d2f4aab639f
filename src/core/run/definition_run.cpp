#include "core/run/definition_run.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

#include "core/run/chain.h"
#include "core/run/chain_columns.h"
#include "core/run/group_members.h"
#include "core/run/wiring.h"
#include "mox/core/error_with_details.h"
#include "mox/core/session.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"

namespace mox::core {

namespace {

using Source = std::shared_ptr<moxDataSource const>;

[[noreturn]] void fail(std::string const& message) {
  throw moxDefaultErrorImpl<moxError>(message);
}

/// With those of `details` that are not told yet.
moxErrorWithDetails withDetails(moxError const& cause, std::vector<std::string> details) {
  auto const told = cause.errorDetails();
  std::erase_if(details, [&](std::string const& detail) {
    return std::find(told.begin(), told.end(), detail) != told.end();
  });
  return {cause, {}, details};
}

/// A failure ahead of the run, with the definition among its details, and what is wrong in it.
moxErrorWithDetails preparingError(moxError const& cause, std::string const& name,
                                   moxDataSource const& definition) {
  auto details = readWiring(definition).problems;
  details.push_back("in the definition " + quotedForMessage(name));
  return withDetails(cause, details);
}

/// Each source once, those that others read ahead of these, the definition last.
std::vector<Source> inOrderOfRunning(Source const& definition) {
  std::vector<Source> sources;
  std::set<std::string> names{definition->getName()};
  for (auto const& related : definition->getRelatedDataSources(true)) {
    if (related && names.insert(related->getName()).second) {
      sources.push_back(related);
    }
  }
  sources.push_back(definition);
  return sources;
}

moxDataSourceToProcess toProcess(Source const& source) {
  auto execution = source->createExecution();
  if (!execution) {
    fail("the definition " + quotedForMessage(source->getName()) + " cannot be run");
  }
  return {source->getName(), {false, std::move(execution)}};
}

/// Without a user nobody is asked: then the host answers for the units.
void demandRight(std::shared_ptr<moxUserSession> const& user, std::vector<int> const& units) {
  if (!user || !user->worksByUnits()) {
    return;
  }
  auto const permitted = user->units();
  for (int const unit : units) {
    if (std::find(permitted.begin(), permitted.end(), unit) == permitted.end()) {
      fail("the user has no right to the unit " + std::to_string(unit));
    }
  }
}

bool hasStatements(moxDataSource const& source) {
  return dynamic_cast<moxSQLDataSource const*>(&source) != nullptr ||
         dynamic_cast<moxGroupDataSource const*>(&source) != nullptr;
}

/// Gathers what sources offer. One that reads another's rows may hand on the other's filters; such
/// a filter is aimed at the source that has a statement to narrow.
class Offers {
 public:
  void add(moxDataSource const& source, moxDataSourceToProcess const& entry) {
    for (auto const& specification : entry.second.second->getFilters()) {
      if (specification) {
        add({entry.first, specification}, hasStatements(source));
      }
    }
    if (auto const* const group = dynamic_cast<moxGroupDataSource const*>(&source)) {
      appendMemberOffers(*group, entry.first, offers_);
    }
  }

  std::vector<FilterOffer> take() { return std::move(offers_); }

 private:
  void add(FilterOffer offer, bool narrows) {
    auto const [known, isNew] = places_.emplace(offer.specification.get(), offers_.size());
    if (isNew) {
      offers_.push_back(std::move(offer));
    } else if (narrows) {
      offers_[known->second].source = offer.source;
    }
  }

  std::vector<FilterOffer> offers_;
  std::map<moxFilterSpecification const*, std::size_t> places_;
};

/// Where the sources at work stand, the innermost first. A source that is the whole run is not
/// told: the definition is.
std::vector<std::string> placesOf(std::vector<std::string> const& atWork,
                                  std::vector<Source> const& sources) {
  std::vector<std::string> places;
  for (std::size_t i = atWork.size(); i-- > 1;) {
    places.push_back("in the member " + quotedForMessage(atWork[i]) + " of the group " +
                     quotedForMessage(atWork[i - 1]));
  }
  if (atWork.empty() || sources.size() == 1) {
    return places;
  }
  auto const source = std::find_if(sources.begin(), sources.end(), [&](Source const& candidate) {
    return candidate->getName() == atWork.front();
  });
  auto const kind = source != sources.end() ? ", a " + (*source)->name() : std::string();
  places.push_back("in the source " + quotedForMessage(atWork.front()) + kind);
  return places;
}

/// Those that have run. The one that failed tells by itself what it lacks.
std::vector<Source> sourcesAhead(std::vector<std::string> const& atWork,
                                 std::vector<Source> const& sources) {
  auto const isAtWork = [&](Source const& source) {
    return !atWork.empty() && source->getName() == atWork.front();
  };
  return {sources.begin(), std::find_if(sources.begin(), sources.end(), isAtWork)};
}

bool anyChangesData(std::vector<Source> const& sources) {
  auto const all = withMembers(sources);
  return std::any_of(all.begin(), all.end(),
                     [](auto const& source) { return changesData(*source); });
}

std::vector<SortOffer> sortOffersFromTheTop(std::vector<Source> const& sources) {
  return sortOffersOf({sources.rbegin(), sources.rend()});
}

/// The definition's own come first, so that they win where names are equal in all.
std::vector<FilterOffer> offersOf(std::vector<Source> const& sources,
                                  std::vector<moxDataSourceToProcess> const& list) {
  Offers offers;
  for (std::size_t i = list.size(); i-- > 0;) {
    offers.add(*sources[i], list[i]);
  }
  return offers.take();
}

}  // namespace

DefinitionRun::DefinitionRun(VELMORApplication& application, moxSessionService& sessions,
                             std::string const& name)
    : DefinitionRun(application, sessions, name, findDefinition(application, name)) {}

DefinitionRun::DefinitionRun(VELMORApplication& application, moxSessionService& sessions,
                             std::string name, FoundDefinition found)
    : application_(application),
      sessions_(sessions),
      name_(std::move(name)),
      search_(std::move(found.search)),
      context_(madeByRegistry<moxDataSourceExecutionContext>(application,
                                                             "moxDataSourceExecutionContext")),
      reportContext_(std::make_shared<RunReportContext>(application)) {
  context_->setReportContext(reportContext_);
  try {
    sources_ = inOrderOfRunning(found.source);
    // A member that is not there is told here, before anything is asked for.
    changesData_ = anyChangesData(sources_);
    for (auto const& source : sources_) {
      list_.push_back(toProcess(source));
    }
    offers_ = offersOf(sources_, list_);
    sortOffers_ = sortOffersFromTheTop(sources_);
  } catch (moxError const& error) {
    throw preparingError(error, name_, *found.source);
  }
}

bool DefinitionRun::keepsToUnits() const {
  return UnitConfinement(sources_, {}).keepsToUnits();
}

void DefinitionRun::setUnits(std::vector<int> units) {
  if (filtersSet_) {
    throw std::logic_error("units are set before the filters that are kept to them");
  }
  demandRight(sessions_.currentUserSession(), units);
  units_ = std::move(units);
}

void DefinitionRun::setFilters(std::vector<std::string> const& texts) {
  setFilterArguments(readFilterArguments(texts, offers_));
}

void DefinitionRun::setFilterArguments(std::vector<FilterArgument> const& arguments) {
  if (filtersSet_) {
    throw std::logic_error("the filters of a run are set once");
  }
  demandRequiredFilters(arguments, offers_);
  UnitConfinement const confinement(sources_, scope());
  std::map<std::string, std::vector<std::shared_ptr<moxDataMatrixSQLFilter>>> bySource;
  for (auto const& argument : arguments) {
    filters_.push_back(confinement.confined(argument));
    bySource[argument.offer.source].push_back(makeSqlFilter(application_, filters_.back()));
  }
  for (auto const& [source, filters] : bySource) {
    context_->setDataSourceFilters(source, filters);
  }
  filtersSet_ = true;
}

void DefinitionRun::setOrder(std::vector<SortArgument> const& arguments) {
  if (!order_.empty()) {
    throw std::logic_error("the order of a run is set once");
  }
  if (!arguments.empty() && sortOffers_.empty()) {
    throw SortArgumentError("the definition " + quotedForMessage(name_) +
                            " has no order to choose: no sorter in it leaves it to its user");
  }
  order_ = readSortArguments(arguments, sortOffers_);
  for (auto const& [source, data] : sortOptionData(order_, sortOffers_)) {
    context_->setDataSourceOptions(source, data);
  }
}

void DefinitionRun::keepReport(Report report) {
  auto* const reporter = dynamic_cast<moxRunReporter*>(context_.get());
  if (report == Report::kNone) {
    return;
  }
  if (reporter == nullptr) {
    fail("the module that is loaded cannot tell how a run came to its result");
  }
  if (report == Report::kComposeOnly) {
    reporter->composeOnly();
    composesOnly_ = true;
  } else {
    reporter->keepRunReport();
  }
  reportKept_ = true;
}

std::shared_ptr<moxDataMatrix> DefinitionRun::run(
    std::shared_ptr<moxDataSourceExecutionProgressNotifier> notifier) {
  runBy([&](auto const& context, std::vector<int> const& units) {
    context->processDataSources(std::move(notifier), list_, units, 0);
  });
  demandOrderedColumns();
  return context_->getDataMatrix(definition()->getName());
}

/// A sorter passes over columns that its rows do not have, which is no answer to who asked for one.
void DefinitionRun::demandOrderedColumns() const {
  for (auto const& answer : order_) {
    auto const matrix = composesOnly_ ? nullptr : context_->getDataMatrix(answer.source);
    if (matrix && !matrix->columnByName(answer.column)) {
      fail("the source " + quotedForMessage(answer.source) + " offers to sort by " +
           quotedForMessage(answer.column) + ", a column that its rows do not have");
    }
  }
}

void DefinitionRun::runBy(Way const& way) {
  demandConsent();
  if (!filtersSet_) {
    setFilterArguments({});
  }
  try {
    way(context_, units_);
  } catch (moxError const& error) {
    throw withDetails(error, detailsOfFailure());
  } catch (std::out_of_range const& error) {
    moxDefaultErrorImpl<moxError> const told("the definition refers to more than there is",
                                             {error.what()});
    throw withDetails(told, detailsOfFailure());
  }
}

void DefinitionRun::demandConsent() const {
  if (changesData_ && !agreedToChanges_ && !composesOnly_) {
    fail("the definition " + quotedForMessage(name_) + " changes data, which nobody agreed to");
  }
}

/// Which source of the chain it was, what its definition lacks, and the definition that was run.
std::vector<std::string> DefinitionRun::detailsOfFailure() const {
  auto const* const reporter = dynamic_cast<moxRunReporter const*>(context_.get());
  auto const atWork = reporter != nullptr ? reporter->sourcesAtWork() : std::vector<std::string>();
  auto details = placesOf(atWork, sources_);
  for (auto const& problems :
       {chainProblems(sources_),
        columnProblems(application_, sourcesAhead(atWork, sources_), *context_),
        readWiring(*definition()).problems}) {
    details.insert(details.end(), problems.begin(), problems.end());
  }
  details.push_back("in the definition " + quotedForMessage(name_));
  return details;
}

std::vector<std::string> DefinitionRun::problems() const {
  auto problems = chainProblems(sources_);
  if (!composesOnly_) {
    auto const columns = columnProblems(application_, sources_, *context_);
    problems.insert(problems.end(), columns.begin(), columns.end());
  }
  return problems;
}

moxRunReport DefinitionRun::report() const {
  return reportKept_ ? dynamic_cast<moxRunReporter const&>(*context_).runReport() : moxRunReport();
}

/// As the context chooses them: what the session says stands in for what the caller left open.
UnitScope DefinitionRun::scope() const {
  UnitScope scope{units_, 0};
  if (auto const user = sessions_.currentUserSession()) {
    scope.headOffice = user->headOfficeUnit();
    if (scope.units.empty()) {
      scope.units = {user->defaultUnit()};
    }
  }
  return scope;
}

}  // namespace mox::core
