#include "support/wiring/wiring_run.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <set>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_range_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"

namespace mox_test::wiring {
namespace {

using Filter = std::shared_ptr<moxDataMatrixSQLFilter>;
using Context = std::shared_ptr<moxDataSourceExecutionContext>;
using Rows = std::vector<std::vector<std::string>>;

constexpr char const* kTarget = "alvo";

template <class T>
std::shared_ptr<T> definition(TestHost& host, std::string const& xml) {
  auto const document = host.get<moxXMLDocument>("moxXMLDocument");
  document->loadText(xml);
  auto made = host.get<T>(document->root()->elementName());
  made->load(document->root());
  return made;
}

Filter textFilter(TestHost& host, Condition const& condition) {
  if (condition.test == Condition::kEquals) {
    auto const made =
        host.get<moxDataMatrixSQLTextUniqueFilter>("moxDataMatrixSQLTextUniqueFilter");
    made->setValue(textOf(condition.values[0], kText));
    return made;
  }
  auto const made = host.get<moxDataMatrixSQLTextInFilter>("moxDataMatrixSQLTextInFilter");
  for (int const value : condition.values) {
    made->pushVal(textOf(value, kText));
  }
  return made;
}

Filter listFilter(TestHost& host, Condition const& condition) {
  auto const made = host.get<moxDataMatrixSQLIntegerInFilter>("moxDataMatrixSQLIntegerInFilter");
  made->setNot(condition.test == Condition::kNotAmong);
  for (int const value : condition.values) {
    made->pushVal(value);
  }
  return made;
}

Filter rangeFilter(TestHost& host, Condition const& condition) {
  auto const made =
      host.get<moxDataMatrixSQLIntegerRangeFilter>("moxDataMatrixSQLIntegerRangeFilter");
  made->setMin(condition.values[0], true);
  if (condition.test == Condition::kBetween) {
    made->setMax(condition.values[1], true);
  }
  return made;
}

Filter valueFilter(TestHost& host, Condition const& condition) {
  if (condition.column == kText) {
    return textFilter(host, condition);
  }
  switch (condition.test) {
    case Condition::kAmong:
    case Condition::kNotAmong:
      return listFilter(host, condition);
    case Condition::kAtLeast:
    case Condition::kBetween:
      return rangeFilter(host, condition);
    case Condition::kEquals:
      break;
  }
  auto const made =
      host.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
  made->setValue(condition.values[0]);
  return made;
}

Filter filterOf(TestHost& host, Given const& given) {
  auto const made = valueFilter(host, given.condition);
  if (given.name.empty()) {
    made->setColumnName(given.namesTable ? kAlias : "",
                        columnName(given.table, given.condition.column));
  } else {
    made->setColumnName("", given.name);
  }
  return made;
}

/// Gives the filters to a context, under what `aim` says of each.
template <class Aim>
void give(TestHost& host, Context const& context, Wiring const& wiring, Aim const& aim) {
  std::map<std::string, std::vector<Filter>> users;
  for (auto const& given : wiring.given) {
    auto const filter = filterOf(host, given);
    if (given.isFixed) {
      context->addDataSourceFixedFilter(aim(given), filter);
    } else {
      users[aim(given)].push_back(filter);
    }
  }
  for (auto const& [source, filters] : users) {
    context->setDataSourceFilters(source, filters);
  }
}

/// "group->member->member", or the last group alone where its filters go to the member.
std::string aimOf(Wiring const& wiring, Given const& given, std::string const& root) {
  std::vector<Group const*> groups{&wiring.group};
  for (std::size_t i = 0; i + 1 < given.path.size(); ++i) {
    auto const* const member = groups.back()->find(given.path[i]);
    groups.push_back(std::get<std::shared_ptr<Group>>(member->source).get());
  }
  auto path = given.path;
  while (given.atGroup && !path.empty() && groups[path.size() - 1]->filterSource == path.back()) {
    path.pop_back();
  }
  auto aim = root;
  for (auto const& step : path) {
    aim += "->" + step;
  }
  return aim;
}

std::string cellOf(moxIterator& cursor) {
  if (cursor.isNull()) {
    return "null";
  }
  if (auto const* const integer = dynamic_cast<moxIteratorBase<int>*>(&cursor)) {
    return std::to_string(integer->get());
  }
  if (auto const* const number = dynamic_cast<moxIteratorBase<double>*>(&cursor)) {
    return std::to_string(std::lround(number->get()));
  }
  auto const* const text = dynamic_cast<moxIteratorBase<std::string>*>(&cursor);
  return text != nullptr ? text->get() : "?";
}

Rows rowsOf(moxDataMatrix& matrix) {
  Rows rows(matrix.rowCount());
  for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
    auto const cursor = matrix.columnAt(i)->begin();
    for (auto& row : rows) {
      row.push_back(cellOf(*cursor));
      cursor->next();
    }
  }
  return rows;
}

std::string shown(Rows const& rows) {
  std::string text;
  for (auto const& row : rows) {
    for (auto const& cell : row) {
      text += " " + cell;
    }
    text += "\n";
  }
  return text;
}

/// Sorts the rows between which nothing tells the order.
void sortTies(Rows& rows, std::vector<std::size_t> const& ties) {
  auto begin = rows.begin();
  for (auto const count : ties) {
    std::sort(begin, begin + static_cast<std::ptrdiff_t>(count));
    begin += static_cast<std::ptrdiff_t>(count);
  }
}

std::string compare(std::string const& name, std::shared_ptr<moxDataMatrix> const& matrix,
                    Result expected) {
  if (!matrix) {
    return name + " gives no table\n";
  }
  std::vector<std::string> names;
  for (unsigned int i = 0; i < matrix->columnCount(); ++i) {
    names.push_back(matrix->columnAt(i)->getName());
  }
  auto actual = rowsOf(*matrix);
  if (actual.size() == expected.rows.size()) {
    sortTies(actual, expected.ties);
    sortTies(expected.rows, expected.ties);
  }
  if (names == expected.names && actual == expected.rows) {
    return {};
  }
  return name + " gives\n" + shown({names}) + shown(actual) + "where this is expected:\n" +
         shown({expected.names}) + shown(expected.rows);
}

/// A flat wiring, put together as a group would.
class HandmadeRun {
 public:
  HandmadeRun(TestHost& host, Wiring const& wiring) : host_(host), wiring_(wiring) {
    for (auto const& member : wiring.group.members) {
      auto const source = definition<moxDataSource>(host, sourceXml(member));
      sources_[member.name] = source;
      executions_[member.name] = source->createExecution();
      std::visit([&](auto const& kind) { wire(member, kind); }, member.source);
    }
    for (auto const& outside : wiring.outside) {
      auto const* const changed = wiring.group.queryBehind(wiring.changedFromOutside(outside));
      query(changed->name)
          ->addFiltersDataSource(definition<moxFilterDataSource>(host, sourceXml(outside)));
    }
  }

