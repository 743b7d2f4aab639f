#include "core/run/chain.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "core/run/filter_value.h"
#include "mox/zyn/datasources/aggregation_data_source.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/expression_data_source.h"
#include "mox/zyn/datasources/join_data_source.h"
#include "mox/zyn/datasources/object_data_source.h"
#include "mox/zyn/datasources/pivot_data_source.h"
#include "mox/zyn/datasources/sorter_data_source.h"
#include "mox/zyn/datasources/union_data_source.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"

namespace mox::core {

namespace {

using Names = std::vector<std::string>;

constexpr std::size_t kMostNamed = 8;  // who wants them all asks for the definition

std::string listed(Names const& names) {
  auto const shown = std::min(names.size(), kMostNamed);
  auto const text =
      fmt::format("{}", fmt::join(names.begin(), names.begin() + static_cast<long>(shown), ", "));
  return shown == names.size() ? text : fmt::format("{} and {} more", text, names.size() - shown);
}

/// The rest of a sentence, where there is something to name.
std::string behind(char const* words, Names const& names) {
  return names.empty() ? std::string() : words + listed(names);
}

/// Calls `tell` with the definition as the interface of its kind. What `tell` gives for none of
/// them is its result for the plain interface.
template <class Tell>
auto visitKind(moxDataSource const& source, Tell const& tell) {
  if (auto const* const sums = dynamic_cast<moxAggregationDataSource const*>(&source)) {
    return tell(*sums);
  }
  if (auto const* const sorter = dynamic_cast<moxSorterDataSource const*>(&source)) {
    return tell(*sorter);
  }
  if (auto const* const object = dynamic_cast<moxObjectDataSource const*>(&source)) {
    return tell(*object);
  }
  if (auto const* const all = dynamic_cast<moxUnionDataSource const*>(&source)) {
    return tell(*all);
  }
  if (auto const* const computed = dynamic_cast<moxExpressionDataSource const*>(&source)) {
    return tell(*computed);
  }
  if (auto const* const pivot = dynamic_cast<moxPivotDataSource const*>(&source)) {
    return tell(*pivot);
  }
  if (auto const* const join = dynamic_cast<moxJoinDataSource const*>(&source)) {
    return tell(*join);
  }
  return tell(source);
}

/// One overload a kind of source.
struct InputNames {
  Names operator()(moxAggregationDataSource const& source) const {
    return {source.getDataSourceName()};
  }
  Names operator()(moxSorterDataSource const& source) const { return {source.getDataSourceName()}; }
  Names operator()(moxExpressionDataSource const& source) const { return {source.getSource()}; }
  Names operator()(moxPivotDataSource const& source) const { return {source.getDataSourceName()}; }
  Names operator()(moxUnionDataSource const& source) const { return namesOf(source.getSources()); }
  Names operator()(moxJoinDataSource const& source) const { return namesOf(source.getSources()); }
  Names operator()(moxDataSource const& /*source*/) const { return {}; }

 private:
  template <class Input>
  static Names namesOf(std::vector<Input> const& inputs) {
    Names names;
    for (auto const& input : inputs) {
      if (std::find(names.begin(), names.end(), input.sourceName) == names.end()) {
        names.push_back(input.sourceName);
      }
    }
    return names;
  }
};

/// Likewise.
struct Deeds {
  std::string operator()(moxAggregationDataSource const& source) const {
    auto const functions = source.getAggregator()->getFunctions();
    Names targets;
    targets.reserve(functions.size());
    for (auto const& function : functions) {
      auto const common = std::dynamic_pointer_cast<moxCommonAggregationFunction>(function);
      targets.push_back(common ? common->getTargetColumn() : function->name());
    }
    auto const keys = source.getAggregator()->getIndexes();
    return (keys.empty() ? "puts all rows into one group" : "groups by " + listed(keys)) +
           behind(", computes ", targets);
  }

  std::string operator()(moxSorterDataSource const& source) const {
    return source.getUserDefined() ? userOrder(source) : fixedOrder(source);
  }

  std::string operator()(moxObjectDataSource const& /*source*/) const {
    return "runs a statement that gives no rows";
  }

  std::string operator()(moxUnionDataSource const& /*source*/) const {
    return "puts the rows one below the other";
  }

  std::string operator()(moxExpressionDataSource const& source) const {
    auto const expressions = source.expressions().get();
    Names columns;
    columns.reserve(expressions.size());
    for (auto const& expression : expressions) {
      columns.push_back(expression->columnName());
    }
    return columns.empty() ? "computes nothing" : "computes " + listed(columns);
  }

  std::string operator()(moxPivotDataSource const& source) const {
    auto const spread = source.getColumnsPivot();
    Names across;
    across.reserve(spread.size());
    for (auto const& [column, formatter] : spread) {
      across.push_back(column);
    }
    return "makes a cross table" + behind(" of rows by ", source.getRowsPivot()) +
           behind(", columns by ", across);
  }

  std::string operator()(moxJoinDataSource const& /*source*/) const { return "joins the rows"; }

  std::string operator()(moxDataSource const& /*source*/) const { return {}; }

 private:
  static std::string directed(std::string const& column, bool descending) {
    return column + (descending ? ", descending" : "");
  }

  static std::string userOrder(moxSorterDataSource const& source) {
    for (auto const& column : source.getOrderColumns()) {
      if (column.mode != moxSorterDataSource::ColumnInfo::kSemDirecao) {
        bool const descending = column.mode == moxSorterDataSource::ColumnInfo::kDecrescente;
        return "sorts by " + directed(column.name, descending) + ", unless its user says otherwise";
      }
    }
    return "leaves the order as it is, unless its user says otherwise";
  }

  static std::string fixedOrder(moxSorterDataSource const& source) {
    std::string text;
    for (auto const& column : source.getOrderColumns()) {
      bool const descending = column.mode == moxSorterDataSource::ColumnInfo::kDecrescente;
      text += (text.empty() ? "sorts by " : ", then ") + directed(column.name, descending);
    }
    return text.empty() ? "leaves the order as it is" : text;
  }
};

std::string problemOf(moxDataSource const& source, std::string const& input,
                      std::vector<std::shared_ptr<moxDataSource const>> const& sources) {
  auto const sentence = "the source " + quotedForMessage(source.getName());
  if (input.empty()) {
    return sentence + " names no source whose rows it reads";
  }
  auto const found = std::find_if(sources.begin(), sources.end(), [&](auto const& candidate) {
    return candidate->getName() == input;
  });
  if (found == sources.end()) {
    return sentence + " reads " + quotedForMessage(input) +
           ", which is no source that this session finds";
  }
  return changesData(**found)
             ? sentence + " reads " + quotedForMessage(input) + ", which gives no rows"
             : std::string();
}

}  // namespace

std::vector<std::string> inputNamesOf(moxDataSource const& source) {
  return visitKind(source, InputNames());
}

std::string whatItDoes(moxDataSource const& source) {
  return visitKind(source, Deeds());
}

bool changesData(moxDataSource const& source) {
  return dynamic_cast<moxObjectDataSource const*>(&source) != nullptr;
}

std::vector<std::string> chainProblems(
    std::vector<std::shared_ptr<moxDataSource const>> const& sources) {
  std::vector<std::string> problems;
  for (auto const& source : sources) {
    for (auto const& input : inputNamesOf(*source)) {
      auto problem = problemOf(*source, input, sources);
      if (!problem.empty()) {
        problems.push_back(std::move(problem));
      }
    }
  }
  return problems;
}

}  // namespace mox::core
