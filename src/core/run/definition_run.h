#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/run/definition_lookup.h"
#include "core/run/filter_argument.h"
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

  /// What the run shall tell of itself. Throws moxError when the module's context cannot.
  void keepReport(Report report);

  /// The result; empty when the notifier asked to stop. Throws what the run throws; the details
  /// name the definition.
  std::shared_ptr<moxDataMatrix> run(
      std::shared_ptr<moxDataSourceExecutionProgressNotifier> notifier = {});

  /// The same by way of somebody else, who is given the context and the units to run for, and who
  /// shall process a list once.
  using Way = std::function<void(std::shared_ptr<moxDataSourceExecutionContext> const& context,
                                 std::vector<int> const& units)>;
  void runBy(Way const& way);

  /// What happened so far, when it is kept; empty otherwise.
  moxRunReport report() const;

  moxDataSourceExecutionContext& context() { return *context_; }

 private:
  UnitScope scope() const;

  VELMORApplication& application_;
  moxSessionService& sessions_;
  std::string name_;
  std::shared_ptr<moxSearch const> search_;
  std::vector<std::shared_ptr<moxDataSource const>> sources_;
  std::vector<moxDataSourceToProcess> list_;
  std::shared_ptr<moxDataSourceExecutionContext> context_;
  std::vector<FilterOffer> offers_;
  std::vector<int> units_;
  std::vector<FilterArgument> filters_;
  bool filtersSet_ = false;
  bool reportKept_ = false;
};

}  // namespace mox::core
