#include "core/run/definition_run.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

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

/// A failure inside a run, with the definition among its details, and what is wrong in its wiring.
moxErrorWithDetails runError(moxError const& cause, std::string const& name,
                             moxDataSource const& definition) {
  auto const told = cause.errorDetails();
  std::vector<std::string> details;
  for (auto const& problem : readWiring(definition).problems) {
    if (std::find(told.begin(), told.end(), problem) == told.end()) {
      details.push_back(problem);
    }
  }
  details.push_back("in the definition " + quotedForMessage(name));
  return {cause, {}, details};
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
                                                             "moxDataSourceExecutionContext")) {
  try {
    sources_ = inOrderOfRunning(found.source);
    withMembers(sources_);  // a member that is not there is told before anything is asked for
    for (auto const& source : sources_) {
      list_.push_back(toProcess(source));
    }
    offers_ = offersOf(sources_, list_);
  } catch (moxError const& error) {
    throw runError(error, name_, *found.source);
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
  runBy([&](auto const& context, std::vector<int> const& units) {
    context->processDataSources(std::move(notifier), list_, units, 0);
  });
  return context_->getDataMatrix(definition()->getName());
}

void DefinitionRun::runBy(Way const& way) {
  if (!filtersSet_) {
    setFilterArguments({});
  }
  try {
    way(context_, units_);
  } catch (moxError const& error) {
    throw runError(error, name_, *definition());
  } catch (std::out_of_range const& error) {
    throw runError(moxDefaultErrorImpl<moxError>("the definition refers to more than there is",
                                                 {error.what()}),
                   name_, *definition());
  }
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
