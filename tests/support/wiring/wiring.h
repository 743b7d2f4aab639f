#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// Small wirings as plain data: what a random test makes, what a plain reference evaluates, and
/// what is written as definitions and run through the module.
namespace mox_test::wiring {

using Value = std::optional<int>;  // of a text column "s" and the number

/// Every table has these columns, called as columnName says.
enum Column { kId, kA, kB, kUnit, kText };
inline constexpr int kColumns = 5;

struct Table {
  std::vector<std::array<Value, kColumns>> rows;
};
using Tables = std::vector<Table>;

/// "a2" for column a of table 2: a bare name tells its table.
std::string columnName(int table, int column);

/// The value as the tests write it: "null", "3", "s3".
std::string textOf(Value value, int column);

/// On a column of a query's first table.
struct Condition {
  enum Test { kEquals, kAmong, kNotAmong, kAtLeast, kBetween };
  Test test = kEquals;
  int column = kId;
  std::vector<int> values;

  /// As the database sees it: a null passes no test.
  bool holds(Value value) const;
  std::string sql(int table) const;
};

/// A further table, by a column of the first one and its own key.
struct Join {
  std::string alias;
  int table = 0;
  bool isLeft = false;
  int column = kA;  // of the first table

  std::string sql(int firstTable) const;
};

/// A column of the result.
struct Output {
  enum Shape { kColumn, kSum, kConstant, kJoined, kCount, kMaximum };
  std::string name;
  Shape shape = kColumn;
  int first = kId;    // column of the first table; of the joined one; the constant
  int second = kId;   // of a sum
  std::string alias;  // of the joined table
  int table = 0;      // the joined table
};

/// A value that stands in a query's own condition: "column >= token", and with `maybeNull` also
/// every row when the token is null.
struct Token {
  std::string name;
  int column = kA;
  bool maybeNull = false;
};

struct OrderBy {
  int column = kId;
  bool descending = false;
};

struct SqlSource {
  bool isPlain = false;
  int table = 0;
  std::optional<Join> join;
  std::vector<Condition> anyOf;  // its own condition: nothing, one, or two with an "or"
  bool bareOr = false;           // the "or" stands without parentheses
  std::optional<Token> token;
  bool byUnits = false;
  bool nullUnits = false;
  std::vector<Output> outputs;
  std::vector<OrderBy> order;
  int offered = kA;  // column of the filter that the definition offers
};

struct FixedCondition {
  enum Kind { kValor, kSql, kSemFiltro };
  Kind kind = kValor;
  int column = kA;
  std::vector<int> ids;
  int table = 0;        // of the statement
  Condition condition;  // of the statement
};

struct FilterSource {
  std::string source;  // as its definition names it
  int table = 0;       // the first one of the query that it changes
  std::optional<Join> join;
  std::optional<Condition> where;
  std::vector<FixedCondition> fixed;
  bool replaces = false;
  std::vector<Output> columns;
  std::optional<int> group;
  std::optional<OrderBy> order;
};

struct Related {
  std::string filterName;
  std::optional<int> column;  // none for the query's token
  bool namesOrigin = true;    // else the column stands as the query's own
  bool namesTable = true;
};

struct Record {
  std::string source;  // as the manager's definition names it
  int table = 0;
  std::string token;
  std::vector<std::string> available;
  std::vector<Related> related;
};

struct Manager {
  std::vector<Record> records;
};

struct Group;

/// The member keeps only rows whose column has a value that a column of another member has.
struct ByValues {
  std::string member;
  std::string column;
  int ownColumn = kA;
};

struct Member {
  std::string name;
  std::string definition;  // the source's own name
  bool isExternal = false;
  std::vector<std::pair<std::string, std::string>> relations;  // (in the definition, member)
  std::optional<ByValues> byValues;                            // of queries
  std::variant<SqlSource, FilterSource, Manager, std::shared_ptr<Group>> source;

  /// The member that the definition calls `named`.
  std::string target(std::string const& named) const;
};

struct Group {
  std::string name;
  std::vector<Member> members;
  std::string output;
  std::string filterSource;

  Member const* find(std::string const& member) const;

  /// The query at the end of the chain of filter sources that begins with `member`.
  Member const* queryBehind(Member const* member) const;
};

/// A filter that is given to the run.
struct Given {
  std::vector<std::string> path;  // members down to the one that it is for
  bool atGroup = false;           // aimed at the group whose filters go to that member
  bool isFixed = false;           // by the program
  std::string name;               // of a manager's filter, or a token; else the condition's column
  bool namesTable = true;
  int table = 0;
  Condition condition;
};

struct Wiring {
  Group group;
  std::vector<Member> outside;  // filter sources that whoever runs the group has change a member
  std::vector<Given> given;
  std::vector<int> units;

  /// The member that a filter source from outside changes: the one that it aims at, "x->member", or
  /// the one that the group's filters go to.
  Member const* changedFromOutside(Member const& filterSource) const;

  /// Nothing but queries, filter sources and managers, all held: a run may be put together by hand.
  bool isFlat() const;
};

/// The rows of a member, as texts. Rows between which nothing tells the order stand together; their
/// numbers are in `ties`.
struct Result {
  std::vector<std::string> names;
  std::vector<std::vector<std::string>> rows;
  std::vector<std::size_t> ties;
};

inline constexpr char const* kAlias = "p";  // of a query's first table

/// Tables that many wirings read.
Tables randomTables(unsigned seed);

/// One that works: every run of it gives a result.
Wiring randomWiring(unsigned seed);

/// What each member of a flat wiring gives, or of the output alone, by filtering whole tables.
/// Members that give no rows of their own are left out.
std::vector<std::pair<std::string, Result>> evaluateMembers(Tables const& tables,
                                                            Wiring const& wiring);
Result evaluateOutput(Tables const& tables, Wiring const& wiring);

/// The group's element, and those of the definitions that it names from outside.
std::string groupXml(Group const& group);
std::vector<std::string> externalXml(Group const& group);
std::string sourceXml(Member const& member);

/// For whoever reads a failure.
std::string describe(Wiring const& wiring);

}  // namespace mox_test::wiring
