#include "cli/definitions/view_tree.h"

#include "cli/definitions/tree_nodes.h"
#include "cli/output/display_text.h"

namespace mox::cli {

namespace {

void write(std::string& text, std::vector<TreeNode> const& nodes, std::string const& indent) {
  for (auto const& node : nodes) {
    bool const isLast = &node == &nodes.back();
    text += indent + (isLast ? "└─ " : "├─ ") + oneLineText(node.label) + "\n";
    write(text, node.children, indent + (isLast ? "   " : "│  "));
  }
}

}  // namespace

std::string treeText(DefinitionView const& view) {
  std::vector<TreeNode> nodes = {{"kind: " + view.kind}, {"class: " + view.className}};
  if (!view.library.empty()) {
    nodes.push_back({"library: " + view.library});
  }
  addDefinition(nodes, view);
  std::string text = oneLineText(view.name) + "\n";
  write(text, nodes, "");
  return text;
}

}  // namespace mox::cli
