#include "zyn/search/search_runner.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/core/progress_notifier.h"
#include "mox/core/session.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "mox/zyn/search/search.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "zyn/frame/current_user.h"
#include "zyn/frame/registered.h"
#include "zyn/search/filter_names.h"

namespace {

constexpr int kWidthOfNoColumn = 100;  // pixels
constexpr char const* kSearchOfUnits = "moxPesqUnidades";

/// Columns of these kinds can be asked for by name; in the order of their numbers.
constexpr std::array<char const*, 4> kColumnClasses = {
    "moxDataMatrixIntColumn", "moxDataMatrixDoubleColumn", "moxDataMatrixTextColumn",
    "moxDataMatrixDateColumn"};

std::shared_ptr<moxDataMatrixColumn> newColumn(moxDataSourceColumnType const& described) {
  auto const type = static_cast<std::size_t>(described.second);
  if (type >= kColumnClasses.size()) {
    return {};
  }
  auto column = registeredOrNone<moxDataMatrixColumn>(kColumnClasses[type]);
  if (column) {
    column->setName(described.first);
  }
  return column;
}

std::vector<std::string> namesOf(std::vector<moxDataSourceColumnType> const& columns) {
  std::vector<std::string> names;
  names.reserve(columns.size());
  for (auto const& column : columns) {
    names.push_back(column.first);
  }
  return names;
}

/// The business units of a run; empty for the one that the session works in. The list of the units
/// themselves is for the user to choose from, and so is of all of his.
std::vector<int> unitsFor(moxSearch const& search) {
  if (search.description() != kSearchOfUnits) {
    return {};
  }
  auto const user = currentUser();
  return user ? user->units() : std::vector<int>();
}

/// Under which names the filters of a search reach the group's member that gives the rows. Its bare
/// name does so only where the group's own filters go to it too.
std::vector<std::string> targetsIn(moxGroupDataSource const& group) {
  auto const output = group.getOutputSource();
  if (output == group.getFilterSource()) {
    return {output};
  }
  return {output, group.getName() + "->" + output};
}

void requireFilter(std::shared_ptr<moxDataMatrixSQLFilter const> const& filter) {
  if (!filter) {
    throw std::invalid_argument("a filter of a search must not be empty");
  }
}

}  // namespace

void moxSE_Runner::load(std::shared_ptr<moxSearch const> search) {
  if (!search) {
    throw std::invalid_argument("a runner was given no search");
  }
  search_ = std::move(search);
  auto const source = search_->getDataSource();
  int index = 0;
  for (auto const& described : source ? source->getColumns() : decltype(source->getColumns()){}) {
    if (auto const column = newColumn(described)) {
      columnIndexes_[column->getName()] = index;
    }
    ++index;
  }
}

moxSearch const& moxSE_Runner::requireSearch() const {
  if (!search_) {
    throw std::logic_error("a runner has to be given its search first");
  }
  return *search_;
}

