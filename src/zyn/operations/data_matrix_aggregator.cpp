#include "zyn/operations/data_matrix_aggregator.h"

#include <algorithm>
#include <stdexcept>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "zyn/items/polymorphic_list.h"
#include "zyn/matrix/column_copy.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/matrix/temporary_table.h"
#include "zyn/operations/aggregation_run.h"

namespace {

constexpr char const* kIndexes = "Indexes";
constexpr char const* kIndex = "Index";
constexpr char const* kIndexName = "name";
constexpr char const* kFunctions = "Functions";

using Column = std::pair<std::string, moxDataMatrixTypes::Types>;
using Function = DataMatrixAggregator::Function;

template <class T>
void addOnce(std::vector<T>& list, T const& element) {
  if (std::find(list.begin(), list.end(), element) == list.end()) {
    list.push_back(element);
  }
}

std::vector<std::string> indexesIn(moxXMLNode const& node) {
  std::vector<std::string> names;
  auto const list = node.childByIndex(0, kIndexes);
  for (int i = 0; auto const index = list ? list->childByIndex(i, kIndex) : nullptr; ++i) {
    addOnce(names, index->readAttribute(kIndexName));
  }
  return names;
}

/// False when a function refuses its element.
bool functionsIn(moxXMLNode const& node, std::vector<Function>& functions) {
  auto const list = node.childByIndex(0, kFunctions);
  for (int i = 0; auto const element = list ? list->childByIndex(i) : nullptr; ++i) {
    auto const function = moxApp->get<moxAggregationFunction>(element->elementName());
    if (function && !function->load(element)) {
      return false;
    }
    if (function) {
      functions.push_back(function);
    }
  }
  return true;
}

/// The column that a function of one of the families computes.
template <class Family>
bool addTarget(moxAggregationFunction const& function, moxDataMatrixTypes::Types type,
               std::vector<Column>& columns) {
  auto const* const typed = dynamic_cast<Family const*>(&function);
  if (typed != nullptr) {
    columns.emplace_back(typed->getTargetColumn(), type);
  }
  return typed != nullptr;
}

/// What a function of no family says itself.
void addOwnColumns(moxAggregationFunction& function, std::vector<Column>& columns) {
  auto const meta = function.getMetaColumns();
  for (auto const& column : function.columns()) {
    if (column && std::find(meta.begin(), meta.end(), column->getName()) == meta.end()) {
      columns.emplace_back(column->getName(), column->getType());
    }
  }
}

void addColumnsOf(moxAggregationFunction& function, std::vector<Column>& columns) {
  bool const known =
      addTarget<moxIntegralAggregationFunction>(function, moxDataMatrixTypes::Int, columns) ||
      addTarget<moxDoubleAggregationFunction>(function, moxDataMatrixTypes::Double, columns) ||
      addTarget<moxTextAggregationFunction>(function, moxDataMatrixTypes::Text, columns) ||
      addTarget<moxDateAggregationFunction>(function, moxDataMatrixTypes::Date, columns) ||
      addTarget<moxBlobAggregationFunction>(function, moxDataMatrixTypes::Blob, columns);
  if (!known) {
    addOwnColumns(function, columns);
  }
}

}  // namespace

bool DataMatrixAggregator::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->setElementName(name());
  auto const indexes = node->addChild(kIndexes);
  for (auto const& index : indexes_) {
    indexes->addChild(kIndex)->writeAttribute(kIndexName, index);
  }
  polymorphic_list::save(functions_, *node->addChild(kFunctions));
  return true;
}

bool DataMatrixAggregator::load(std::shared_ptr<moxXMLNode> node) {
  std::vector<Function> functions;
  if (!node || !functionsIn(*node, functions)) {
    return false;
  }
  indexes_ = indexesIn(*node);
  functions_ = std::move(functions);
  return true;
}

void DataMatrixAggregator::addFunction(Function function) {
  if (function) {
    addOnce(functions_, function);
  }
}

void DataMatrixAggregator::removeFunction(std::shared_ptr<moxAggregationFunction const> function) {
  std::erase(functions_, function);
}

void DataMatrixAggregator::pushIndexColumn(std::string const& columnName) {
  addOnce(indexes_, columnName);
}

void DataMatrixAggregator::removeIndex(std::string const& columnName) {
  std::erase(indexes_, columnName);
}

std::vector<Column> DataMatrixAggregator::getColumns() const {
  std::vector<Column> columns;
  for (auto const& index : indexes_) {
    columns.emplace_back(index, moxDataMatrixTypes::Int);
  }
  for (auto const& function : functions_) {
    addColumnsOf(*function, columns);
  }
  return columns;
}

std::shared_ptr<moxDataMatrix> DataMatrixAggregator::aggregate(
    std::shared_ptr<moxDataMatrix const> matrix, bool countColumn,
    std::string const& tableName) const {
  if (!matrix) {
    throw std::invalid_argument("an aggregator takes its rows from a matrix");
  }
  auto result = AggregationRun(*matrix, indexes_, functions_).result(countColumn);
  if (tableName.empty()) {
    return result;
  }
  dumpToTemporaryTable(*result, tableName);
  return newMatrix();
}
