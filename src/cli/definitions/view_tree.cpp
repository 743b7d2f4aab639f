#include "cli/definitions/view_tree.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/output/display_text.h"

namespace mox::cli {

namespace {

struct Node {
  std::string label;
  std::vector<Node> children = {};
};

void write(std::string& text, std::vector<Node> const& nodes, std::string const& indent) {
  for (auto const& node : nodes) {
    bool const isLast = &node == &nodes.back();
    text += indent + (isLast ? "└─ " : "├─ ") + oneLineText(node.label) + "\n";
    write(text, node.children, indent + (isLast ? "   " : "│  "));
  }
}

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

Node dependencyNode(DependencyView const& dependency) {
  Node node{fmt::format("{} ({}){}", dependency.name, dependency.className,
                        dependency.repeated ? ", see above" : "")};
  for (auto const& next : dependency.dependencies) {
    node.children.push_back(dependencyNode(next));
  }
  return node;
}

/// A node with a child for each of a list; none for an empty list.
template <class T, class Make>
void addList(std::vector<Node>& nodes, char const* label, std::vector<T> const& list,
             Make const& make) {
  if (!list.empty()) {
    Node node{label};
    for (auto const& element : list) {
      node.children.push_back(make(element));
    }
    nodes.push_back(std::move(node));
  }
}

}  // namespace

std::string treeText(DefinitionView const& view) {
  std::vector<Node> nodes = {{"kind: " + view.kind}, {"class: " + view.className}};
  if (!view.library.empty()) {
    nodes.push_back({"library: " + view.library});
  }
  for (auto const& [name, value] : view.settings) {
    nodes.push_back({name + ": " + visible(value)});
  }
  addList(nodes, "columns", view.columns,
          [](auto const& column) { return Node{columnLabel(column)}; });
  addList(nodes, "filters", view.filters,
          [](auto const& filter) { return Node{filterLabel(filter)}; });
  addList(nodes, "order", view.order, [](auto const& order) {
    return Node{order.column + (order.descending ? ", descending" : "")};
  });
  addList(nodes, "relations", view.relations, [](auto const& relation) {
    return Node{fmt::format("{} refers to {} of {}", relation.column, relation.sourceColumn,
                            relation.source)};
  });
  addList(nodes, "reads", view.dependencies, dependencyNode);
  std::string text = oneLineText(view.name) + "\n";
  write(text, nodes, "");
  return text;
}

}  // namespace mox::cli
