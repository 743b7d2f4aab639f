#include "core/run/definition_run.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

#include "mox/core/application.h"
#include "mox/core/error_with_details.h"
#include "mox/core/session.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"

namespace mox::core {

namespace {

using Source = std::shared_ptr<moxDataSource const>;

[[noreturn]] void fail(std::string const& message) {
  throw moxDefaultErrorImpl<moxError>(message);
}

/// A failure inside a run, with the definition among its details.
moxErrorWithDetails runError(moxError const& cause, std::string const& definition) {
  return {cause, {}, {"in the definition " + quotedForMessage(definition)}};
}

template <class T>
std::shared_ptr<T> made(VELMORApplication& application, char const* className) {
  auto object = application.get<T>(className);
  if (!object) {
    fail(std::string("the class ") + className + " is not available to this session");
  }
  return object;
}

Source findSource(VELMORApplication& application, std::string const& name) {
  auto const item = made<moxZYNCache>(application, "moxZYNCache")->getCollection(name);
  if (!item) {
    fail("there is no definition " + quotedForMessage(name));
  }
  auto source =
      std::dynamic_pointer_cast<moxDataSource const>(std::shared_ptr<moxZYNItem const>(item));
  if (!source) {
    source = std::dynamic_pointer_cast<moxDataSource const>(
        std::shared_ptr<moxZYNItem const>(item->getZynItemRelated()));
  }
  if (!source) {
    fail("the definition " + quotedForMessage(name) + " gives no data: it is a " + item->name());
  }
  return source;
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

/// The definition's own come first, so that they win where names are equal in all.
std::vector<FilterOffer> offersOf(std::vector<moxDataSourceToProcess> const& list) {
  std::vector<FilterOffer> offers;
  std::set<moxFilterSpecification const*> seen;
  for (auto entry = list.rbegin(); entry != list.rend(); ++entry) {
    for (auto const& specification : entry->second.second->getFilters()) {
      if (specification && seen.insert(specification.get()).second) {
        offers.push_back({entry->first, specification});
      }
    }
  }
  return offers;
}

}  // namespace

DefinitionRun::DefinitionRun(VELMORApplication& application, moxSessionService& sessions,
                             std::string name)
    : application_(application),
      sessions_(sessions),
      name_(std::move(name)),
      sources_(inOrderOfRunning(findSource(application, name_))),
      context_(made<moxDataSourceExecutionContext>(application, "moxDataSourceExecutionContext")) {
  for (auto const& source : sources_) {
    list_.push_back(toProcess(source));
  }
  offers_ = offersOf(list_);
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
  } else {
    reporter->keepRunReport();
  }
  reportKept_ = true;
}

std::shared_ptr<moxDataMatrix> DefinitionRun::run(
    std::shared_ptr<moxDataSourceExecutionProgressNotifier> notifier) {
  if (!filtersSet_) {
    setFilterArguments({});
  }
  try {
    context_->processDataSources(std::move(notifier), list_, units_, 0);
  } catch (moxError const& error) {
    throw runError(error, name_);
  } catch (std::out_of_range const& error) {
    throw runError(moxDefaultErrorImpl<moxError>("the definition refers to more than there is",
                                                 {error.what()}),
                   name_);
  }
  return context_->getDataMatrix(definition()->getName());
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
