#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/run/definition_lookup.h"
#include "core/run/filter_argument.h"
#include "core/run/run_report_context.h"
#include "core/run/sort_argument.h"
#include "core/run/unit_confinement.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/run_report.h"

class VELMORApplication;
class moxDataSource;
class moxSessionService;

namespace mox::core {

/// One run of a definition with all that it depends on, for the calling thread's session: found
/// through the caches, wired, filtered, run. Every host takes this road, because on it nothing that
/// a user writes widens what he may see. Belongs to one thread, and runs once.
///
///     DefinitionRun run(application, application.sessions(), "Alunos");
///     run.setFilters({"turma=3", "nota=5..9"});
///     auto const matrix = run.run();
class DefinitionRun {
 public:
  enum class Report {
    kNone,
    kKept,        // of a run as any other
    kComposeOnly  // statements are put together and, but for what others need, not sent
  };

  /// Throws moxError when the session finds no source of data under the name, and for a group whose
  /// members do not fit together; of a search the source is run.
  DefinitionRun(VELMORApplication& application, moxSessionService& sessions,
                std::string const& name);

  /// For a definition that was found before, under the name by which failures tell it.
  DefinitionRun(VELMORApplication& application, moxSessionService& sessions, std::string name,
                FoundDefinition found);

  std::shared_ptr<moxDataSource const> const& definition() const { return sources_.back(); }

  /// The search that was named; empty when the name is that of a source.
  std::shared_ptr<moxSearch const> const& search() const { return search_; }

  /// The sources in the order of running, the definition last.
  std::vector<std::shared_ptr<moxDataSource const>> const& sources() const { return sources_; }

  /// What a user can be asked for: the definition's own filters, then those of the sources that it
  /// depends on. A group has those of its filter source under its own name; members that join its
  /// screen have theirs under "group->member".
  std::vector<FilterOffer> const& offers() const { return offers_; }

  /// The orders that a user can choose: of the sorters of the chain, those nearest to the
  /// definition first. Sorters inside of groups keep their own order.
  std::vector<SortOffer> const& sortOffers() const { return sortOffers_; }

  /// Whether the run is made for what it changes in the database, be it by a member of a group.
  bool changesData() const { return changesData_; }

  /// Lets a run that changes data go ahead. Without this call it is refused: a definition is mostly
  /// run to be read, and its name does not tell.
  void agreeToChanges() { agreedToChanges_ = true; }

  /// Whether the rows belong to business units.
  bool keepsToUnits() const;

  /// The units to run for; without any, the session's default unit. Before setFilters. Throws
  /// moxError for one that a user who works by units has no right to.
  void setUnits(std::vector<int> units);

  /// What the user asks for, as he wrote it. Throws FilterArgumentError, also when a required one
  /// is missing. Called once at most; run calls it when nobody did.
  void setFilters(std::vector<std::string> const& texts);

  /// The same, understood by a form; in place of setFilters.
  void setFilterArguments(std::vector<FilterArgument> const& arguments);

  bool filtersAreSet() const { return filtersSet_; }

  /// The filters as they went into the run: kept to units where need be.
  std::vector<FilterArgument> const& filters() const { return filters_; }

  /// The order that the user wants. Throws SortArgumentError, also when the run has no order to
  /// choose. Called once at most.
  void setOrder(std::vector<SortArgument> const& arguments);

  /// As it went into the run; empty when nobody asked for one.
  std::vector<SortAnswer> const& order() const { return order_; }

  /// What the run shall tell of itself. Throws moxError when the module's context cannot.
  void keepReport(Report report);

  /// The result; empty when the notifier asked to stop, and for a definition that gives no rows.
  /// Throws what the run throws; the details name the definition and, in a chain, the source.
  std::shared_ptr<moxDataMatrix> run(
      std::shared_ptr<moxDataSourceExecutionProgressNotifier> notifier = {});

  /// The same by way of somebody else, who is given the context and the units to run for, and who
  /// shall process a list once.
  using Way = std::function<void(std::shared_ptr<moxDataSourceExecutionContext> const& context,
                                 std::vector<int> const& units)>;
  void runBy(Way const& way);

  /// What happened so far, when it is kept; empty otherwise.
  moxRunReport report() const;

  /// What in the chain cannot work, or came to nothing in the rows so far, as sentences.
  std::vector<std::string> problems() const;

  moxDataSourceExecutionContext& context() { return *context_; }

  /// What took the place of a report.
  RunReportContext const& reportContext() const { return *reportContext_; }

 private:
  UnitScope scope() const;
  void demandConsent() const;
  void demandOrderedColumns() const;
  std::vector<std::string> detailsOfFailure() const;

  VELMORApplication& application_;
  moxSessionService& sessions_;
  std::string name_;
  std::shared_ptr<moxSearch const> search_;
  std::vector<std::shared_ptr<moxDataSource const>> sources_;
  std::vector<moxDataSourceToProcess> list_;
  std::shared_ptr<moxDataSourceExecutionContext> context_;
  std::shared_ptr<RunReportContext> reportContext_;
  std::vector<FilterOffer> offers_;
  std::vector<SortOffer> sortOffers_;
  std::vector<SortAnswer> order_;
  std::vector<int> units_;
  std::vector<FilterArgument> filters_;
  bool filtersSet_ = false;
  bool reportKept_ = false;
  bool composesOnly_ = false;
  bool changesData_ = false;
  bool agreedToChanges_ = false;
};

}  // namespace mox::core
