#include "support/wiring/wiring.h"

namespace mox_test::wiring {
namespace {

std::string attribute(char const* name, std::string const& value) {
  return std::string(" ") + name + "=\"" + value + "\"";
}

std::string element(std::string const& name, std::string const& attributes,
                    std::string const& content) {
  return "<" + name + attributes + ">" + content + "</" + name + ">";
}

std::string qualified(int table, int column) {
  return std::string(kAlias) + "." + columnName(table, column);
}

std::string expressionOf(Output const& output, int table) {
  switch (output.shape) {
    case Output::kColumn:
      return qualified(table, output.first);
    case Output::kSum:
      return qualified(table, output.first) + " + " + qualified(table, output.second);
    case Output::kConstant:
      return std::to_string(output.first);
    case Output::kJoined:
      return output.alias + "." + columnName(output.table, output.first);
    case Output::kCount:
    case Output::kMaximum:
      break;
  }
  return {};
}

std::string columnType(Output const& output) {
  return output.first == kText && output.shape == Output::kColumn ? "1" : "2";
}

std::string columnXml(Output const& output, int table, std::size_t index) {
  bool const isColumn = output.shape == Output::kColumn;
  return element(
      "Column",
      attribute("tableName", isColumn ? kAlias : "") + attribute("columnName", output.name) +
          attribute("columnNameOrigin", isColumn ? columnName(table, output.first) : "") +
          attribute("Type", columnType(output)),
      element("sql", attribute("alias", output.name) + attribute("index", std::to_string(index)),
              expressionOf(output, table)));
}

std::string outputName(SqlSource const& source, int column) {
  for (auto const& output : source.outputs) {
    if (output.shape == Output::kColumn && output.first == column) {
      return output.name;
    }
  }
  return {};
}

std::string whereOf(SqlSource const& source) {
  std::string own;
  for (auto const& condition : source.anyOf) {
    own += (own.empty() ? "" : " or ") + condition.sql(source.table);
  }
  if (source.anyOf.size() > 1 && !source.bareOr) {
    own = "(" + own + ")";
  }
  if (!source.token) {
    return own;
  }
  auto const mark = "{{" + source.token->name + "}}";
  auto const test = qualified(source.table, source.token->column) + " >= " + mark;
  auto const token = source.token->maybeNull ? "(" + mark + " is null or " + test + ")" : test;
  return own.empty() ? token : token + " and " + own;
}

std::string fromOf(SqlSource const& source) {
  return "t" + std::to_string(source.table) + " " + kAlias;
}

std::string plainCommand(SqlSource const& source) {
  std::string select;
  for (auto const& output : source.outputs) {
    select +=
        (select.empty() ? "" : ", ") + expressionOf(output, source.table) + " as " + output.name;
  }
  auto const where = whereOf(source);
  return element(
      "Command", attribute("type", "0"),
      "select " + select + " from " + fromOf(source) + (where.empty() ? "" : " where " + where));
}

std::string composedCommand(SqlSource const& source) {
  auto const where = whereOf(source);
  return element("Command", attribute("type", "1"),
                 element("from", "", fromOf(source)) +
                     (source.join ? element("join", "", source.join->sql(source.table)) : "") +
                     (where.empty() ? "" : element("where", "", where)));
}

std::string orderXml(SqlSource const& source) {
  std::string list;
  for (auto const& by : source.order) {
    list += "<By" + attribute("tableName", kAlias) +
            attribute("columnName", outputName(source, by.column)) +
            (by.descending ? attribute("dir", "Desc") : "") + "/>";
  }
  return list.empty() ? "" : element("Order", "", list);
}

std::string offersXml(SqlSource const& source) {
  auto const onColumn =
      element("column", "",
              "<moxIntegralInFilter" + attribute("tableName", kAlias) +
                  attribute("columnName", outputName(source, source.offered)) + "/>");
  auto const custom =
      source.token ? element("custom", "",
                             "<moxIntegralUniqueFilter" +
                                 attribute("columnName", "{{" + source.token->name + "}}") + "/>")
                   : "";
  return element("Filters", "", onColumn + custom);
}

std::string xmlOf(SqlSource const& source, std::string const& name) {
  bool const hasWhere = source.isPlain && !whereOf(source).empty();
  std::string columns;
  for (std::size_t i = 0; i < source.outputs.size(); ++i) {
    columns += columnXml(source.outputs[i], source.table, i);
  }
  auto const unit = source.byUnits ? "<unidadeColumn" + attribute("tableName", kAlias) +
                                         attribute("columnName", outputName(source, kUnit)) +
                                         attribute("allownull", source.nullUnits ? "1" : "0") + "/>"
                                   : "";
  return element("moxSQLDataSource",
                 attribute("name", name) + (hasWhere ? attribute("whereand", "and") : ""),
                 (source.isPlain ? plainCommand(source) : composedCommand(source)) + unit +
                     element("Columns", "", columns) + orderXml(source) + offersXml(source));
}

/// Columns of the changed query are named by marks.
std::string addedExpression(Output const& output) {
  switch (output.shape) {
    case Output::kColumn:
      return "[x]";
    case Output::kSum:
      return "[x] + [y]";
    case Output::kMaximum:
      return "max([x])";
    case Output::kCount:
      return "count(*)";
    case Output::kConstant:
    case Output::kJoined:
      break;
  }
  return expressionOf(output, 0);
}

std::string addedColumnXml(Output const& output, FilterSource const& filter) {
  auto const origin = [&](int column) {
    return "<columnSourceOrigin" + attribute("tableName", kAlias) +
           attribute("columnName", "x" + columnName(filter.table, column)) + "/>";
  };
  std::string origins;
  if (output.shape == Output::kColumn || output.shape == Output::kSum ||
      output.shape == Output::kMaximum) {
    origins = origin(output.first);
  }
  if (output.shape == Output::kSum) {
    origins += origin(output.second);
  }
  return element(
      "column", attribute("columnName", output.name) + attribute("Type", "2"),
      element("sql", attribute("alias", output.name), addedExpression(output)) + origins);
}

std::string fixedXml(FixedCondition const& fixed, int table) {
  constexpr char const* kTags[] = {"Valor", "Sql", "SemFiltro"};
  std::string content;
  if (fixed.kind == FixedCondition::kValor) {
    for (int const id : fixed.ids) {
      content += element("value", "", std::to_string(id));
    }
  } else if (fixed.kind == FixedCondition::kSql) {
    content =
        element("SQL", "",
                "select " + qualified(fixed.table, kB) + " from t" + std::to_string(fixed.table) +
                    " " + kAlias + " where " + fixed.condition.sql(fixed.table));
  }
  return element(kTags[fixed.kind],
                 attribute("tableName", kAlias) +
                     attribute("columnNameOrigin", columnName(table, fixed.column)),
                 content);
}

std::string piece(char const* name, std::string const& text) {
  return text.empty() ? "" : element(name, "", text);
}

std::string xmlOf(FilterSource const& filter, std::string const& name) {
  std::string fixed;
  for (auto const& each : filter.fixed) {
    fixed += fixedXml(each, filter.table);
  }
  std::string columns;
  for (auto const& column : filter.columns) {
    columns += addedColumnXml(column, filter);
  }
  auto const order = filter.order ? qualified(filter.table, filter.order->column) +
                                        (filter.order->descending ? " desc" : "")
                                  : "";
  return element(
      "moxFilterDataSource", attribute("name", name) + attribute("dataSource", filter.source),
      piece("join", filter.join ? filter.join->sql(filter.table) : "") +
          piece("where", filter.where ? filter.where->sql(filter.table) : "") +
          piece("group", filter.group ? qualified(filter.table, *filter.group) : "") +
          piece("order", order) + element("Filters", "", fixed) +
          element("selectColumns", attribute("tipo", filter.replaces ? "1" : "0"), columns));
}

std::string relatedXml(Related const& related, Record const& record) {
  auto const column = related.column ? columnName(record.table, *related.column) : "";
  auto const own =
      related.column ? (related.namesOrigin ? "x" + column : column) : "{{" + record.token + "}}";
  return "<filter" + attribute("columnNameOrigin", related.namesOrigin ? column : "") +
         attribute("tableName", related.namesTable && related.column ? kAlias : "") +
         attribute("columnName", own) + attribute("filterNameRelac", related.filterName) + "/>";
}

std::string xmlOf(Manager const& manager, std::string const& name) {
  std::string records;
  for (auto const& record : manager.records) {
    std::string available;
    for (auto const& filterName : record.available) {
      available += "<filter" + attribute("filterName", filterName) + "/>";
    }
    std::string related;
    for (auto const& each : record.related) {
      related += relatedXml(each, record);
    }
    records += element("source", attribute("name", record.source),
                       element("avaliable", "", available) + element("related", "", related));
  }
  return element("moxManageFilterDataSource", attribute("name", name),
                 element("sources", "", records));
}

std::string xmlOf(std::shared_ptr<Group> const& group, std::string const&) {
  return groupXml(*group);
}

std::string relationXml(Member const& member) {
  if (!member.byValues) {
    return {};
  }
  auto const table = std::get<SqlSource>(member.source).table;
  auto const own = columnName(table, member.byValues->ownColumn);
  return element("Relation",
                 attribute("columnNameOrigin", own) + attribute("columnName", "x" + own) +
                     attribute("tableName", kAlias),
                 "<DataSourceOrigin" + attribute("dataSource", member.byValues->member) +
                     attribute("columnName", member.byValues->column) + "/>");
}

std::string memberXml(Member const& member) {
  auto attributes = attribute("name", member.name);
  std::string content = member.isExternal ? "" : sourceXml(member);
  if (member.isExternal) {
    attributes += attribute("dataSource", member.definition);
    std::string relations;
    for (auto const& [external, internal] : member.relations) {
      relations +=
          "<relation" + attribute("external", external) + attribute("internal", internal) + "/>";
    }
    content = element("sourcesExternalRelation", "", relations);
  }
  return element("moxDadoDataSource", attributes, content + relationXml(member));
}

}  // namespace

std::string sourceXml(Member const& member) {
  return std::visit([&](auto const& source) { return xmlOf(source, member.definition); },
                    member.source);
}

std::string groupXml(Group const& group) {
  std::string members;
  for (auto const& member : group.members) {
    members += memberXml(member);
  }
  return element("moxGroupDataSource",
                 attribute("name", group.name) + attribute("outputSource", group.output) +
                     attribute("filterSource", group.filterSource),
                 element("DataSources", "", members));
}

std::vector<std::string> externalXml(Group const& group) {
  std::vector<std::string> definitions;
  for (auto const& member : group.members) {
    if (member.isExternal) {
      definitions.push_back(sourceXml(member));
    }
    if (auto const* const inner = std::get_if<std::shared_ptr<Group>>(&member.source)) {
      auto const deeper = externalXml(**inner);
      definitions.insert(definitions.end(), deeper.begin(), deeper.end());
    }
  }
  return definitions;
}

std::string describe(Wiring const& wiring) {
  std::string text = groupXml(wiring.group) + "\n";
  for (auto const& definition : externalXml(wiring.group)) {
    text += "outside: " + definition + "\n";
  }
  for (auto const& outside : wiring.outside) {
    text += "changes from outside: " + sourceXml(outside) + "\n";
  }
  for (auto const& given : wiring.given) {
    text += std::string(given.isFixed ? "fixed" : "given") + (given.atGroup ? " at group" : "");
    for (auto const& step : given.path) {
      text += " -> " + step;
    }
    text += ": " + given.name + " " + given.condition.sql(given.table) + "\n";
  }
  text += "units:";
  for (int const unit : wiring.units) {
    text += " " + std::to_string(unit);
  }
  return text + "\n";
}

}  // namespace mox_test::wiring
