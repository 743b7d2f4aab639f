#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/promise.h"
#include "fuzz/targets.h"
#include "mox/core/date.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/run_report.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_utils.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/test_host.h"

namespace mox::fuzz {

namespace {

using Collection = std::shared_ptr<moxZYNCollection>;
using Filter = std::shared_ptr<moxDataMatrixSQLFilter>;

/// Empty when the text is refused.
Collection loaded(TestHost& host, std::string const& text) {
  auto const collection = host.get<moxZYNCollection>("moxZYNCollection");
  auto const xml = host.get<moxXMLDocument>("moxXMLDocument");
  bool const isTaken = accepted([&] {
    xml->loadText(text);
    collection->unserialize(xml->root());
  });
  return isTaken ? collection : nullptr;
}

std::string saved(TestHost& host, Collection const& collection) {
  auto const blob = host.get<moxZYNUtils>("moxZYNUtils")->getPlainData(collection, false);
  return {blob->data(), blob->size()};
}

std::vector<std::shared_ptr<moxDataSource const>> sourcesOf(Collection const& collection) {
  std::vector<std::shared_ptr<moxDataSource const>> sources;
  for (auto const& item : collection->items().get()) {
    if (auto source = std::dynamic_pointer_cast<moxDataSource const>(item)) {
      sources.push_back(std::move(source));
    }
  }
  return sources;
}

/// What screens and editors ask any source for. Those that name others refuse rings, and names of
/// nothing.
void askAny(moxDataSource const& source) {
  source.options();
  accepted([&] { source.getColumns(); });
  accepted([&] { source.getRelatedColumns({}); });
  accepted([&] { source.getRelatedDataSources(true); });
  accepted([&] { source.getFilters(); });
}

void ask(moxDataSource const& source) {
  askAny(source);
  if (auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source)) {
    require(source.getRelatedColumns({}).size() == source.getColumns().size(),
            "alone in a context, a query has its own columns");
    sql->getSQL();
    sql->getSQLColumnsPlain();
    require(sql->getColumns().size() == sql->columns().size(), "every column has a kind");
    for (auto const& column : sql->columns()) {
      column->getColumnNameFull();
      require(sql->findColumn(column->getTableName(), column->getColumnName()) != nullptr,
              "a column is found by its names");
    }
  }
}

template <class T, class Give>
bool give(moxDataMatrixSQLFilter& filter, Give const& value) {
  auto* const known = dynamic_cast<T*>(&filter);
  if (known != nullptr) {
    value(*known);
  }
  return known != nullptr;
}

/// Ranges and lists of numbers stay without a value, as a user may leave them.
void giveValue(moxDataMatrixSQLFilter& filter) {
  give<moxDataMatrixSQLIntegerUniqueFilter>(filter, [](auto& f) { f.setValue(7); }) ||
      give<moxDataMatrixSQLIntegerUniqueSQLFilter>(filter, [](auto& f) { f.setValue(7); }) ||
      give<moxDataMatrixSQLDoubleUniqueFilter>(filter, [](auto& f) { f.setValue(2.5); }) ||
      give<moxDataMatrixSQLTextUniqueFilter>(filter, [](auto& f) { f.setValue("a"); }) ||
      give<moxDataMatrixSQLDateUniqueFilter>(filter,
                                             [](auto& f) { f.setValue(date_t(5, 3, 2024)); }) ||
      give<moxDataMatrixSQLTextInFilter>(filter, [](auto& f) { f.pushVal("a"); });
}

std::vector<Filter> filtersFor(moxDataSource const& source) {
  std::vector<Filter> filters;
  for (auto const& specification : source.getFilters()) {
    if (auto filter = specification->createFilter()) {
      giveValue(*filter);
      filters.push_back(std::move(filter));
    }
  }
  return filters;
}

std::size_t valuesIn(std::vector<moxRunPart> const& parts) {
  std::size_t count = 0;
  for (auto const& part : parts) {
    count += part.values.size();
  }
  return count;
}

/// How a document's sources are run.
struct Run {
  bool byUnits = false;      // the user sees only rows of his units
  bool withFilters = false;  // he fills in every filter
  bool hasMarks = false;     // the document itself may hold a mark
};

void check(moxDataSource const& source, moxRunStatement const& statement, Run const& run) {
  auto const marks = std::count(statement.sql.begin(), statement.sql.end(), '?');
  auto const values = valuesIn(statement.parameters) + valuesIn(statement.conditions);
  require(run.hasMarks || static_cast<std::size_t>(marks) == values, "a value for every mark");
  auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source);
  bool const restricted = !statement.conditions.empty() &&
                          statement.conditions.back().origin == moxRunOrigin::kUnitRule;
  bool const hasUnits = sql != nullptr && sql->getUnidadeColumn().first;
  require(!run.byUnits || run.withFilters || !hasUnits || restricted, "no rows of other units");
}

