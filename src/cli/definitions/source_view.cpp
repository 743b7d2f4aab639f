#include "cli/definitions/source_view.h"

#include <algorithm>
#include <set>

#include "cli/definitions/computing_view.h"
#include "core/run/chain.h"
#include "mox/core/error.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/format/generic_formatter.h"

namespace mox::cli {

namespace {

using Column = moxSQLDataSourceColumn;

std::string joined(std::string const& table, std::string const& column) {
  return table.empty() || column.empty() ? column : table + "." + column;
}

/// The roles that other columns and the source give to columns.
class Roles {
 public:
  explicit Roles(moxSQLDataSource const& source) {
    give(source.getMainColumn(), "main");
    give(source.getStatusColumn(), "status");
    auto const [unit, mayBeNull] = source.getUnidadeColumn();
    give(unit, mayBeNull ? "unit (null is everybody's)" : "unit");
    give(source.getDescricaoColumn(), "description");
    for (auto const& column : source.columns()) {
      give(column->getIdColumn(), "key of " + column->getColumnName());
      give(column->getIconColumn(), "icon of " + column->getColumnName());
    }
  }

  std::vector<std::string> of(Column const& column) const {
    std::vector<std::string> roles;
    for (auto const& [holder, role] : given_) {
      if (holder == &column) {
        roles.push_back(role);
      }
    }
    return roles;
  }

 private:
  void give(std::shared_ptr<Column const> const& column, std::string role) {
    if (column) {
      given_.emplace_back(column.get(), std::move(role));
    }
  }

  std::vector<std::pair<Column const*, std::string>> given_;
};

ColumnView columnView(Column const& column, std::vector<std::string> roles) {
  auto const formatter = column.getFormatter();
  return {.name = column.getColumnName(),
          .type = typeWord(column.getDataMatrixType()),
          .heading = column.getVisibleName(),
          .origin = joined(column.getTableNameOrigin(), column.getColumnNameOrigin()),
          .expression = column.getSQLColumn().first,
          .formatter = formatter ? formatter->name() : "",
          .roles = std::move(roles),
          .visible = column.getVisible()};
}

void addSqlColumns(DefinitionView& view, moxSQLDataSource const& source) {
  Roles const roles(source);
  for (auto const& column : source.columns()) {
    view.columns.push_back(columnView(*column, roles.of(*column)));
  }
}

void addFilters(DefinitionView& view, moxDataSource const& source) {
  for (auto const& filter : source.getFilters()) {
    view.filters.push_back({.kind = filter->name(),
                            .column = joined(filter->getTableName(), filter->getColumn()),
                            .description = filter->getDescription(),
                            .control = filter->getVisualRepresentation(),
                            .required = filter->getRequire()});
  }
}

void addSqlSource(DefinitionView& view, moxSQLDataSource const& source) {
  bool const composed = source.getSQLTipo() == moxSQLDataSource::kComposed;
  if (auto heading = source.getHeaderName(); !heading.empty()) {
    view.settings.emplace_back("heading", std::move(heading));
  }
  view.settings.emplace_back("statement", composed ? "composed" : "plain");
  for (auto const& [column, descending] : source.getOrderColumns()) {
    view.order.push_back({column->getColumnName(), descending});
  }
  for (auto const& relation : source.getRelations()) {
    view.relations.push_back({.column = relation.column ? relation.column->getColumnName() : "",
                              .source = relation.dataSource,
                              .sourceColumn = relation.columnName});
  }
}

std::string conditionKind(moxFilterDataSourceSpec::Tipos kind) {
  switch (kind) {
    case moxFilterDataSourceSpec::kValor:
      return "values";
    case moxFilterDataSourceSpec::kSql:
      return "statement";
    case moxFilterDataSourceSpec::kSemFiltro:
      break;
  }
  return "none";
}

ConditionView conditionView(moxFilterDataSource::ConstSpec const& condition) {
  // The questions for values and statement change nothing, and are no constant ones all the same.
  auto const spec = std::const_pointer_cast<moxFilterDataSourceSpec>(condition);
  auto const ids = spec->getIds();
  return {.kind = conditionKind(spec->getTipo()),
          .column = spec->getColumnOrigin(),
          .filter = spec->getPluginFilter(),
          .values = {ids.begin(), ids.end()},
          .statement = spec->getSQL()};
}

FilterSourceView filterSourceView(moxFilterDataSource const& source) {
  FilterSourceView view;
  view.source = source.getDataSourceName();
  for (auto const& [name, text] : {std::pair("join", source.getSQLJoin()),
                                   {"where", source.getSQLWhere()},
                                   {"group", source.getSQLGroup()},
                                   {"order", source.getSQLOrder()}}) {
    if (!text.empty()) {
      view.texts.emplace_back(name, text);
    }
  }
  view.replacesColumns = source.getTipoRetornoSelect() == moxFilterDataSource::kSubstitui;
  for (auto const& column : source.columns()) {
    view.columns.push_back(columnView(*column, {}));
  }
  for (auto const& condition : source.getFiltersSpec()) {
    view.conditions.push_back(conditionView(condition));
  }
  return view;
}

std::vector<GovernedView> governedViews(moxManageFilterDataSource const& manager) {
  std::vector<GovernedView> views;
  for (auto const& governed : manager.getSources()) {
    GovernedView view{.source = governed.name, .offered = {}, .related = {}};
    for (auto const& offered : governed.avaliable) {
      view.offered.push_back(offered.filterName);
    }
    for (auto const& related : governed.related) {
      view.related.push_back({.filter = related.filterNameRelac,
                              .column = {related.tableNameOrigin, related.columnNameOrigin,
                                         related.tableName, related.columnName}});
    }
    views.push_back(std::move(view));
  }
  return views;
}

void addDefect(DefinitionView& view, std::string const& defect) {
  std::pair<std::string, std::string> const setting("defect", defect);
  if (std::ranges::find(view.settings, setting) == view.settings.end()) {
    view.settings.push_back(setting);
  }
}

void addGroup(DefinitionView& view, moxGroupDataSource const& group, ViewTrail& trail) {
  view.group = groupView(group, trail);
  for (auto const& defect : groupDefects(group)) {
    addDefect(view, defect);
  }
}

/// Runs `add`. What a broken definition cannot tell is told as its defect: it is then looked at to
/// see what it misses.
template <class Add>
void addOrTellDefect(DefinitionView& view, Add const& add) {
  try {
    add();
  } catch (moxError const& error) {
    addDefect(view, error.errorMessage());
  }
}

std::vector<ColumnView> plainColumns(moxDataSource const& source) {
  std::vector<ColumnView> columns;
  for (auto const& [name, type] : source.getColumns()) {
    columns.push_back({.name = name,
                       .type = typeWord(type),
                       .heading = {},
                       .origin = {},
                       .expression = {},
                       .formatter = {},
                       .roles = {}});
  }
  return columns;
}

/// What a broken source in the tree cannot tell is told where the definition itself is looked at.
std::vector<ColumnView> knownColumns(moxDataSource const& source) {
  try {
    return plainColumns(source);
  } catch (moxError const&) {
    return {};
  }
}

/// Each source in the tree with what it reads, once.
class TreeMaker {
 public:
  DependencyView tree(moxDataSource const& source) {
    DependencyView view{.name = source.getName(), .className = source.name(), .dependencies = {}};
    view.repeated = !met_.insert(&source).second;
    view.ring = std::ranges::find(above_, &source) != above_.end();
    if (!view.repeated && above_.size() < kDeepest) {
      above_.push_back(&source);
      view.computing = computingView(source);
      if (view.computing) {
        view.columns = knownColumns(source);
      }
      view.dependencies = below(source);
      above_.pop_back();
    }
    return view;
  }

