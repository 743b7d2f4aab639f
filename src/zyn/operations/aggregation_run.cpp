#include "zyn/operations/aggregation_run.h"

#include <algorithm>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "zyn/frame/registered.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/grouped_aggregation.h"
#include "zyn/operations/operation_errors.h"
#include "zyn/operations/row_grouping.h"

namespace {

using Function = std::shared_ptr<moxAggregationFunction>;

/// The first column of that name, to be read. Cursors are only had from a column that may change.
MatrixColumn readable(moxDataMatrix const& matrix, std::string const& name) {
  return std::const_pointer_cast<moxDataMatrixColumn>(matrix.columnByName(name));
}

/// Carries over all that a function of another library keeps in XML, of which only that library
/// knows.
void copySettings(moxAggregationFunction const& from, moxAggregationFunction& to) {
  auto const document = moxApp->get<moxXMLDocument>("moxXMLDocument");
  document->create(from.name());
  if (from.save(document->root())) {
    to.load(document->root());
  }
}

/// A new function that computes the same; the function itself when nobody registered its class.
Function forOneRun(Function const& function) {
  auto copy = registeredOrNone<moxAggregationFunction>(function->name());
  if (!copy) {
    return function;
  }
  auto const* const from = dynamic_cast<moxCommonAggregationFunction const*>(function.get());
  auto* const to = dynamic_cast<moxCommonAggregationFunction*>(copy.get());
  if (dynamic_cast<GroupedAggregation const*>(function.get()) == nullptr) {
    copySettings(*function, *copy);
  }
  if (from != nullptr && to != nullptr) {
    to->setSourceColumn(from->getSourceColumn());
    to->setTargetColumn(from->getTargetColumn());
  }
  return copy;
}

void addNulls(moxDataMatrixColumn& column, std::uint32_t rows) {
  bool const own = withStorage(column, [&](auto& storage) { appendNulls(storage, rows); });
  for (std::uint32_t row = 0; !own && row < rows; ++row) {
    column.appendNull();
  }
}

}  // namespace

AggregationRun::AggregationRun(moxDataMatrix const& matrix, std::vector<std::string> const& indexes,
                               Functions const& functions)
    : matrix_(matrix), rows_(matrix.rowCount()) {
  for (auto const& index : indexes) {
    if (auto const column = readable(matrix, index)) {
      keys_.push_back(asOwn(column, rows_));
    }
  }
  for (auto const& function : functions) {
    steps_.push_back(stepFor(forOneRun(function)));
  }
}

AggregationRun::Step AggregationRun::stepFor(Function const& function) const {
  Step step;
  step.function = function;
  auto* const grouped = dynamic_cast<GroupedAggregation*>(function.get());
  auto const* const common = dynamic_cast<moxCommonAggregationFunction const*>(function.get());
  if (grouped == nullptr || common == nullptr) {
    return step;
  }
  step.grouped = grouped;
  if (auto const source = readable(matrix_, common->getSourceColumn())) {
    step.source = asOwn(source, rows_);
    step.total = grouped->totalOf(*step.source);
  }
  return step;
}

std::shared_ptr<moxDataMatrix> AggregationRun::result(bool countColumn) {
  auto made = newMatrix();
  if (rows_ == 0) {
    emptyResult(*made);
    return made;
  }
  group(countColumn);
  refuseTooManyRows(groups_.firstRow.size());
  RowOrder const firstRows(groups_.firstRow.begin(), groups_.firstRow.end());
  for (auto const& key : keys_) {
    made->addColumn(gathered(key, firstRows));
  }
  std::vector<Step const*> rowByRow;
  for (auto& step : steps_) {
    addFunctionColumns(*made, step, static_cast<std::uint32_t>(groups_.firstRow.size()));
    if (!computeAtOnce(step)) {
      rowByRow.push_back(&step);
    }
  }
  computeRowByRow(rowByRow);
  if (countColumn) {
    made->addColumn(rowCounts());
  }
  for (auto const& step : steps_) {
    step.function->posProcess(made);
  }
  return made;
}

void AggregationRun::group(bool countColumn) {
  for (auto const& step : steps_) {
    if (step.total) {
      totals_.ask(step.source, *step.total);
    }
  }
  if (countColumn) {
    totals_.askRows();
  }
  if (!needsGroupOfRow()) {
    groups_.firstRow = groupRows(keys_, rows_, totals_);
    return;
  }
  GroupKeeper keeper(totals_);
  groups_.firstRow = groupRows(keys_, rows_, keeper);
  groups_.groupOfRow = keeper.takeRows();
}

/// For functions of other than numbers, and those of other libraries.
bool AggregationRun::needsGroupOfRow() const {
  return std::any_of(steps_.begin(), steps_.end(), [](Step const& step) {
    return step.grouped == nullptr || (step.source && !step.total);
  });
}

void AggregationRun::emptyResult(moxDataMatrix& made) {
  for (auto const& key : keys_) {
    made.addColumn(emptyLike(*key));
  }
  for (auto& step : steps_) {
    addFunctionColumns(made, step, 0);
  }
}

/// What is computed of prices looks like a price: the first column of one of our own functions. The
/// others are for the function itself.
void AggregationRun::addFunctionColumns(moxDataMatrix& made, Step& step, std::uint32_t groups) {
  for (auto const& column : step.function->columns()) {
    if (!column) {
      continue;
    }
    addNulls(*column, groups);
    if (step.source && step.targets.empty() && column->getType() == step.source->getType()) {
      column->setFormatter(step.source->getFormatter());
    }
    step.targets.push_back(column->begin());
    made.addColumn(column);
  }
  step.function->setIterators(step.targets);
}

/// False for a function of another library.
bool AggregationRun::computeAtOnce(Step const& step) const {
  if (step.total) {
    step.grouped->writeTotals(step.source, totals_);
  } else if (step.source) {
    step.grouped->computeGroups(*step.source, groups_);
  }
  return step.grouped != nullptr;
}

MatrixColumn AggregationRun::rowCounts() const {
  auto column = makeColumn(moxDataMatrixTypes::Int);
  column->setName("data_count");
  totals_.writeRows(*column);
  return column;
}

void AggregationRun::computeRowByRow(std::vector<Step const*> const& steps) const {
  if (steps.empty()) {
    return;
  }
  auto const input = matrix_.begin();
  for (std::uint32_t row = 0; row < rows_; ++row, input->next()) {
    for (auto const* const step : steps) {
      for (auto const& target : step->targets) {
        target->goTo(groups_.groupOfRow[row]);
      }
      step->function->compute(input);
    }
  }
}