  Context run() {
    auto const context = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
    give(host_, context, wiring_, [](Given const& given) { return given.path[0]; });
    std::vector<moxDataSourceToProcess> list;
    for (auto const& member : wiring_.group.members) {
      list.push_back({member.name, {false, executions_[member.name]}});
    }
    context->processDataSources({}, list, wiring_.units, 0);
    return context;
  }

 private:
  std::shared_ptr<moxSQLDataSourceExecution> query(std::string const& name) {
    return std::dynamic_pointer_cast<moxSQLDataSourceExecution>(executions_.at(name));
  }

  void wire(Member const& member, SqlSource const& source) {
    if (member.byValues) {
      query(member.name)
          ->setDataSourceFilterRelation(
              member.byValues->member, member.byValues->column,
              std::string(kAlias) + "." + columnName(source.table, member.byValues->ownColumn));
    }
  }

  void wire(Member const& member, FilterSource const&) {
    query(wiring_.group.queryBehind(&member)->name)
        ->addFiltersDataSource(
            std::dynamic_pointer_cast<moxFilterDataSource>(sources_.at(member.name)));
  }

  void wire(Member const& member, Manager const&) {
    auto const manager =
        std::dynamic_pointer_cast<moxManageFilterDataSource>(sources_.at(member.name));
    for (auto const& record : manager->getSources()) {
      query(record.name)->addManageFiltersData({member.name, record.avaliable, record.related});
    }
  }

  void wire(Member const&, std::shared_ptr<Group> const&) {}

