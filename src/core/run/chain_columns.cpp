#include "core/run/chain_columns.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <typeinfo>
#include <utility>

#include <fmt/format.h>

#include "core/run/definition_lookup.h"
#include "core/run/filter_value.h"
#include "mox/core/plugin_lookup.h"
#include "mox/zyn/datasources/aggregation_data_source.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/expression_data_source.h"
#include "mox/zyn/datasources/join_data_source.h"
#include "mox/zyn/datasources/pivot_data_source.h"
#include "mox/zyn/datasources/sorter_data_source.h"
#include "mox/zyn/datasources/union_data_source.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"

namespace mox::core {

namespace {

using Type = moxDataMatrixTypes::Types;
using Column = std::shared_ptr<moxDataMatrixColumn>;

constexpr std::size_t kMostProblems = 50;  // who reads more of them mends none

char const* kindText(Type type) {
  constexpr std::array<char const*, 5> kKinds = {"int", "double", "text", "date", "blob"};
  return kKinds.at(static_cast<std::size_t>(type));
}

/// One source, and what it says.
class ColumnCheck {
 public:
  ColumnCheck(VELMORApplication& application, moxDataSource const& source,
              moxDataSourceExecutionContext const& context, std::vector<std::string>& problems)
      : application_(application), source_(source), context_(context), problems_(problems) {}

  void check() {
    if (auto const* const sums = dynamic_cast<moxAggregationDataSource const*>(&source_)) {
      checkAggregation(*sums);
    } else if (auto const* const sorter = dynamic_cast<moxSorterDataSource const*>(&source_)) {
      checkSorter(*sorter);
    } else if (auto const* const all = dynamic_cast<moxUnionDataSource const*>(&source_)) {
      checkUnion(*all);
    } else if (auto const* const joined = dynamic_cast<moxJoinDataSource const*>(&source_)) {
      checkJoin(*joined);
    } else if (auto const* const computed =
                   dynamic_cast<moxExpressionDataSource const*>(&source_)) {
      checkExpressions(*computed);
    } else if (auto const* const pivot = dynamic_cast<moxPivotDataSource const*>(&source_)) {
      checkPivot(*pivot);
    } else {
      return;
    }
    checkNames();
  }

 private:
  template <class... Parts>
  void tell(fmt::format_string<Parts...> sentence, Parts&&... parts) {
    if (problems_.size() < kMostProblems) {
      problems_.push_back("the source " + quotedForMessage(source_.getName()) + " " +
                          fmt::format(sentence, std::forward<Parts>(parts)...));
    }
  }

  /// Empty for one that is not there, which is told, and for a source that has no rows yet.
  Column required(std::string const& deed, std::string const& column, std::string const& input) {
    auto const rows = context_.getDataMatrix(input);
    auto found = rows ? rows->columnByName(column) : nullptr;
    if (rows && !found) {
      tell("{} {}, a column that the rows of {} do not have", deed, quotedForMessage(column),
           quotedForMessage(input));
    }
    return found;
  }

  void checkAggregation(moxAggregationDataSource const& sums) {
    auto const input = sums.getDataSourceName();
    auto const keys = sums.getAggregator()->getIndexes();
    for (auto const& key : keys) {
      required("groups by", key, input);
    }
    auto const functions = sums.getAggregator()->getFunctions();
    auto const columns = sums.getAggregator()->getColumns();
    bool const oneColumnEach = columns.size() == keys.size() + functions.size();
    for (std::size_t i = 0; i < functions.size() && oneColumnEach; ++i) {
      if (auto const function =
              std::dynamic_pointer_cast<moxCommonAggregationFunction>(functions[i])) {
        checkFunction(*function, columns[keys.size() + i].second, input);
      }
    }
  }

  void checkFunction(moxCommonAggregationFunction const& function, Type kind,
                     std::string const& input) {
    checkFigure("computes " + quotedForMessage(function.getTargetColumn()) + " by " +
                    function.name() + " from",
                function.getSourceColumn(), kind, input);
  }

  void checkFigure(std::string const& deed, std::string const& name, Type kind,
                   std::string const& input) {
    auto const column = required(deed, name, input);
    if (column && column->getType() != kind) {
      tell("{} {}, which is {} and not {}", deed, quotedForMessage(name),
           kindText(column->getType()), kindText(kind));
    }
  }

