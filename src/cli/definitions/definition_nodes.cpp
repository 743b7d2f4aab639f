#include <fmt/format.h>

#include "cli/definitions/tree_nodes.h"

namespace mox::cli {

namespace {

/// In quotes where blanks at its ends would not be seen.
std::string visible(std::string const& value) {
  bool const isBare = value.empty() || (value.front() != ' ' && value.back() != ' ');
  return isBare ? value : "\"" + value + "\"";
}

std::string columnLabel(ColumnView const& column) {
  std::string label = column.name + ": " + column.type;
  if (!column.heading.empty()) {
    label += fmt::format(" \"{}\"", column.heading);
  }
  if (!column.origin.empty()) {
    label += " from " + column.origin;
  } else if (!column.expression.empty()) {
    label += " as " + column.expression;
  }
  if (!column.formatter.empty()) {
    label += ", " + column.formatter;
  }
  for (auto const& role : column.roles) {
    label += ", " + role;
  }
  return label + (column.visible ? "" : ", hidden");
}

std::string filterLabel(FilterView const& filter) {
  std::string label = filter.column;
  if (!filter.description.empty()) {
    label += fmt::format(" \"{}\"", filter.description);
  }
  label += ": " + filter.kind;
  label += filter.required ? ", required" : "";
  return label + (filter.control.empty() ? "" : ", " + filter.control);
}

std::string dependencyLabel(DependencyView const& dependency) {
  if (dependency.missing) {
    return dependency.name.empty() ? "no source is named"
                                   : dependency.name + ": there is no such source";
  }
  return fmt::format("{} ({}){}", dependency.name, dependency.className,
                     dependency.ring       ? ", see above: a ring"
                     : dependency.repeated ? ", see above"
                                           : "");
}

/// What is read stands below "reads" where there is more to tell of the one that reads it.
TreeNode dependencyNode(DependencyView const& dependency) {
  TreeNode node{dependencyLabel(dependency)};
  if (dependency.computing) {
    addComputing(node.children, *dependency.computing);
    addList(node.children, "columns", dependency.columns, columnNode);
    addList(node.children, "reads", dependency.dependencies, dependencyNode);
    return node;
  }
  for (auto const& next : dependency.dependencies) {
    node.children.push_back(dependencyNode(next));
  }
  return node;
}

TreeNode orderNode(OrderView const& order) {
  return {order.column + (order.descending ? ", descending" : "")};
}

TreeNode relationNode(RelationView const& relation) {
  return {fmt::format("{} refers to {} of {}", relation.column, relation.sourceColumn,
                      relation.source)};
}

/// What is not so by itself.
void addSearch(std::vector<TreeNode>& nodes, SearchView const& search) {
  if (!search.heading.empty()) {
    nodes.push_back({"heading: " + visible(search.heading)});
  }
  if (!search.source.empty()) {
    nodes.push_back({"source: " + visible(search.source)});
  }
  TreeNode screen{fmt::format("screen: {} x {}", search.width, search.height)};
  if (search.autoFill) {
    screen.children.push_back({"filled when it opens"});
  }
  if (search.allowReorder) {
    screen.children.push_back({"columns may be reordered"});
  }
  if (search.requireFilter) {
    screen.children.push_back({"needs a filter"});
  }
  screen.children.push_back({search.requirePermission ? "needs a permission" : "open to all"});
  addList(screen.children, "sorted first by", search.order, orderNode);
  nodes.push_back(std::move(screen));
}

}  // namespace

TreeNode columnNode(ColumnView const& column) {
  return {columnLabel(column)};
}

void addDefinition(std::vector<TreeNode>& nodes, DefinitionView const& view,
                   std::vector<WireView> const& wires) {
  for (auto const& [name, value] : view.settings) {
    nodes.push_back({name + ": " + visible(value)});
  }
  if (view.search) {
    addSearch(nodes, *view.search);
  }
  if (view.computing) {
    addComputing(nodes, *view.computing);
  }
  addChanges(nodes, view, wires);
  // The columns of a filter source in a group, and what it reads, are those of the member that it
  // changes.
  bool const repeatsMember = !wires.empty();
  if (!repeatsMember) {
    addList(nodes, "columns", view.columns, columnNode);
  }
  addList(nodes, "filters", view.filters,
          [](auto const& filter) { return TreeNode{filterLabel(filter)}; });
  addList(nodes, "order", view.order, orderNode);
  addList(nodes, "relations", view.relations, relationNode);
  if (view.group) {
    addMembers(nodes, *view.group);
  }
  if (!repeatsMember) {
    addList(nodes, "reads", view.dependencies, dependencyNode);
  }
}

}  // namespace mox::cli
