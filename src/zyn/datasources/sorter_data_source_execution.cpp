#include "zyn/datasources/sorter_data_source_execution.h"

#include <vector>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"

namespace {

using ColumnInfo = moxSorterDataSource::ColumnInfo;
using Sorter = std::shared_ptr<moxDataMatrixSorter>;
using Answers = std::vector<std::shared_ptr<moxDataSourceOptionData const>>;

Sorter newSorter() {
  return moxApp->get<moxDataMatrixSorter>("moxDataMatrixSorter");
}

void push(ColumnInfo const& column, moxDataMatrixSorter& sorter) {
  sorter.pushSortColumn(column.name, column.mode == ColumnInfo::kDecrescente);
}

Sorter byAllColumns(SorterDataSource const& definition) {
  auto sorter = newSorter();
  for (auto const& column : definition.orderColumns()) {
    push(column, *sorter);
  }
  return sorter;
}

Sorter byDefault(SorterDataSource const& definition) {
  auto sorter = newSorter();
  if (auto const* const column = definition.defaultOrder()) {
    push(*column, *sorter);
  }
  return sorter;
}

/// Empty when none of the answers is an order.
Sorter byAnswers(Answers const& answers) {
  Sorter sorter;
  for (auto const& answer : answers) {
    auto const* const chosen = dynamic_cast<moxSorterDataSourceOptionData const*>(answer.get());
    if (chosen == nullptr) {
      continue;
    }
    if (!sorter) {
      sorter = newSorter();
    }
    auto const [column, descending] = chosen->getOrder();
    sorter->pushSortColumn(column, descending);
  }
  return sorter;
}

Sorter sorterFor(SorterDataSource const& definition, Answers const& answers) {
  return answers.empty() ? byDefault(definition) : byAnswers(answers);
}

}  // namespace

bool SorterDataSourceExecution::generateDataMatrix(
    std::shared_ptr<moxDataSourceExecutionContext> context, std::string const& targetName) const {
  auto const matrix = input(*context, definition().getDataSourceName());
  if (!matrix) {
    return false;
  }
  auto const target = resultName(targetName);
  auto const sorter = definition().getUserDefined()
                          ? sorterFor(definition(), context->getDataSourceOptions(target))
                          : byAllColumns(definition());
  if (!sorter) {
    throw moxDefaultErrorImpl<moxError>(
        "Impossível criar ordenador " + definition().getName(),
        {"none of the answers given for \"" + target + "\" is an order of rows"});
  }
  return context->registerDataMatrix(target, sorter->transform(matrix));
}
