#pragma once

#include <string>
#include <utility>
#include <vector>

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

/// A source that is read, and what it reads in turn.
struct DependencyView {
  std::string name;
  std::string className;
  bool repeated = false;  // told further up, with what it reads
  std::vector<DependencyView> dependencies;
};

/// A definition as its reader wants to see it. Settings are pairs of name and value that only some
/// kinds have.
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
};

/// Looks at a definition through its public interfaces; a kind that has none is told with what
/// every definition has. Nothing is changed: only the question for related items is no constant
/// one.
DefinitionView viewOf(moxZYNItem& item);

}  // namespace mox::cli
