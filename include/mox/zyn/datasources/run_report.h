#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mox/zyn/sql/composed_select.h"

/// Why a condition or a value is part of a statement.
enum class moxRunOrigin {
  kUserFilter,      // the user gave it for this source
  kProgramFilter,   // the program imposes it on this source
  kManager,         // given for a filter manager, which passes it on
  kFilterSource,    // a filter source's fixed condition
  kRelation,        // the values of a source that ran before
  kUnsetParameter,  // declared in the definition, and nobody gave a value
  kSessionToken,    // a token that stands for the session or the run's units
  kUnitRule         // keeps the user to the run's business units
};

/// A mark's value or a condition of a statement, and where it came from.
struct moxRunPart {
  std::string sql;     // the condition as it stands in the statement; empty for a token's mark
  std::string column;  // what is tested, or the token with its braces
  moxRunOrigin origin = moxRunOrigin::kUserFilter;
  std::string originName;  // the manager, filter source or related source; otherwise empty
  std::vector<moxBoundValue> values;
};

/// A statement as it goes to the database connection. Its marks take the values of the parameters,
/// then those of the conditions, in order. Conditions of the definition itself are part of `sql`
/// and nothing else.
struct moxRunStatement {
  std::string sql;
  std::vector<moxRunPart> parameters;
  std::vector<moxRunPart> conditions;

  /// How the values reach the database when they are more than it takes marks, as the connection
  /// tells it: a sentence for people. Empty when each has a mark of its own.
  std::string sending;
};

/// One source of the run, in the order of running.
struct moxRunSource {
  std::string name;            // in the context
  std::string executionClass;  // name() of its execution
  bool executed = false;       // false when only its statement was put together
  std::vector<moxRunStatement> statements;
  std::int64_t rows = 0;  // of its matrix; 0 when there is none
  double seconds = 0;     // from its start to its end

  /// How many groups it runs inside of. The members of a group follow it, in their order.
  int depth = 0;

  /// Which sources of the run act on each other: of a group, what its filter sources change and its
  /// managers rule; of a query, the source whose values restrict it. Also what came to nothing, and
  /// why. Sentences for people.
  std::vector<std::string> wiring;
};

/// A filter that was given and that no statement used.
struct moxRunIgnoredFilter {
  std::string source;  // the name that it was given for
  std::string column;
  std::string reason;  // a sentence for people
};

struct moxRunReport {
  std::vector<int> units;
  bool unitsFromSession = false;  // otherwise the caller gave them
  int headOffice = 0;
  bool headOfficeFromSession = false;
  std::vector<moxRunSource> sources;
  std::vector<moxRunIgnoredFilter> ignoredFilters;
};

/// Tells how a run came to its result. A second face of the execution context, asked for by
/// dynamic_cast; used by the run's thread.
class moxRunReporter {
 public:
  virtual ~moxRunReporter() = default;

  /// Keep a report of the run that follows. Without this call none is kept, and nothing is spent.
  virtual void keepRunReport() = 0;

  /// As keepRunReport, for a run that only puts statements together. A source is executed all the
  /// same when the statement of a later one needs its rows; others register an empty matrix. One
  /// that changes data is never executed.
  virtual void composeOnly() = 0;

  /// What happened so far; after an exception up to where it was thrown.
  virtual moxRunReport runReport() const = 0;

  /// The names, in the run, of the sources at work: a group ahead of its member, and so on inside
  /// of groups. After an exception those that it came from; empty ahead of a run and once it has
  /// ended. Told without a report as well.
  virtual std::vector<std::string> sourcesAtWork() const = 0;
};
