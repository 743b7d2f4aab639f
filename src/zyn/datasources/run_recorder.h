#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "mox/zyn/datasources/run_report.h"

class moxDataMatrixSQLFilter;
class moxDataSourceExecutionContext;

/// The business units of a run, and who named them.
struct RunUnits {
  std::vector<int> units;
  bool unitsFromSession = false;  // otherwise the caller gave them
  int headOffice = 0;
  bool headOfficeFromSession = false;
};

/// Gathers what a run does, told by the context and by the executions while they work. Made only
/// when somebody asked for a report; the contexts of groups share the one of the run. Used by the
/// run's thread.
class RunRecorder {
 public:
  enum class Mode { kExecute, kComposeOnly };

  using Filter = std::shared_ptr<moxDataMatrixSQLFilter const>;
  using FiltersBySource = std::map<std::string, std::vector<Filter>>;

  explicit RunRecorder(Mode mode) : mode_(mode) {}

  // What the executions tell and ask.

  /// Whether the source at work is to ask the database. Otherwise it puts its statement together,
  /// records it, and registers an empty matrix.
  bool executes() const;

  /// Asked by the source at work before it changes data. Never true in a run that only puts
  /// statements together, whoever needs the source; it then counts as not executed.
  bool mayChangeData();

  /// A statement of the source at work, recorded before it is executed.
  void statement(moxRunStatement statement);

  /// The filter is part of a statement, be it as a condition or as a mark's value.
  void filterUsed(Filter const& filter);

  /// What another source of the run does to the one at work, or its members to each other; or why
  /// it comes to nothing. A sentence for people.
  void wired(std::string sentence);

  /// Why a source has no use for a filter, in words for people. Counts only for one that no
  /// statement uses; the first reason stands.
  void filterIgnored(Filter const& filter, std::string const& reason);

  // What the contexts tell.

  /// The units of the run, and the names that it will bring. A group's context, which starts while
  /// its source is at work, leaves the run's own units.
  void runStarted(RunUnits const& units, std::vector<std::string> const& names);

  /// A source starts; what the executions tell until the matching sourceFinished belongs to it.
  /// `executes` is for this source alone: inside one that executes, all do.
  void sourceStarted(std::string const& name, std::string const& executionClass, bool executes);

  /// A matrix of the source at work, which is named by it when its list gave no name.
  void matrixRegistered(std::string const& name, std::int64_t rows);

  void sourceFinished();

  /// Somebody asked for the filters of that name.
  void filtersAsked(std::string const& name) { askedNames_.insert(name); }

  /// What happened so far; `given` are the filters that the run's caller gave.
  moxRunReport report(FiltersBySource const& given) const;

 private:
  using Clock = std::chrono::steady_clock;

  struct OpenSource {
    std::size_t index;  // in report_.sources
    bool executes;
    bool unnamed;  // in its list
    Clock::time_point start;
  };

  moxRunSource& sourceAtWork();
  std::string whyIgnored(std::string const& source, Filter const& filter) const;
  std::string whySourceIgnores(std::string const& source) const;

  Mode const mode_;
  moxRunReport report_;
  std::vector<OpenSource> open_;         // the innermost last
  std::optional<std::size_t> unlisted_;  // the source at work when none is open
  std::set<std::string> listedNames_;
  std::set<std::string> askedNames_;
  std::set<Filter> used_;  // shared, so that no address comes up a second time
  std::map<Filter, std::string> reasons_;
};

/// A face of the execution context, for executions that take part in a report. Asked for by
/// dynamic_cast, since a context may be of foreign make.
class RunRecorderHolder {
 public:
  virtual ~RunRecorderHolder() = default;

  /// Null when no report is kept. Lives as long as the context.
  virtual RunRecorder* runRecorder() const = 0;

  /// Whether the program itself imposes the filter on the source, and no user gave it for it.
  virtual bool isFixedFilter(std::string const& source,
                             RunRecorder::Filter const& filter) const = 0;
};

/// The face of a context that keeps a report; null for another one.
RunRecorderHolder const* reportOf(moxDataSourceExecutionContext const& context);

/// Tells the recorder of that context, if a report is kept, what `sentence()` gives.
template <class Sentence>
void recordWiring(moxDataSourceExecutionContext const& context, Sentence const& sentence) {
  if (auto const* const report = reportOf(context)) {
    report->runRecorder()->wired(sentence());
  }
}