  TestHost& host_;
  Wiring const& wiring_;
  std::map<std::string, std::shared_ptr<moxDataSource>> sources_;
  std::map<std::string, std::shared_ptr<moxDataSourceExecution>> executions_;
};

std::string differencesByHand(TestHost& host, Tables const& tables, Wiring const& wiring) {
  auto const context = HandmadeRun(host, wiring).run();
  std::string found;
  for (auto const& [name, expected] : evaluateMembers(tables, wiring)) {
    found += compare("member " + name, context->getDataMatrix(name), expected);
  }
  return found;
}

void enterExternals(TestHost& host, Group const& group) {
  auto const definitions = externalXml(group);
  if (definitions.empty()) {
    return;
  }
  std::string text = "<moxZYNCollection>";
  for (auto const& each : definitions) {
    text += each;
  }
  auto const document = host.get<moxXMLDocument>("moxXMLDocument");
  document->loadText(text + "</moxZYNCollection>");
  auto const collection = host.get<moxZYNCollection>("moxZYNCollection");
  collection->unserialize(document->root());
  auto const cache = host.get<moxZYNCache>("moxZYNCache");
  cache->clear();
  cache->appendCollection(collection);
}

/// Filters reach the group under its own name, or under that of its result.
std::string differencesAsGroup(TestHost& host, Tables const& tables, Wiring const& wiring) {
  enterExternals(host, wiring.group);
  auto const group = definition<moxGroupDataSource>(host, groupXml(wiring.group));
  auto const execution =
      std::dynamic_pointer_cast<moxGroupDataSourceExecution>(group->createExecution());
  for (auto const& outside : wiring.outside) {
    execution->addFiltersDataSource(definition<moxFilterDataSource>(host, sourceXml(outside)));
  }
  bool const isRenamed = wiring.units.size() % 2 == 1;
  auto const root = isRenamed ? std::string(kTarget) : wiring.group.name;
  auto const context = host.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  give(host, context, wiring, [&](Given const& given) { return aimOf(wiring, given, root); });
  context->processDataSources({}, {{isRenamed ? kTarget : "", {false, execution}}}, wiring.units,
                              0);
  return compare("the group", context->getDataMatrix(root), evaluateOutput(tables, wiring));
}

std::string columnsOf(int table) {
  std::string columns;
  for (int column = 0; column < kColumns; ++column) {
    columns += (column == 0 ? "" : ", ") + columnName(table, column) +
               (column == kText ? " varchar(10)" : " int");
  }
  return columns;
}

std::string valuesOf(std::array<Value, kColumns> const& row) {
  std::string values;
  for (int column = 0; column < kColumns; ++column) {
    auto const text = textOf(row[static_cast<std::size_t>(column)], column);
    bool const isQuoted = column == kText && text != "null";
    values += (column == 0 ? "" : ", ") + (isQuoted ? "'" + text + "'" : text);
  }
  return values;
}

std::string failureText(moxError const& error) {
  auto text = error.errorMessage();
  for (auto const& detail : error.errorDetails()) {
    text += "\n  " + detail;
  }
  return text + "\n";
}

}  // namespace

void makeTables(moxDatabaseConnection& database, Tables const& tables) {
  for (std::size_t i = 0; i < tables.size(); ++i) {
    int const number = static_cast<int>(i);
    auto const name = "t" + std::to_string(number);
    database.execute("drop table if exists " + name);
    database.execute("create table " + name + " (" + columnsOf(number) + ")");
    std::string rows;
    for (auto const& row : tables[i].rows) {
      rows += (rows.empty() ? "(" : ", (") + valuesOf(row) + ")";
    }
    if (!rows.empty()) {  // one statement: a file is written to the disk after each
      database.execute("insert into " + name + " values " + rows);
    }
  }
}

std::string differences(TestHost& host, Tables const& tables, Wiring const& wiring) {
  std::string found;
  try {
    if (wiring.isFlat()) {
      found = differencesByHand(host, tables, wiring);
    }
    found += differencesAsGroup(host, tables, wiring);
  } catch (moxError const& error) {
    found += failureText(error);
  }
  return found.empty() ? found : found + describe(wiring);
}

std::string differencesOf(TestHost& host, unsigned firstSeed, unsigned count, unsigned perTables) {
  char const* const replayed = std::getenv("MOX_WIRING_SEED");
  if (replayed != nullptr) {
    firstSeed = static_cast<unsigned>(std::strtoul(replayed, nullptr, 10));
    count = 1;
  }
  Tables tables;
  std::optional<unsigned> made;
  for (unsigned seed = firstSeed; seed < firstSeed + count; ++seed) {
    if (made != seed / perTables) {
      made = seed / perTables;
      tables = randomTables(*made);
      makeTables(host.database(), tables);
    }
    auto const found = differences(host, tables, randomWiring(seed));
    if (!found.empty()) {
      return "MOX_WIRING_SEED=" + std::to_string(seed) + " runs this one alone:\n" + found;
    }
  }
  return {};
}

}  // namespace mox_test::wiring
