#include "cli/definitions/source_view.h"

#include <algorithm>
#include <array>
#include <set>

#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/format/generic_formatter.h"

namespace mox::cli {

namespace {

using Column = moxSQLDataSourceColumn;

std::string typeWord(moxDataMatrixTypes::Types type) {
  constexpr std::array kWords = {"int", "double", "text", "date", "blob"};
  auto const index = static_cast<std::size_t>(type);
  return index < kWords.size() ? kWords[index] : std::to_string(index);
}

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

/// Each source in the tree with what it reads, once.
class TreeMaker {
 public:
  DependencyView tree(moxDataSource const& source) {
    DependencyView view{.name = source.getName(), .className = source.name(), .dependencies = {}};
    view.repeated = !met_.insert(&source).second;
    if (!view.repeated && depth_ < kDeepest) {
      ++depth_;
      view.dependencies = below(source);
      --depth_;
    }
    return view;
  }

  std::vector<DependencyView> below(moxDataSource const& source) {
    std::vector<DependencyView> views;
    for (auto const& read : source.getRelatedDataSources(false)) {
      views.push_back(tree(*read));
    }
    return views;
  }

 private:
  static constexpr int kDeepest = 64;  // of sources that can be run

  std::set<moxDataSource const*> met_;
  int depth_ = 0;
};

}  // namespace

void addSource(DefinitionView& view, moxDataSource const& source) {
  if (auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source)) {
    addSqlSource(view, *sql);
  } else if (auto const* const filter = dynamic_cast<moxFilterDataSource const*>(&source)) {
    view.settings.emplace_back("changes", filter->getDataSourceName());
  } else if (auto const* const manager = dynamic_cast<moxManageFilterDataSource const*>(&source)) {
    for (auto const& governed : manager->getSources()) {
      view.settings.emplace_back("governs", governed.name);
    }
  }
  addColumns(view, source);
  view.dependencies = dependencyTree(source).dependencies;
}

void addColumns(DefinitionView& view, moxDataSource const& source) {
  if (auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source)) {
    addSqlColumns(view, *sql);
  } else {
    for (auto const& [name, type] : source.getColumns()) {
      view.columns.push_back({.name = name,
                              .type = typeWord(type),
                              .heading = {},
                              .origin = {},
                              .expression = {},
                              .formatter = {},
                              .roles = {}});
    }
  }
  addFilters(view, source);
}

DependencyView dependencyTree(moxDataSource const& source) {
  return TreeMaker().tree(source);
}

}  // namespace mox::cli