std::string textOf(moxRunStatement const& statement) {
  auto text = statement.sql + '\n';
  for (auto const* const parts : {&statement.parameters, &statement.conditions}) {
    for (auto const& part : *parts) {
      for (auto const& value : part.values) {
        text += value.text + '\n';
      }
    }
  }
  return text;
}

/// The statements and their values in one text, those of a group's members behind it, or why there
/// are none.
std::string composed(TestHost& host, std::shared_ptr<moxDataSource const> const& source,
                     Run const& run) {
  auto const context = host.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  auto& reporter = dynamic_cast<moxRunReporter&>(*context);
  reporter.composeOnly();
  try {
    if (run.withFilters) {
      context->setDataSourceFilters(source->getName(), filtersFor(*source));
    }
    context->processDataSources({}, {{source->getName(), {false, source->createExecution()}}}, {},
                                0);
  } catch (moxError const& error) {
    return error.errorMessage();
  } catch (std::out_of_range const& error) {
    return error.what();
  }
  std::string text;
  for (auto const& ran : reporter.runReport().sources) {
    for (auto const& statement : ran.statements) {
      check(*source, statement, run);
      text += textOf(statement);
    }
  }
  return text;
}

std::string composed(TestHost& host, Collection const& collection, Run const& run) {
  std::string text;
  for (auto const& source : sourcesOf(collection)) {
    text += composed(host, source, run) + '\n';
  }
  return text;
}

/// The document has a mark that no part of this program put there, or a filter whose condition is
/// the author's own text, with as many marks as he wrote.
bool hasMarks(std::string const& document) {
  if (document.find("moxIntegralUniqueSQLFilter") != std::string::npos) {
    return true;
  }
  auto const start = document.starts_with("<?xml") ? document.find("?>") + 2 : 0;
  return document.find('?', start) != std::string::npos;
}

void composeAlike(TestHost& host, Collection const& first, Collection const& second, Run run) {
  auto const text = composed(host, first, run);
  require(composed(host, first, run) == text, "a definition can be run again");
  require(composed(host, second, run) == text, "what was saved composes the same statements");
}

}  // namespace

void readDefinition(std::string_view bytes) {
  TestHost host;
  auto const first = loaded(host, std::string(bytes));
  if (!first) {
    return;
  }
  auto const text = saved(host, first);
  auto const second = loaded(host, text);
  require(second != nullptr, "what was saved can be loaded");
  require(saved(host, second) == text, "loading and saving gives the same text");
  host.get<moxZYNCache>("moxZYNCache")->appendCollection(first);  // where sources find each other
  for (auto const& source : sourcesOf(first)) {
    ask(*source);
  }
  bool const marks = hasMarks(text);
  composeAlike(host, first, second, {.hasMarks = marks});
  host.logIn({.id = 7, .units = {{3, 1}, {4, 1}}, .worksByUnits = true});
  composeAlike(host, first, second, {.byUnits = true, .hasMarks = marks});
  composeAlike(host, first, second, {.byUnits = true, .withFilters = true, .hasMarks = marks});
  require(saved(host, first) == text, "a run changes no definition");
}

}  // namespace mox::fuzz
