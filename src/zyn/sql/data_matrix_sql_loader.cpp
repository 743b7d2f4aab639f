#include "zyn/sql/data_matrix_sql_loader.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "zyn/frame/current_user.h"
#include "zyn/sql/block_fetch.h"
#include "zyn/sql/filtro_unidade_null.h"
#include "zyn/sql/value_recorder.h"

namespace {

using Filter = DataMatrixSQLLoader::Filter;
using FieldType = moxDatabaseConnection::FieldType;
using Columns = std::vector<std::shared_ptr<moxDataMatrixColumn>>;

// Statements written for the head office alone name their unit column so.
constexpr char const* kHeadOfficeColumn = "id_unidadematriz";

// A database may guess its row count; beyond this the growth of the columns is cheaper than
// believing it.
constexpr std::int64_t kLargestReserve = 1'000'000;

[[noreturn]] void fail(char const* message) {
  throw moxDefaultErrorImpl<moxError>(message);
}

/// A user who works by units never gets a statement without them: it would be taken for "no rows".
void requireUnits(std::vector<int> const& units, int matrixUnit) {
  auto const user = currentUser();
  if (!user || !user->worksByUnits()) {
    return;
  }
  if (units.empty()) {
    fail("Não foram identificadas unidades para processamento");
  }
  if (matrixUnit == 0) {
    fail("Não foi identificado a unidade matriz para processamento");
  }
}

/// An empty pointer is a mistake of the program, and leaving it out would widen the result unseen.
void requireFilter(Filter const& filter) {
  if (!filter) {
    throw std::invalid_argument("a filter of the loader must not be empty");
  }
}

void eraseFirst(std::vector<Filter>& filters, Filter const& filter) {
  auto const found = std::find(filters.begin(), filters.end(), filter);
  if (found != filters.end()) {
    filters.erase(found);
  }
}

bool isExclusion(moxDataMatrixSQLFilter const& filter) {
  auto const* const inFilter = dynamic_cast<moxDataMatrixSQLIntegerInFilter const*>(&filter);
  return inFilter != nullptr && inFilter->getNot();
}

ColumnReference testedColumn(moxDataMatrixSQLFilter const& filter) {
  return {filter.getTableName(), filter.getColumnName()};
}

/// The condition of each filter, some of them empty.
std::vector<std::string> conditionsOf(std::vector<Filter> const& filters) {
  std::vector<std::string> conditions;
  conditions.reserve(filters.size());
  for (auto const& filter : filters) {
    conditions.push_back(filter->getSql());
  }
  return conditions;
}

/// The class of column for a kind of field; null for a kind that no column holds.
char const* columnClassFor(FieldType type) {
  switch (type) {
    case FieldType::kText:
      return "moxDataMatrixTextColumn";
    case FieldType::kInt:
      return "moxDataMatrixIntColumn";
    case FieldType::kBlob:
      return "moxDataMatrixBlobColumn";
    case FieldType::kDouble:
      return "moxDataMatrixDoubleColumn";
    case FieldType::kDate:
      return "moxDataMatrixDateColumn";
  }
  return nullptr;
}

std::shared_ptr<moxDataMatrixColumn> makeColumnFor(moxDatabaseConnection::FieldInfo const& field) {
  char const* const className = columnClassFor(field.type);
  if (className == nullptr) {
    return {};
  }
  auto column = moxApp->get<moxDataMatrixColumn>(className);
  column->setName(field.name);
  return column;
}

/// A target column a field, empty where the field is left out. A matrix without columns is given
/// one a field; all of them at once, so that a failure leaves it as it was.
Columns targetColumns(moxDatabaseConnection::PreparedStatement const& statement,
                      moxDataMatrix& matrix) {
  bool const hasLayout = matrix.columnCount() > 0;
  Columns columns;
  for (int i = 0; i < statement.fieldCount(); ++i) {
    auto const& field = statement.field(i);
    columns.push_back(hasLayout ? matrix.columnByName(field.name) : makeColumnFor(field));
  }
  if (!hasLayout) {
    for (auto const& column : columns) {
      matrix.addColumn(column);
    }
  }
  return columns;
}

std::size_t rowsToReserve(moxDatabaseConnection::PreparedStatement const& statement) {
  auto const rows = statement.rowCount();
  return rows > 0 && rows <= kLargestReserve ? static_cast<std::size_t>(rows) : 0;
}

}  // namespace

void DataMatrixSQLLoader::setSql(std::string const& sql,
                                 std::pair<std::string, std::string> const& unitColumn,
                                 std::string const& whereWord, bool unitMayBeNull) {
  setSql(sql, "", "", unitColumn, whereWord, unitMayBeNull);
}

void DataMatrixSQLLoader::setSql(std::string const& sql, std::string const& beforeWhere,
                                 std::string const& afterWhere,
                                 std::pair<std::string, std::string> const& unitColumn,
                                 std::string const& whereWord, bool unitMayBeNull) {
  select_.setText(sql, beforeWhere, afterWhere, whereWord);
  unitColumn_ = {unitColumn.first, unitColumn.second};
  unitMayBeNull_ = unitMayBeNull;
  rebuildFetchers_ = true;
}

void DataMatrixSQLLoader::setPrefixSufix(std::string const& prefix, std::string const& sufix) {
  select_.setPrefixSuffix(prefix, sufix);
}

void DataMatrixSQLLoader::resetFilters() {
  filters_.clear();
  parameters_.clear();
}

void DataMatrixSQLLoader::addFilter(Filter filter) {
  requireFilter(filter);
  if (std::find(filters_.begin(), filters_.end(), filter) == filters_.end()) {
    filters_.push_back(std::move(filter));
  }
}

