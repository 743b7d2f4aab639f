#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/sql_data_source_column.h"
#include "mox/zyn/items/zyn_item.h"

namespace mox::cli {

/// One column of a source, as its definition tells it. Texts are empty where it tells nothing.
struct ColumnView {
  std::string name;        // in the result
  std::string type;        // int, double, text, date or blob
  std::string heading;     // what a user sees
  std::string origin;      // table.column in the database
  std::string expression;  // that gives it in a composed statement
  std::string formatter;   // the registered class
  std::vector<std::string> roles;
  bool visible = true;
};

struct FilterView {
  std::string kind;  // the registered class
  std::string column;
  std::string description;
  std::string control;  // the registered class of the entry field
  bool required = false;
};

struct OrderView {
  std::string column;
  bool descending = false;
};

/// This source's `column` refers to `sourceColumn` of `source`.
struct RelationView {
  std::string column;
  std::string source;
  std::string sourceColumn;
};

/// A column of an input that takes part in a union or a join.
struct InputColumnView {
  std::string name;
  std::string alias;  // in the result of a join; empty for the name
  std::string type;
};

/// Rows of a join meet where this input's `column` equals `resultColumn` of the rows so far.
struct MeetingView {
  std::string column;
  std::string resultColumn;
};

/// A source whose rows are computed with.
struct InputView {
  std::string source;
  std::vector<InputColumnView> columns;  // of unions and joins
  std::vector<MeetingView> meetings;     // of joins
};

/// `target` is what the function makes of `source`.
struct FunctionView {
  std::string kind;  // the registered class
  std::string source;
  std::string target;
};

struct ExpressionView {
  std::string column;
  std::string expression;
  std::string type;
  int decimals = -1;   // negative for as many as there are
  bool isCut = false;  // decimals beyond those are cut off and not rounded
};

struct SortColumnView {
  std::string column;
  std::string description;
  std::string direction;   // ascending, descending, or empty for none of its own
  bool isDefault = false;  // where the user chooses: without his answer
};

/// A column that spreads across a cross table, or one that fills its cells.
struct PivotColumnView {
  std::string column;
  std::string means;  // the formatter of the labels, or the function
};

/// How a source computes its rows from those of others. What its kind does not have is empty.
struct ComputingView {
  std::string operation;  // aggregation, sorter, object, union, expression, pivot or join
  std::vector<InputView> inputs;
  bool temporaryTable = false;
  std::vector<std::string> keys;  // of an aggregation
  std::vector<FunctionView> functions;
  bool countsRows = false;
  std::vector<SortColumnView> order;  // of a sorter
  bool userSorts = false;             // who may choose among them
  std::string heading;                // of that choice
  std::vector<ExpressionView> expressions;
  bool zeroIsNull = false;
  std::vector<std::string> rows;  // of a cross table
  std::vector<PivotColumnView> across;
  std::vector<PivotColumnView> cells;
  std::string statement;  // that is run for what it changes
};

/// A source that is read, and what it reads in turn.
struct DependencyView {
  std::string name;
  std::string className;  // empty for one that is not there
  bool repeated = false;  // told further up, with what it reads
  bool ring = false;      // repeated because it reads itself, by way of what stands above it
  bool missing = false;
  std::optional<ComputingView> computing = std::nullopt;
  std::vector<ColumnView> columns = {};  // of one that computes, as far as they are known
  std::vector<DependencyView> dependencies = {};
};

struct DefinitionView;

/// A condition that a filter source puts on a column.
struct ConditionView {
  std::string kind;  // values, statement, or none: a user's filter on the column is switched off
  moxSQLDataSourceColumn::SQLColum column;
  std::string filter;       // the registered class of the filter that it answers
  std::vector<int> values;  // ascending
  std::string statement;    // whose first column gives the values
};

/// How a filter source changes another source's statement.
struct FilterSourceView {
  std::string source;
  std::vector<std::pair<std::string, std::string>>
      texts;  // join, where, group, order; if not empty
  bool replacesColumns = false;
  std::vector<ColumnView> columns;  // its own
  std::vector<ConditionView> conditions;
};

/// The filter `filter` answers for a column or, where its name holds "{{", for a token.
struct RelatedFilterView {
  std::string filter;
  moxSQLDataSourceColumn::SQLColum column;
};

/// What a filter manager says of one source.
struct GovernedView {
  std::string source;
  std::vector<std::string> offered;  // columns and tokens on which a user may filter
  std::vector<RelatedFilterView> related;
};

/// Where a member's change, or what it passes on, ends.
struct WireView {
  std::string source;                // as the member's definition calls it
  std::vector<std::string> through;  // members on the way
  std::string target;                // the member; empty when there is none
  std::string defect;                // why not
};

/// This member's `column` refers to `memberColumn` of `member`.
struct MemberRelationView {
  std::string member;
  std::string memberColumn;
  moxSQLDataSourceColumn::SQLColum column;
  std::string defect;
};

/// A member of a group, with its wiring.
struct MemberView {
  std::string name;
  std::string className;  // of its source; empty where it has none
  std::string external;   // the name of a source elsewhere; empty for one that it holds
  bool isOutput = false;
  bool isFilterSource = false;
  bool joinsFilterScreen = false;
  bool repeated = false;                                    // its source is told further up
  bool ring = false;                                        // and holds this group
  std::vector<std::pair<std::string, std::string>> inputs;  // name in the source, member
  std::optional<MemberRelationView> relation;
  std::vector<WireView> wires;         // one of a filter source, one a governed source of a manager
  std::vector<std::string> changedBy;  // members, in their order
  std::vector<std::string> governedBy;
  std::string defect;
  std::vector<DefinitionView>
      source;  // one or none: what it holds; of others only the wiring kinds
};

struct GroupView {
  std::string outputSource;
  std::string filterSource;
  std::vector<MemberView> members;
};

/// What a search says of its screen.
struct SearchView {
  std::string heading;
  std::string source;  // named elsewhere; empty for one that it owns
  bool autoFill = false;
  bool allowReorder = false;
  bool requireFilter = false;
  bool requirePermission = false;
  unsigned int width = 0;  // in pixels
  unsigned int height = 0;
  std::vector<OrderView> order;  // one column or none
};

/// A definition as its reader wants to see it. Settings are pairs of name and value that only some
/// kinds have; at most one of the optional parts is there but for a search, which has its source's
/// too.
struct DefinitionView {
  std::string name;
  std::string kind;
  std::string className;
  std::string library;
  std::vector<std::pair<std::string, std::string>> settings;
  std::vector<ColumnView> columns;
  std::vector<FilterView> filters;
  std::vector<OrderView> order;
  std::vector<RelationView> relations;
  std::vector<DependencyView> dependencies;
  std::optional<SearchView> search;
  std::optional<ComputingView> computing;
  std::optional<FilterSourceView> filterSource;
  std::optional<std::vector<GovernedView>> governed;
  std::optional<GroupView> group;
};

/// Looks at a definition through its public interfaces; a kind that has none is told with what
/// every definition has. Nothing is changed: only the question for related items is no constant
/// one.
DefinitionView viewOf(moxZYNItem& item);

}  // namespace mox::cli