void moxSE_Runner::performSql() {
  performSqlIn(moxApp->get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext"), {});
}

void moxSE_Runner::performSqlIn(std::shared_ptr<moxDataSourceExecutionContext> context,
                                std::vector<int> const& units) {
  auto const source = requireSearch().getDataSource();
  if (!source) {
    throw moxDefaultErrorImpl<moxError>(
        "Fonte de dados externa inválida",
        {"search: \"" + search_->description() + "\"", "it has no data source"});
  }
  keep(inInitialOrder(run(*source, context, units.empty() ? unitsFor(*search_) : units)));
}

/// The rows of before stay when the new ones cannot be answered for.
void moxSE_Runner::keep(std::shared_ptr<moxDataMatrix> matrix) {
  ResultCells cells(*matrix, sqlSource().get());
  matrix_ = std::move(matrix);
  cells_ = std::move(cells);
}

bool moxSE_Runner::sortRows(std::vector<std::pair<std::string, bool>> const& columns) {
  auto const isThere = [this](auto const& column) {
    return matrix_->columnByName(column.first) != nullptr;
  };
  if (!matrix_ || !std::all_of(columns.begin(), columns.end(), isThere)) {
    return false;
  }
  auto const sorter = moxApp->get<moxDataMatrixSorter>("moxDataMatrixSorter");
  for (auto const& [column, descending] : columns) {
    sorter->pushSortColumn(column, descending);
  }
  keep(sorter->transform(matrix_));
  return true;
}

/// The source's rows, with the columns as they are declared, whichever way the query gave them.
std::shared_ptr<moxDataMatrix> moxSE_Runner::run(
    moxDataSource const& source, std::shared_ptr<moxDataSourceExecutionContext> const& context,
    std::vector<int> const& units) const {
  FilterNames const names(filters_);
  auto const name = source.getName();
  giveFilters(*context, source);
  context->processDataSources({}, {{name, {false, source.createExecution()}}}, units, 0);
  auto matrix = context->getDataMatrix(name);
  if (!matrix) {
    throw moxDefaultErrorImpl<moxError>("Falha: " + name);
  }
  matrix->orderColumnsByName(namesOf(source.getColumns()));
  return matrix;
}

/// Filters are for the query itself, never for what is derived from it.
void moxSE_Runner::giveFilters(moxDataSourceExecutionContext& context,
                               moxDataSource const& source) const {
  if (filters_.empty()) {
    return;
  }
  auto const* const group = dynamic_cast<moxGroupDataSource const*>(&source);
  for (auto const& target : group != nullptr ? targetsIn(*group) : targetsOf(source)) {
    for (auto const& filter : filters_) {
      context.addDataSourceFixedFilter(target, filter);
    }
  }
}

std::vector<std::string> moxSE_Runner::targetsOf(moxDataSource const& source) const {
  auto const sql = sqlSource();
  return {sql ? sql->getName() : source.getName()};
}

std::shared_ptr<moxDataMatrix> moxSE_Runner::inInitialOrder(
    std::shared_ptr<moxDataMatrix> matrix) const {
  auto const column = search_->getInitialOrderColumn();
  if (!column) {
    return matrix;
  }
  auto const sorter = moxApp->get<moxDataMatrixSorter>("moxDataMatrixSorter");
  sorter->pushSortColumn(column->getColumnName(), !search_->getInitialOrderAscending());
  return sorter->transform(std::move(matrix));
}

std::shared_ptr<moxSQLDataSource const> moxSE_Runner::sqlSource() const {
  return search_ ? search_->getSqlDataSource() : nullptr;
}

std::vector<std::string> moxSE_Runner::columnsHeaders() const {
  std::vector<std::string> headers;
  auto const definition = sqlSource();
  for (auto const& column :
       definition ? definition->columns() : decltype(definition->columns()){}) {
    if (column->getVisible() || column->getAvaliable()) {
      headers.push_back(column->getVisibleName());
    }
  }
  return headers;
}

unsigned int moxSE_Runner::rowCount() const {
  return matrix_ ? matrix_->rowCount() : 0;
}

void moxSE_Runner::pushFilter(std::shared_ptr<moxDataMatrixSQLFilter> filter) {
  pushFixedFilter(std::move(filter));
}

void moxSE_Runner::pushFixedFilter(std::shared_ptr<moxDataMatrixSQLFilter const> filter) {
  requireFilter(filter);
  filters_.push_back(std::move(filter));
}

int moxSE_Runner::getColumnWidth(int column) const {
  auto const definition = column < 0 ? nullptr : getColumn(static_cast<unsigned int>(column));
  return definition ? definition->getWidth() : kWidthOfNoColumn;
}

std::shared_ptr<moxSQLDataSourceColumn const> moxSE_Runner::getColumn(unsigned int column) const {
  auto const definition = sqlSource();
  return definition ? definition->columnAt(column) : nullptr;
}

int moxSE_Runner::columnIndex(std::string const& name) const {
  auto const found = columnIndexes_.find(name);
  return found != columnIndexes_.end() ? found->second : -1;
}

double moxSE_Runner::getDouble(int row, int column) const {
  return cells_.value<double>(static_cast<unsigned int>(row), column);
}

datetime_t moxSE_Runner::getDateTime(int row, int column) const {
  return cells_.value<datetime_t>(static_cast<unsigned int>(row), column);
}

std::shared_ptr<moxDataMatrixRow> moxSE_Runner::getRow(int row) const {
  auto cursors = matrix_ ? matrix_->begin() : nullptr;
  return cursors && cursors->goTo(static_cast<unsigned int>(row)) ? cursors : nullptr;
}