void DataMatrixSQLLoader::removeFilter(Filter filter) {
  eraseFirst(filters_, filter);
}

void DataMatrixSQLLoader::addParameter(Filter parameter) {
  requireFilter(parameter);
  parameters_.push_back(std::move(parameter));
}

void DataMatrixSQLLoader::removeParameter(Filter parameter) {
  eraseFirst(parameters_, parameter);
}

void DataMatrixSQLLoader::setDataMatrix(std::shared_ptr<moxDataMatrix> matrix) {
  matrix_ = std::move(matrix);
  rebuildFetchers_ = true;
}

bool DataMatrixSQLLoader::addOrderColumn(std::string const& table, std::string const& column,
                                         bool descending) {
  return select_.addOrderColumn({table, column}, descending);
}

void DataMatrixSQLLoader::execute() {
  auto const user = currentUser();
  if (!user) {
    execute({}, 0);
    return;
  }
  execute({user->defaultUnit()}, user->headOfficeUnit());
}

void DataMatrixSQLLoader::execute(std::vector<int> units, int matrixUnit) {
  if (auto const unitFilter = missingUnitFilter(units, matrixUnit)) {
    addFilter(unitFilter);
  }
  auto const statement = prepare();
  bindFilters(statement);
  statement->execute();
  initFetchColumns(*statement);
  fetchRows(statement);
}

moxComposedSelect DataMatrixSQLLoader::compose(std::vector<int> const& units,
                                               int matrixUnit) const {
  auto filters = filters_;
  if (auto const unitFilter = missingUnitFilter(units, matrixUnit)) {
    filters.push_back(unitFilter);
  }
  auto const conditions = conditionsOf(filters);
  moxComposedSelect composed{select_.compose(conditions), {}, {}};
  for (auto const& parameter : parameters_) {
    composed.parameters.push_back({parameter, {}, valuesOf(*parameter)});
  }
  for (std::size_t i = 0; i < filters.size(); ++i) {
    composed.conditions.push_back({filters[i], conditions[i], valuesOf(*filters[i])});
  }
  return composed;
}

/// Only which column is filtered counts, not how far: a caller who names the unit column takes
/// charge of it. Leaving units out is no such charge.
bool DataMatrixSQLLoader::callerRestrictedUnits() const {
  return std::any_of(filters_.begin(), filters_.end(), [this](Filter const& filter) {
    return testedColumn(*filter) == unitColumn_ && !isExclusion(*filter);
  });
}

/// The condition on the unit column that must join the filters before the statement may run; empty
/// when nothing is missing. All that can be refused without the database is refused here.
DataMatrixSQLLoader::Filter DataMatrixSQLLoader::missingUnitFilter(std::vector<int> const& units,
                                                                   int matrixUnit) const {
  if (!matrix_) {
    throw std::logic_error("a loader needs a matrix before it is executed");
  }
  if (unitColumn_.column.empty()) {
    return {};
  }
  requireUnits(units, matrixUnit);
  if (callerRestrictedUnits()) {
    return {};
  }
  return makeUnitFilter(units, matrixUnit);
}

DataMatrixSQLLoader::Filter DataMatrixSQLLoader::makeUnitFilter(std::vector<int> const& units,
                                                                int matrixUnit) const {
  auto filter = std::make_shared<FiltroUnidadeNull>(unitColumn_, unitMayBeNull_);
  if (unitColumn_.column == kHeadOfficeColumn) {
    filter->pushVal(matrixUnit);
    return filter;
  }
  for (int const unit : units) {
    filter->pushVal(unit);
  }
  return filter;
}

DataMatrixSQLLoader::Statement DataMatrixSQLLoader::prepare() const {
  auto& connection = connection_ != nullptr ? *connection_ : moxApp->databaseConnection();
  return connection.prepare(select_.compose(conditionsOf(filters_)), "", "where");
}

/// Parameters go first, as their marks stand in the earlier part of the text.
void DataMatrixSQLLoader::bindFilters(Statement const& statement) const {
  int counter = 0;
  for (auto const& parameter : parameters_) {
    parameter->bind(statement, &counter);
  }
  for (auto const& filter : filters_) {
    filter->bind(statement, &counter);
  }
}

void DataMatrixSQLLoader::initFetchColumns(
    moxDatabaseConnection::PreparedStatement const& statement) {
  // A table that was altered between two executions gives another number of fields.
  bool const sameFields = fetchers_.size() == static_cast<std::size_t>(statement.fieldCount());
  if (!rebuildFetchers_ && sameFields) {
    return;
  }
  fetchers_.clear();
  for (auto const& column : targetColumns(statement, *matrix_)) {
    fetchers_.push_back(makeFetchHelper(static_cast<int>(fetchers_.size()), column));
  }
  rebuildFetchers_ = false;
}

void DataMatrixSQLLoader::fetchRows(Statement const& statement) const {
  matrix_->clearData();
  if (statement->fieldCount() == 0) {  // an insert, say: there is nothing to fetch, not even an end
    return;
  }
  auto const expectedRows = rowsToReserve(*statement);
  if (expectedRows > 0) {
    matrix_->reserve(static_cast<unsigned int>(expectedRows));
  }
  Columns columns;
  for (auto const& fetcher : fetchers_) {
    columns.push_back(fetcher->target());
  }
  if (fetchByBlocks(*statement, columns, expectedRows)) {
    return;
  }
  while (statement->fetch()) {
    for (auto const& fetcher : fetchers_) {
      fetcher->fetch(statement);
    }
  }
}
