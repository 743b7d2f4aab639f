#pragma once

#include <string>
#include <vector>

class moxDataSource;

namespace mox::core {

/// What a filter source does to the statement of a query of its group.
struct FilterSourceChange {
  struct Text {
    std::string piece;  // "join", "where", "group", "order", "columns", or "select" for columns in
                        // place of the query's own
    std::string text;
  };

  std::string group;
  std::string member;  // the filter source, by its name in the group
  std::string query;   // the member whose statement is changed
  std::vector<Text> texts;
};

/// How the members of a definition's groups, at any depth, work on each other.
struct Wiring {
  std::vector<FilterSourceChange> changes;

  /// What cannot work, has no effect, or takes the place of the rule on units: sentences that name
  /// group and member.
  std::vector<std::string> problems;
};

/// Looks at the definition and the sources that it names, and runs nothing. Throws nothing of what
/// it finds; empty for a definition that is no group.
Wiring readWiring(moxDataSource const& definition);

}  // namespace mox::core
