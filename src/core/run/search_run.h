#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/run/definition_run.h"
#include "core/run/filter_choices.h"
#include "mox/zyn/search/search.h"
#include "mox/zyn/search/search_runner.h"

namespace mox::core {

/// One run of a search by its name, for the calling thread's session; the road that every host of
/// search screens takes, for the reasons that DefinitionRun has. Then the rows are there to be read
/// cell by cell. Belongs to one thread, and runs once.
///
///     SearchRun run(application, application.sessions(), "Pesquisa de alunos");
///     run.setFilters({"turma=3"});
///     run.run();
///     auto const shown = run.runner().getVisibleValue(0, 0);
class SearchRun {
 public:
  using Report = DefinitionRun::Report;

  /// A column by its name in the result, and whether it is descending.
  using SortColumns = std::vector<std::pair<std::string, bool>>;

  /// Throws moxError when the session finds no search under the name, and for one whose source does
  /// not run: what the failure names is in its details.
  SearchRun(VELMORApplication& application, moxSessionService& sessions, std::string const& name);

  moxSearch const& search() const { return *run_.search(); }

  /// The source behind the search.
  std::shared_ptr<moxDataSource const> const& definition() const { return run_.definition(); }

  /// What a user can be asked for: what its source offers.
  std::vector<FilterOffer> const& offers() const { return run_.offers(); }

  bool keepsToUnits() const { return run_.keepsToUnits(); }

  /// As DefinitionRun::setUnits. The search of the units themselves runs for all units that the
  /// user may choose, whatever is set here.
  void setUnits(std::vector<int> const& units);

  /// As DefinitionRun, one of the two at most. Throws FilterArgumentError also when the search
  /// requires a filter and none is given.
  void setFilters(std::vector<std::string> const& texts);
  void setFilterArguments(std::vector<FilterArgument> const& arguments);
  std::vector<FilterArgument> const& filters() const { return run_.filters(); }

  /// What the run shall tell of itself. A run that only puts statements together leaves no rows.
  void keepReport(Report report);

  /// Runs the search; its rows stand in its initial order. Throws what the run throws.
  void run();

  /// Sorts the rows of the run; as often as wanted. Throws moxError that lists the columns when one
  /// is not there.
  void sort(SortColumns const& columns);

  /// Answers for the cells of the run.
  moxSearchRunner const& runner() const { return *runner_; }

  /// What happened so far, when it is kept.
  moxRunReport report() const { return run_.report(); }
  DefinitionRun const& definitionRun() const { return run_; }

  /// The first `most` values that a user can choose from for a filter, read now and for the units
  /// of this run. Nothing when the definition has no source for them. See readFilterChoices.
  std::optional<FilterChoices> choicesFor(FilterOffer const& offer, std::size_t most) const;

 private:
  std::vector<int> unitsOfTheSearch(std::vector<int> asked) const;

  VELMORApplication& application_;
  moxSessionService& sessions_;
  DefinitionRun run_;
  std::shared_ptr<moxSearchRunner> runner_;
  std::vector<int> units_;
  bool composeOnly_ = false;
};

}  // namespace mox::core
