#pragma once

#include <string>
#include <vector>

#include "cli/definitions/definition_view.h"

namespace mox::cli {

/// A line of a tree, and those below it. The label is as the definition wrote it: whoever shows it
/// makes it harmless.
struct TreeNode {
  std::string label;
  std::vector<TreeNode> children = {};
};

/// Adds a node with a node for each of a list below it; none for an empty list.
template <class T, class Make>
void addList(std::vector<TreeNode>& nodes, std::string const& label, std::vector<T> const& list,
             Make const& make) {
  if (!list.empty()) {
    TreeNode node{label};
    for (auto const& element : list) {
      node.children.push_back(make(element));
    }
    nodes.push_back(std::move(node));
  }
}

/// Adds all that a definition holds, below the lines that every definition has. `wires` are those
/// of a member of a group.
void addDefinition(std::vector<TreeNode>& nodes, DefinitionView const& view,
                   std::vector<WireView> const& wires = {});

TreeNode columnNode(ColumnView const& column);

/// Adds what a filter source changes and a manager governs, and in a group where that ends; nothing
/// for others.
void addChanges(std::vector<TreeNode>& nodes, DefinitionView const& view,
                std::vector<WireView> const& wires);

/// Adds how a source computes its rows; what it reads is not among it.
void addComputing(std::vector<TreeNode>& nodes, ComputingView const& view);

void addMembers(std::vector<TreeNode>& nodes, GroupView const& group);

}  // namespace mox::cli
