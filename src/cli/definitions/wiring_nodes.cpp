#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/definitions/tree_nodes.h"

namespace mox::cli {

namespace {

using Column = moxSQLDataSourceColumn::SQLColum;

// A condition may hold thousands of values; who wants them all reads the JSON.
constexpr std::size_t kMostValuesShown = 20;

std::string joined(std::string const& table, std::string const& column) {
  return table.empty() || column.empty() ? table + column : table + "." + column;
}

/// The column as the query calls it, and behind it what it is in the database.
std::string columnText(Column const& column) {
  auto const name = joined(column.tableName, column.columnName);
  auto origin = joined(column.tableNameOrigin, column.columnNameOrigin);
  if (name.empty()) {
    return origin;
  }
  return origin.empty() || origin == name ? name : fmt::format("{} ({})", name, origin);
}

std::string valuesText(std::vector<int> const& values) {
  std::vector<int> const shown(
      values.begin(),
      values.begin() + static_cast<std::ptrdiff_t>(std::min(values.size(), kMostValuesShown)));
  auto const text = fmt::format("{}", fmt::join(shown, ", "));
  return values.size() > shown.size()
             ? fmt::format("{}, and {} more", text, values.size() - shown.size())
             : text;
}

TreeNode conditionNode(ConditionView const& condition) {
  std::string label = columnText(condition.column);
  if (condition.kind == "values") {
    label += condition.values.empty() ? " is one of no values"
                                      : " is one of " + valuesText(condition.values);
  } else if (condition.kind == "statement") {
    label += " is among: " + condition.statement;
  } else {
    label += " is not filtered";
  }
  return {label + (condition.filter.empty() ? "" : ", for " + condition.filter)};
}

void addFilterSource(std::vector<TreeNode>& nodes, FilterSourceView const& source) {
  for (auto const& [name, text] : source.texts) {
    nodes.push_back({fmt::format("{}: {}", name, text)});
  }
  addList(nodes, source.replacesColumns ? "columns in place of the source's" : "added columns",
          source.columns, columnNode);
  addList(nodes, "conditions", source.conditions, conditionNode);
}

void addGovernedParts(TreeNode& node, GovernedView const& governed) {
  for (auto const& offered : governed.offered) {
    node.children.push_back({"offers " + offered});
  }
  for (auto const& related : governed.related) {
    node.children.push_back(
        {fmt::format("{} answers for {}", related.filter, columnText(related.column))});
  }
}

std::string wireText(std::string const& verb, WireView const& wire) {
  std::string text = fmt::format("{} {}", verb, wire.source);
  if (!wire.target.empty() && wire.target != wire.source && wire.through.empty()) {
    text += ", here " + wire.target;
  } else if (!wire.through.empty() && !wire.target.empty()) {
    text += " and so " + wire.target;
  }
  return wire.defect.empty() ? text : fmt::format("{}: {}", text, wire.defect);
}

/// Of a source that stands in no group.
WireView unresolved(std::string const& source) {
  return {.source = source, .through = {}, .target = {}, .defect = {}};
}

std::string memberLabel(MemberView const& member) {
  std::string label = member.name;
  if (!member.external.empty() && member.external != member.name) {
    label += fmt::format(" is \"{}\"", member.external);
  } else if (!member.external.empty()) {
    label += ", from elsewhere";
  }
  label += member.className.empty() ? "" : fmt::format(" ({})", member.className);
  label += member.isOutput ? ", gives the result" : "";
  label += member.isFilterSource ? ", gives the filters" : "";
  label += member.joinsFilterScreen ? ", joins the filter screen" : "";
  return label + (member.ring ? ", see above: a ring" : member.repeated ? ", see above" : "");
}

void addRelation(TreeNode& node, MemberRelationView const& relation) {
  auto const text = fmt::format("{} refers to {} of {}", columnText(relation.column),
                                relation.memberColumn, relation.member);
  node.children.push_back(
      {relation.defect.empty() ? text : fmt::format("{}: {}", text, relation.defect)});
}

void addIncoming(TreeNode& node, MemberView const& member) {
  for (auto const& name : member.changedBy) {
    node.children.push_back({"changed by " + name});
  }
  for (auto const& name : member.governedBy) {
    node.children.push_back({"governed by " + name});
  }
}

/// The wires of a source that is told elsewhere.
void addWires(TreeNode& node, MemberView const& member) {
  for (auto const& wire : member.wires) {
    node.children.push_back({wireText("reaches", wire)});
  }
}

TreeNode memberNode(MemberView const& member) {
  TreeNode node{memberLabel(member)};
  if (!member.defect.empty()) {
    node.children.push_back({"defect: " + member.defect});
  }
  for (auto const& [external, internal] : member.inputs) {
    node.children.push_back({fmt::format("what it calls {} is {}", external, internal)});
  }
  if (member.relation) {
    addRelation(node, *member.relation);
  }
  addIncoming(node, member);
  if (member.source.empty()) {
    addWires(node, member);
    return node;
  }
  addDefinition(node.children, member.source.front(), member.wires);
  return node;
}

}  // namespace

void addChanges(std::vector<TreeNode>& nodes, DefinitionView const& view,
                std::vector<WireView> const& wires) {
  if (view.filterSource) {
    auto const alone = unresolved(view.filterSource->source);
    nodes.push_back({wireText("changes", wires.empty() ? alone : wires.front())});
    addFilterSource(nodes, *view.filterSource);
  }
  for (std::size_t i = 0; view.governed && i < view.governed->size(); ++i) {
    auto const& governed = (*view.governed)[i];
    TreeNode node{wireText("governs", i < wires.size() ? wires[i] : unresolved(governed.source))};
    addGovernedParts(node, governed);
    nodes.push_back(std::move(node));
  }
}

void addMembers(std::vector<TreeNode>& nodes, GroupView const& group) {
  addList(nodes, "members", group.members, memberNode);
}

}  // namespace mox::cli
