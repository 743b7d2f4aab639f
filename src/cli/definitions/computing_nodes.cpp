#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/definitions/tree_nodes.h"

namespace mox::cli {

namespace {

std::string inQuotes(std::string const& text) {
  return text.empty() ? std::string() : fmt::format(" \"{}\"", text);
}

TreeNode functionNode(FunctionView const& function) {
  return {fmt::format("{} is {} of {}", function.target, function.kind, function.source)};
}

TreeNode sortColumnNode(SortColumnView const& column) {
  return {column.column + inQuotes(column.description) +
          (column.direction == "descending" ? ", descending" : "") +
          (column.isDefault ? ", the default" : "")};
}

TreeNode expressionNode(ExpressionView const& expression) {
  auto label =
      fmt::format("{}: {} = {}", expression.column, expression.type, expression.expression);
  if (expression.decimals >= 0) {
    label += fmt::format(", {} to {} {}", expression.isCut ? "cut" : "rounded", expression.decimals,
                         expression.decimals == 1 ? "decimal" : "decimals");
  }
  return {label};
}

TreeNode inputColumnNode(InputColumnView const& column) {
  bool const renamed = !column.alias.empty() && column.alias != column.name;
  return {fmt::format("{}{}: {}", column.name, renamed ? " as " + column.alias : "", column.type)};
}

TreeNode inputNode(InputView const& input) {
  TreeNode node{input.source, {}};
  for (auto const& meeting : input.meetings) {
    node.children.push_back(
        {fmt::format("where its {} is {}", meeting.column, meeting.resultColumn)});
  }
  for (auto const& column : input.columns) {
    node.children.push_back(inputColumnNode(column));
  }
  return node;
}

/// "nota by moxDoubleAvg", "bimestre".
std::string pivotText(std::vector<PivotColumnView> const& columns, char const* word) {
  std::vector<std::string> texts;
  texts.reserve(columns.size());
  for (auto const& column : columns) {
    texts.push_back(column.means.empty()
                        ? column.column
                        : fmt::format("{} {} {}", column.column, word, column.means));
  }
  return fmt::format("{}", fmt::join(texts, ", "));
}

void addAggregation(std::vector<TreeNode>& nodes, ComputingView const& view) {
  nodes.push_back({view.keys.empty() ? "puts all rows into one group"
                                     : fmt::format("groups by {}", fmt::join(view.keys, ", "))});
  addList(nodes, "computes", view.functions, functionNode);
  if (view.countsRows) {
    nodes.push_back({"counts the rows of each group"});
  }
}

void addSorter(std::vector<TreeNode>& nodes, ComputingView const& view) {
  addList(nodes,
          view.userSorts ? "lets its user sort" + inQuotes(view.heading) + " by" : "sorts by",
          view.order, sortColumnNode);
}

void addExpressions(std::vector<TreeNode>& nodes, ComputingView const& view) {
  addList(nodes, "computes", view.expressions, expressionNode);
  if (view.zeroIsNull) {
    nodes.push_back({"turns 0 into null"});
  }
}

void addPivot(std::vector<TreeNode>& nodes, ComputingView const& view) {
  if (!view.rows.empty()) {
    nodes.push_back({fmt::format("rows by {}", fmt::join(view.rows, ", "))});
  }
  if (!view.across.empty()) {
    nodes.push_back({"columns by " + pivotText(view.across, "as")});
  }
  if (!view.cells.empty()) {
    nodes.push_back({"cells: " + pivotText(view.cells, "by")});
  }
}

}  // namespace

void addComputing(std::vector<TreeNode>& nodes, ComputingView const& view) {
  if (view.operation == "aggregation") {
    addAggregation(nodes, view);
  } else if (view.operation == "sorter") {
    addSorter(nodes, view);
  } else if (view.operation == "object") {
    nodes.push_back({"runs " + view.statement});
  } else if (view.operation == "expression") {
    addExpressions(nodes, view);
  } else if (view.operation == "pivot") {
    addPivot(nodes, view);
  } else {
    addList(nodes, view.operation == "join" ? "joins" : "puts one below the other", view.inputs,
            inputNode);
  }
  if (view.temporaryTable) {
    nodes.push_back({"also fills a temporary table of its name"});
  }
}

}  // namespace mox::cli
