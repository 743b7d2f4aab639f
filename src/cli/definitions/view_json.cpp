#include "cli/definitions/view_json.h"

#include "cli/definitions/json_document.h"

namespace mox::cli {

namespace {

void write(JsonDocument& out, std::string const& text) {
  out.text(text);
}

using Column = moxSQLDataSourceColumn::SQLColum;

void write(JsonDocument& out, int number) {
  out.number(number);
}

void write(JsonDocument& out, ColumnView const& column);
void write(JsonDocument& out, FilterView const& filter);
void write(JsonDocument& out, OrderView const& order);
void write(JsonDocument& out, RelationView const& relation);
void write(JsonDocument& out, DependencyView const& dependency);
void write(JsonDocument& out, InputColumnView const& column);
void write(JsonDocument& out, MeetingView const& meeting);
void write(JsonDocument& out, InputView const& input);
void write(JsonDocument& out, FunctionView const& function);
void write(JsonDocument& out, ExpressionView const& expression);
void write(JsonDocument& out, SortColumnView const& column);
void write(JsonDocument& out, PivotColumnView const& column);
void write(JsonDocument& out, ConditionView const& condition);
void write(JsonDocument& out, GovernedView const& governed);
void write(JsonDocument& out, RelatedFilterView const& related);
void write(JsonDocument& out, WireView const& wire);
void write(JsonDocument& out, MemberView const& member);
void write(JsonDocument& out, DefinitionView const& view);

template <class T>
void writeList(JsonDocument& out, std::string_view name, std::vector<T> const& list) {
  out.key(name);
  out.open('[');
  for (auto const& element : list) {
    write(out, element);
  }
  out.close(']');
}

/// Pairs as objects in a list, since a name may be there several times.
void writePairs(JsonDocument& out, std::string_view name,
                std::vector<std::pair<std::string, std::string>> const& pairs,
                std::string_view firstKey, std::string_view secondKey) {
  out.key(name);
  out.open('[');
  for (auto const& [first, second] : pairs) {
    out.open('{');
    out.member(firstKey, first);
    out.member(secondKey, second);
    out.close('}');
  }
  out.close(']');
}

void writeReference(JsonDocument& out, Column const& column) {
  out.key("column");
  out.open('{');
  out.member("table", column.tableName);
  out.member("column", column.columnName);
  out.member("table_origin", column.tableNameOrigin);
  out.member("column_origin", column.columnNameOrigin);
  out.close('}');
}

void write(JsonDocument& out, ColumnView const& column) {
  out.open('{');
  out.member("name", column.name);
  out.member("type", column.type);
  out.member("heading", column.heading);
  out.member("origin", column.origin);
  out.member("expression", column.expression);
  out.member("formatter", column.formatter);
  out.member("visible", column.visible);
  writeList(out, "roles", column.roles);
  out.close('}');
}

void write(JsonDocument& out, FilterView const& filter) {
  out.open('{');
  out.member("kind", filter.kind);
  out.member("column", filter.column);
  out.member("description", filter.description);
  out.member("required", filter.required);
  out.member("control", filter.control);
  out.close('}');
}

void write(JsonDocument& out, OrderView const& order) {
  out.open('{');
  out.member("column", order.column);
  out.member("descending", order.descending);
  out.close('}');
}

void write(JsonDocument& out, RelationView const& relation) {
  out.open('{');
  out.member("column", relation.column);
  out.member("source", relation.source);
  out.member("source_column", relation.sourceColumn);
  out.close('}');
}

void write(JsonDocument& out, InputColumnView const& column) {
  out.open('{');
  out.member("name", column.name);
  out.member("alias", column.alias);
  out.member("type", column.type);
  out.close('}');
}

void write(JsonDocument& out, MeetingView const& meeting) {
  out.open('{');
  out.member("column", meeting.column);
  out.member("result_column", meeting.resultColumn);
  out.close('}');
}

void write(JsonDocument& out, InputView const& input) {
  out.open('{');
  out.member("source", input.source);
  writeList(out, "columns", input.columns);
  writeList(out, "meetings", input.meetings);
  out.close('}');
}

void write(JsonDocument& out, FunctionView const& function) {
  out.open('{');
  out.member("kind", function.kind);
  out.member("source", function.source);
  out.member("target", function.target);
  out.close('}');
}

void write(JsonDocument& out, ExpressionView const& expression) {
  out.open('{');
  out.member("column", expression.column);
  out.member("expression", expression.expression);
  out.member("type", expression.type);
  out.member("decimals", expression.decimals);
  out.member("cut", expression.isCut);
  out.close('}');
}

void write(JsonDocument& out, SortColumnView const& column) {
  out.open('{');
  out.member("column", column.column);
  out.member("description", column.description);
  out.member("direction", column.direction);
  out.member("default", column.isDefault);
  out.close('}');
}

void write(JsonDocument& out, PivotColumnView const& column) {
  out.open('{');
  out.member("column", column.column);
  out.member("means", column.means);
  out.close('}');
}

void writeComputing(JsonDocument& out, ComputingView const& view) {
  out.key("computes");
  out.open('{');
  out.member("operation", view.operation);
  writeList(out, "inputs", view.inputs);
  out.member("temporary_table", view.temporaryTable);
  writeList(out, "keys", view.keys);
  writeList(out, "functions", view.functions);
  out.member("counts_rows", view.countsRows);
  writeList(out, "sort", view.order);
  out.member("user_sorts", view.userSorts);
  out.member("heading", view.heading);
  writeList(out, "expressions", view.expressions);
  out.member("zero_is_null", view.zeroIsNull);
  writeList(out, "rows", view.rows);
  writeList(out, "across", view.across);
  writeList(out, "cells", view.cells);
  out.member("statement", view.statement);
  out.close('}');
}

void write(JsonDocument& out, DependencyView const& dependency) {
  out.open('{');
  out.member("name", dependency.name);
  out.member("class", dependency.className);
  out.member("repeated", dependency.repeated);
  out.member("ring", dependency.ring);
  out.member("missing", dependency.missing);
  if (dependency.computing) {
    writeList(out, "columns", dependency.columns);
    writeComputing(out, *dependency.computing);
  }
  writeList(out, "reads", dependency.dependencies);
  out.close('}');
}

void write(JsonDocument& out, ConditionView const& condition) {
  out.open('{');
  out.member("kind", condition.kind);
  writeReference(out, condition.column);
  out.member("filter", condition.filter);
  writeList(out, "values", condition.values);
  out.member("statement", condition.statement);
  out.close('}');
}

void write(JsonDocument& out, RelatedFilterView const& related) {
  out.open('{');
  out.member("filter", related.filter);
  writeReference(out, related.column);
  out.close('}');
}

void write(JsonDocument& out, GovernedView const& governed) {
  out.open('{');
  out.member("source", governed.source);
  writeList(out, "offered", governed.offered);
  writeList(out, "related", governed.related);
  out.close('}');
}

void write(JsonDocument& out, WireView const& wire) {
  out.open('{');
  out.member("source", wire.source);
  writeList(out, "through", wire.through);
  out.member("target", wire.target);
  out.member("defect", wire.defect);
  out.close('}');
}

void writeRelation(JsonDocument& out, MemberRelationView const& relation) {
  out.key("relation");
  out.open('{');
  writeReference(out, relation.column);
  out.member("member", relation.member);
  out.member("member_column", relation.memberColumn);
  out.member("defect", relation.defect);
  out.close('}');
}

void write(JsonDocument& out, MemberView const& member) {
  out.open('{');
  out.member("name", member.name);
  out.member("class", member.className);
  out.member("external", member.external);
  out.member("output", member.isOutput);
  out.member("filter_source", member.isFilterSource);
  out.member("joins_filter_screen", member.joinsFilterScreen);
  out.member("repeated", member.repeated);
  out.member("ring", member.ring);
  writePairs(out, "inputs", member.inputs, "source", "member");
  if (member.relation) {
    writeRelation(out, *member.relation);
  }
  writeList(out, "wires", member.wires);
  writeList(out, "changed_by", member.changedBy);
  writeList(out, "governed_by", member.governedBy);
  out.member("defect", member.defect);
  if (!member.source.empty()) {
    out.key("definition");
    write(out, member.source.front());
  }
  out.close('}');
}

void writeSearch(JsonDocument& out, SearchView const& search) {
  out.key("search");
  out.open('{');
  out.member("heading", search.heading);
  out.member("source", search.source);
  out.member("auto_fill", search.autoFill);
  out.member("allow_reorder", search.allowReorder);
  out.member("require_filter", search.requireFilter);
  out.member("require_permission", search.requirePermission);
  out.member("width", static_cast<int>(search.width));
  out.member("height", static_cast<int>(search.height));
  writeList(out, "order", search.order);
  out.close('}');
}

void writeFilterSource(JsonDocument& out, FilterSourceView const& source) {
  out.key("changes");
  out.open('{');
  out.member("source", source.source);
  writePairs(out, "texts", source.texts, "name", "text");
  out.member("replaces_columns", source.replacesColumns);
  writeList(out, "columns", source.columns);
  writeList(out, "conditions", source.conditions);
  out.close('}');
}

void writeGroup(JsonDocument& out, GroupView const& group) {
  out.key("group");
  out.open('{');
  out.member("output", group.outputSource);
  out.member("filter_source", group.filterSource);
  writeList(out, "members", group.members);
  out.close('}');
}

/// What only some kinds have.
void writeParts(JsonDocument& out, DefinitionView const& view) {
  if (view.search) {
    writeSearch(out, *view.search);
  }
  if (view.computing) {
    writeComputing(out, *view.computing);
  }
  if (view.filterSource) {
    writeFilterSource(out, *view.filterSource);
  }
  if (view.governed) {
    writeList(out, "governs", *view.governed);
  }
  if (view.group) {
    writeGroup(out, *view.group);
  }
}

void write(JsonDocument& out, DefinitionView const& view) {
  out.open('{');
  out.member("name", view.name);
  out.member("kind", view.kind);
  out.member("class", view.className);
  out.member("library", view.library);
  writePairs(out, "settings", view.settings, "name", "value");
  writeList(out, "columns", view.columns);
  writeList(out, "filters", view.filters);
  writeList(out, "order", view.order);
  writeList(out, "relations", view.relations);
  writeParts(out, view);
  writeList(out, "reads", view.dependencies);
  out.close('}');
}

}  // namespace

std::string jsonText(DefinitionView const& view) {
  JsonDocument out;
  write(out, view);
  return out.take();
}

}  // namespace mox::cli