  std::vector<DependencyView> below(moxDataSource const& source) {
    std::vector<DependencyView> views;
    std::set<std::string> found;
    for (auto const& read : source.getRelatedDataSources(false)) {
      found.insert(read->getName());
      views.push_back(tree(*read));
    }
    for (auto const& name : core::inputNamesOf(source)) {
      if (!found.contains(name)) {
        views.push_back({.name = name, .className = {}, .missing = true});
      }
    }
    return views;
  }

 private:
  static constexpr std::size_t kDeepest = 64;  // of sources that can be run

  std::set<moxDataSource const*> met_;
  std::vector<moxDataSource const*> above_;
};

}  // namespace

void addSource(DefinitionView& view, moxDataSource const& source) {
  ViewTrail trail;
  addSource(view, source, trail);
}

void addSource(DefinitionView& view, moxDataSource const& source, ViewTrail& trail) {
  if (auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source)) {
    addSqlSource(view, *sql);
  } else if (auto const* const filter = dynamic_cast<moxFilterDataSource const*>(&source)) {
    view.filterSource = filterSourceView(*filter);
  } else if (auto const* const manager = dynamic_cast<moxManageFilterDataSource const*>(&source)) {
    view.governed = governedViews(*manager);
  } else if (auto const* const group = dynamic_cast<moxGroupDataSource const*>(&source)) {
    addGroup(view, *group, trail);
  } else {
    view.computing = computingView(source);
  }
  addColumns(view, source);
  view.dependencies = dependencyTree(source).dependencies;
}

void addColumns(DefinitionView& view, moxDataSource const& source) {
  if (auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source)) {
    addSqlColumns(view, *sql);
  } else {
    addOrTellDefect(view, [&] { view.columns = plainColumns(source); });
  }
  addOrTellDefect(view, [&] { addFilters(view, source); });
}

DependencyView dependencyTree(moxDataSource const& source) {
  return TreeMaker().tree(source);
}

}  // namespace mox::cli
