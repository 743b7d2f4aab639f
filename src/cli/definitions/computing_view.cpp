#include "cli/definitions/computing_view.h"

#include <array>

#include "mox/zyn/datasources/aggregation_data_source.h"
#include "mox/zyn/datasources/expression_data_source.h"
#include "mox/zyn/datasources/join_data_source.h"
#include "mox/zyn/datasources/object_data_source.h"
#include "mox/zyn/datasources/pivot_data_source.h"
#include "mox/zyn/datasources/sorter_data_source.h"
#include "mox/zyn/datasources/union_data_source.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"

namespace mox::cli {

namespace {

ComputingView reading(char const* operation, std::string const& source) {
  ComputingView view;
  view.operation = operation;
  view.inputs.push_back({.source = source, .columns = {}, .meetings = {}});
  return view;
}

FunctionView functionView(moxAggregationFunction const& function) {
  auto const* const common = dynamic_cast<moxCommonAggregationFunction const*>(&function);
  return {.kind = function.name(),
          .source = common != nullptr ? common->getSourceColumn() : "",
          .target = common != nullptr ? common->getTargetColumn() : ""};
}

ComputingView viewOf(moxAggregationDataSource const& source) {
  auto view = reading("aggregation", source.getDataSourceName());
  auto const aggregator = source.getAggregator();
  view.keys = aggregator->getIndexes();
  for (auto const& function : aggregator->getFunctions()) {
    view.functions.push_back(functionView(*function));
  }
  view.countsRows = source.getCountColumn();
  view.temporaryTable = source.getGerarTabelaTemporaria();
  return view;
}

std::string directionOf(moxSorterDataSource::ColumnInfo::SortMode mode) {
  using Info = moxSorterDataSource::ColumnInfo;
  if (mode == Info::kSemDirecao) {
    return {};
  }
  return mode == Info::kDecrescente ? "descending" : "ascending";
}

std::string headingOf(moxSorterDataSource const& source) {
  auto const options = source.options();
  return options.empty() ? std::string() : options.front()->getName();
}

ComputingView viewOf(moxSorterDataSource const& source) {
  auto view = reading("sorter", source.getDataSourceName());
  view.userSorts = source.getUserDefined();
  view.heading = headingOf(source);
  bool defaultIsKnown = !view.userSorts;
  for (auto const& column : source.getOrderColumns()) {
    auto const direction = directionOf(column.mode);
    bool const isDefault = !defaultIsKnown && !direction.empty();
    defaultIsKnown = defaultIsKnown || isDefault;
    view.order.push_back({column.name, column.description, direction, isDefault});
  }
  return view;
}

ComputingView viewOf(moxObjectDataSource const& source) {
  ComputingView view;
  view.operation = "object";
  view.statement = source.getSQL();
  return view;
}

ComputingView viewOf(moxUnionDataSource const& source) {
  ComputingView view;
  view.operation = "union";
  view.temporaryTable = source.getGerarTabelaTemporaria();
  for (auto const& input : source.getSources()) {
    InputView shown{.source = input.sourceName, .columns = {}, .meetings = {}};
    for (auto const& [name, type] : input.columns) {
      shown.columns.push_back({.name = name, .alias = {}, .type = typeWord(type)});
    }
    view.inputs.push_back(std::move(shown));
  }
  return view;
}

ExpressionView expressionView(moxColumnExpression const& expression) {
  auto const [decimals, operation] = expression.getDecimalPrecision();
  return {.column = expression.columnName(),
          .expression = expression.getExpression(),
          .type = expression.tipo() == moxColumnExpression::kInteiro ? "int" : "double",
          .decimals = decimals,
          .isCut = operation != moxColumnExpression::kArredonda};
}

ComputingView viewOf(moxExpressionDataSource const& source) {
  auto view = reading("expression", source.getSource());
  for (auto const& expression : source.expressions().get()) {
    view.expressions.push_back(expressionView(*expression));
  }
  view.zeroIsNull = source.getConvertZeroToNull();
  return view;
}

std::vector<PivotColumnView> pivotColumns(std::vector<moxPivotDataSource::Pair> const& pairs) {
  std::vector<PivotColumnView> columns;
  columns.reserve(pairs.size());
  for (auto const& [column, means] : pairs) {
    columns.push_back({column, means});
  }
  return columns;
}

ComputingView viewOf(moxPivotDataSource const& source) {
  auto view = reading("pivot", source.getDataSourceName());
  view.rows = source.getRowsPivot();
  view.across = pivotColumns(source.getColumnsPivot());
  view.cells = pivotColumns(source.getCellsPivot());
  return view;
}

ComputingView viewOf(moxJoinDataSource const& source) {
  ComputingView view;
  view.operation = "join";
  for (auto const& input : source.getSources()) {
    InputView shown{.source = input.sourceName, .columns = {}, .meetings = {}};
    for (auto const& column : input.columns) {
      shown.columns.push_back({column.columnName, column.columnAlias, typeWord(column.type)});
    }
    for (auto const& join : input.joins) {
      shown.meetings.push_back({join.columnNameOrigin, join.columnNameJoin});
    }
    view.inputs.push_back(std::move(shown));
  }
  return view;
}

/// Takes the view of the source if it is of that kind and none was taken before.
template <class Kind>
void take(std::optional<ComputingView>& view, moxDataSource const& source) {
  if (auto const* const known = dynamic_cast<Kind const*>(&source); known != nullptr && !view) {
    view = viewOf(*known);
  }
}

}  // namespace

std::string typeWord(moxDataMatrixTypes::Types type) {
  constexpr std::array kWords = {"int", "double", "text", "date", "blob"};
  auto const index = static_cast<std::size_t>(type);
  return index < kWords.size() ? kWords[index] : std::to_string(index);
}

std::optional<ComputingView> computingView(moxDataSource const& source) {
  std::optional<ComputingView> view;
  take<moxAggregationDataSource>(view, source);
  take<moxSorterDataSource>(view, source);
  take<moxObjectDataSource>(view, source);
  take<moxUnionDataSource>(view, source);
  take<moxExpressionDataSource>(view, source);
  take<moxPivotDataSource>(view, source);
  take<moxJoinDataSource>(view, source);
  return view;
}

}  // namespace mox::cli