  void checkPivot(moxPivotDataSource const& pivot) {
    for (auto const& [column, function] : pivot.getCellsPivot()) {
      if (auto const kind = kindOf(function)) {
        checkFigure("fills its cells by " + function + " from", column, *kind,
                    pivot.getDataSourceName());
      }
    }
  }

  /// What the function of that name computes with; nothing when nobody has registered it.
  std::optional<Type> kindOf(std::string const& functionName) const {
    auto* const lookup = dynamic_cast<moxPluginLookup*>(&application_);
    auto const found = lookup != nullptr
                           ? lookup->find(functionName, typeid(moxCommonAggregationFunction))
                           : nullptr;
    auto const function = std::dynamic_pointer_cast<moxCommonAggregationFunction>(found);
    if (!function) {
      return {};
    }
    auto const aggregator =
        madeByRegistry<moxDataMatrixAggregator>(application_, "moxDataMatrixAggregator");
    aggregator->addFunction(function);
    auto const columns = aggregator->getColumns();
    return columns.size() == 1 ? std::optional(columns.front().second) : std::nullopt;
  }

  void checkSorter(moxSorterDataSource const& sorter) {
    auto const* const deed = sorter.getUserDefined() ? "offers to sort by" : "sorts by";
    for (auto const& column : sorter.getOrderColumns()) {
      required(deed, column.name, sorter.getDataSourceName());
    }
  }

  void checkUnion(moxUnionDataSource const& all) {
    auto const sources = all.getSources();
    if (sources.empty()) {
      tell("names no source whose rows it reads");
    }
    for (auto const& united : sources) {
      for (auto const& [column, kind] : united.columns) {
        checkKind(united.sourceName, column, kind);
      }
      if (united.columns.size() != sources.front().columns.size()) {
        tell("takes {} columns of {}, and {} of {}, which comes first", united.columns.size(),
             quotedForMessage(united.sourceName), sources.front().columns.size(),
             quotedForMessage(sources.front().sourceName));
      }
    }
  }

  void checkJoin(moxJoinDataSource const& joined) {
    auto const sources = joined.getSources();
    if (sources.empty()) {
      tell("names no source whose rows it reads");
    }
    for (auto const& source : sources) {
      for (auto const& column : source.columns) {
        checkKind(source.sourceName, column.columnName, column.type);
      }
    }
  }

  /// What the definition says counts for those who ask it without a run.
  void checkKind(std::string const& input, std::string const& name, Type declared) {
    auto const column = required("takes", name, input);
    if (column && column->getType() != declared) {
      tell("takes {} of {} as {}, and it is {}", quotedForMessage(name), quotedForMessage(input),
           kindText(declared), kindText(column->getType()));
    }
  }

  /// The computed columns have entered the rows that they are computed from.
  void checkExpressions(moxExpressionDataSource const& computed) {
    auto const input = computed.getSource();
    auto const rows = context_.getDataMatrix(input);
    auto const own = computed.getColumns();
    for (auto const& computedColumn : own) {
      auto const& name = computedColumn.first;
      auto const isNamed = [&](auto const& column) { return column.first == name; };
      if (rows && columnsCalled(name, *rows) > std::count_if(own.begin(), own.end(), isNamed)) {
        tell("computes {}, a name that the rows of {} had already, and by which the first is found",
             quotedForMessage(name), quotedForMessage(input));
      }
    }
  }

  static int columnsCalled(std::string const& name, moxDataMatrix const& rows) {
    int count = 0;
    for (unsigned int place = 0; place < rows.columnCount(); ++place) {
      count += rows.columnAt(place)->getName() == name ? 1 : 0;
    }
    return count;
  }

  void checkNames() {
    std::set<std::string> names;
    std::set<std::string> told;
    for (auto const& [name, kind] : source_.getColumns()) {
      if (!names.insert(name).second && told.insert(name).second) {
        tell("has several columns called {}, of which the first is found", quotedForMessage(name));
      }
    }
    if (names.contains("")) {
      tell("has a column without a name");
    }
  }

  VELMORApplication& application_;
  moxDataSource const& source_;
  moxDataSourceExecutionContext const& context_;
  std::vector<std::string>& problems_;
};

}  // namespace

std::vector<std::string> columnProblems(
    VELMORApplication& application,
    std::vector<std::shared_ptr<moxDataSource const>> const& sources,
    moxDataSourceExecutionContext const& context) {
  std::vector<std::string> problems;
  for (auto const& source : sources) {
    ColumnCheck(application, *source, context, problems).check();
  }
  return problems;
}

}  // namespace mox::core
