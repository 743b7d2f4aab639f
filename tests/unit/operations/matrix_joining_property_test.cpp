#include "zyn/operations/matrix_joining.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <sstream>
#include <typeinfo>

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "support/matrix_builder.h"
#include "support/random_tables.h"
#include "support/test_host.h"

using namespace mox_test;

namespace {

using Matrix = std::shared_ptr<moxDataMatrix>;
using Row = std::shared_ptr<moxDataMatrixRow>;
using Cursor = std::shared_ptr<moxIterator>;

/// The join as a clerk would make it, with cursors, row by row and pair by pair.
class PlainJoin {
 public:
  explicit PlainJoin(std::vector<JoinedSource> const& sources) : sources_(sources) {}

  Matrix process() {
    makeColumns();
    for (auto const& source : sources_) {
      if (source.matrix->rowCount() == 0) {
        return result_;
      }
    }
    for (auto const& source : sources_) {
      join(source);
    }
    return withoutDropped();
  }

 private:
  using Values = std::map<std::string, Cursor>;

  void makeColumns() {
    row_ = moxApp->get<moxDataMatrixRow>("moxDataMatrixRow");
    for (auto const& source : sources_) {
      for (auto const& taken : source.columns) {
        auto const from = source.matrix->columnByName(taken.name);
        auto const made = column(taken.alias, {from->getType(), {}});
        result_->addColumn(made);
        row_->addIterator(made->begin());
      }
    }
  }

  void join(JoinedSource const& source) {
    remembered_.clear();
    if (source.conditions.empty() && result_->rowCount() == 0) {
      append(source);
      return;
    }
    for (unsigned int at = 0; at < result_->rowCount(); ++at) {
      if (dropped_.count(at) == 0) {
        row_->goTo(at);
        walk(source, at);
      }
    }
    for (auto const& [at, values] : remembered_) {
      copy(at, values);
    }
  }

  void append(JoinedSource const& source) {
    auto const from = source.matrix->begin();
    do {
      result_->appendNullRow();
      row_->goTo(result_->rowCount() - 1);
      write(source, *from);
    } while (from->next());
  }

  void walk(JoinedSource const& source, unsigned int at) {
    auto const from = source.matrix->begin();
    bool met = false;
    do {
      if (!matches(source, *from)) {
        continue;
      }
      if (met) {
        remembered_.emplace_back(at, valuesOf(source, *from));
      } else {
        write(source, *from);
      }
      met = true;
    } while (from->next());
    if (!met) {
      dropped_.insert(at);
    }
  }

  bool matches(JoinedSource const& source, moxDataMatrixRow& from) const {
    return std::all_of(source.conditions.begin(), source.conditions.end(), [&](auto const& pair) {
      return from.findIterator(pair.sourceColumn)->compare(row_->findIterator(pair.resultColumn)) ==
             0;
    });
  }

  void write(JoinedSource const& source, moxDataMatrixRow& from) {
    for (auto const& taken : source.columns) {
      row_->findIterator(taken.alias)->set(from.findIterator(taken.name));
    }
  }

  static Values valuesOf(JoinedSource const& source, moxDataMatrixRow& from) {
    Values values;
    for (auto const& taken : source.columns) {
      values[taken.alias] = from.findIterator(taken.name)->clone();
    }
    return values;
  }

  void copy(unsigned int at, Values const& values) {
    result_->appendNullRow();
    for (auto const& cursor : row_->getIterators()) {
      auto const original = cursor->clone();
      original->goTo(at);
      cursor->goTo(result_->rowCount() - 1);
      cursor->set(original);
    }
    for (auto const& [alias, value] : values) {
      row_->findIterator(alias)->set(value);
    }
  }

  Matrix withoutDropped() {
    Matrix kept = matrix({});
    for (unsigned int i = 0; i < result_->columnCount(); ++i) {
      auto const from = result_->columnAt(i);
      auto const made = column(from->getName(), {from->getType(), {}});
      for (unsigned int at = 0; at < result_->rowCount(); ++at) {
        if (dropped_.count(at) == 0) {
          mox_test::append(*made, cellAt(*from, at));
        }
      }
      kept->addColumn(made);
    }
    return kept;
  }

  std::vector<JoinedSource> const& sources_;
  Matrix result_ = matrix({});
  Row row_;
  std::vector<std::pair<unsigned int, Values>> remembered_;
  std::set<unsigned int> dropped_;
};

Matrix joined(std::vector<JoinedSource> const& sources) {
  MatrixJoining joining;
  for (auto const& source : sources) {
    joining.addSource(source);
  }
  return joining.process();
}

/// Joins of one to four random tables: few aliases, so that they clash, and conditions on any
/// column of the result, also on those that the source writes itself and that later ones write.
class RandomJoins {
 public:
  RandomJoins(std::uint64_t seed, RandomTableOptions const& options, std::size_t aliases)
      : tables_(seed, options), aliases_(aliases) {}

  std::vector<JoinedSource> next() {
    std::vector<JoinedSource> sources(1 + tables_.pick(4));
    types_.clear();
    for (auto& source : sources) {
      source.name = "s";
      source.matrix = table();
      takeColumns(source);
    }
    for (std::size_t i = 0; i < sources.size(); ++i) {
      // Often none in the first source, which would meet nothing, and seldom none in another.
      std::size_t const chance = i == 0 ? tables_.pick(12) : tables_.pick(4);
      bool const some = i == 0 ? chance == 0 : chance != 0;
      for (std::size_t count = some ? 1 + tables_.pick(2) : 0; count != 0; --count) {
        addCondition(sources[i]);
      }
    }
    return sources;
  }

 private:
  Matrix table() {
    Matrix made = tables_.table();
    for (int tries = 0; made->rowCount() == 0 && tries < 2; ++tries) {
      made = tables_.table();
    }
    return made;
  }

  void takeColumns(JoinedSource& source) {
    for (std::size_t count = tables_.pick(4); count != 0; --count) {
      auto const name = tables_.columnOf(*source.matrix);
      auto const alias = "r" + std::to_string(tables_.pick(aliases_));
      source.columns.push_back({name, alias});
      types_.emplace(alias, source.matrix->columnByName(name)->getType());
    }
  }

  /// Mostly of columns of one kind; those of two fail when they are compared.
  void addCondition(JoinedSource& source) {
    for (int tries = 0; tries < 20 && !types_.empty(); ++tries) {
      auto const name = tables_.columnOf(*source.matrix);
      auto const result = std::next(types_.begin(), static_cast<int>(tables_.pick(types_.size())));
      if (source.matrix->columnByName(name)->getType() == result->second || tables_.pick(60) == 0) {
        source.conditions.push_back({name, result->first});
        return;
      }
    }
  }

  RandomTables tables_;
  std::size_t const aliases_;
  std::map<std::string, moxDataMatrixTypes::Types> types_;  // of the first column of each alias
};

std::string described(std::vector<JoinedSource> const& sources) {
  std::ostringstream text;
  for (auto const& source : sources) {
    text << asText(*source.matrix);
    for (auto const& column : source.columns) {
      text << "  " << column.name << " as " << column.alias << "\n";
    }
    for (auto const& condition : source.conditions) {
      text << "  on " << condition.sourceColumn << " = " << condition.resultColumn << "\n";
    }
  }
  return text.str();
}

/// What several joins came to, so that a test knows that it saw all kinds of them.
struct Seen {
  int failed = 0;
  int withRows = 0;
  int withoutRows = 0;
};

void expectSame(std::vector<JoinedSource> const& sources, std::uint64_t seed, Seen& seen) {
  Matrix expected;
  try {
    expected = PlainJoin(sources).process();
  } catch (std::bad_cast const&) {
    ++seen.failed;
    EXPECT_THROW(joined(sources), std::bad_cast) << "seed " << seed << "\n" << described(sources);
    return;
  }
  ++(expected->rowCount() == 0 ? seen.withoutRows : seen.withRows);
  EXPECT_TRUE(sameMatrix(*joined(sources), *expected)) << "seed " << seed << "\n"
                                                       << described(sources);
}

void compareMany(RandomTableOptions const& options, std::size_t aliases, std::uint64_t seeds) {
  TestHost host;
  Seen seen;
  for (std::uint64_t seed = 1; seed <= seeds && !testing::Test::HasFailure(); ++seed) {
    expectSame(RandomJoins(seed, options, aliases).next(), seed, seen);
  }
  EXPECT_GT(seen.failed, 0);
  EXPECT_GT(seen.withRows, static_cast<int>(seeds / 10));
  EXPECT_GT(seen.withoutRows, 0);
}

RandomTableOptions smallTables() {
  RandomTableOptions options;
  options.maxRows = 7;
  options.maxColumns = 4;
  return options;
}

/// A cell as both sides write it; 0.0 and -0.0 are one number.
std::string sqlText(Cell const& cell) {
  if (auto const* const number = std::get_if<double>(&cell)) {
    if (std::isinf(*number)) {
      return *number > 0 ? "9e999" : "-9e999";
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", *number == 0 ? 0.0 : *number);
    return text;
  }
  if (auto const* const number = std::get_if<int>(&cell)) {
    return std::to_string(*number);
  }
  auto const* const text = std::get_if<std::string>(&cell);
  return text != nullptr ? "'" + *text + "'" : "null";
}

/// Joins as SQLite makes them, which knows an "is" that holds for two nulls.
class SqlJoin {
 public:
  explicit SqlJoin(moxDatabaseConnection& database) : database_(database) {}

  /// The rows as texts, sorted.
  std::vector<std::string> rowsOf(std::vector<JoinedSource> const& sources) {
    std::string from;
    std::string where = " where 1=1";
    std::string columns;
    std::map<std::string, std::string> names;  // of the result's columns
    for (std::size_t i = 0; i < sources.size(); ++i) {
      auto const table = "t" + std::to_string(i);
      enter(table, *sources[i].matrix);
      from += (i == 0 ? " from " : " cross join ") + table;
      for (auto const& column : sources[i].columns) {
        columns += (columns.empty() ? "" : ",") + table + "." + column.name;
        names.emplace(column.alias, table + "." + column.name);
      }
      for (auto const& condition : sources[i].conditions) {
        where += " and " + table + "." + condition.sourceColumn + " is " +
                 names.at(condition.resultColumn);
      }
    }
    return fetched("select " + columns + from + where, sources);
  }

 private:
  void enter(std::string const& table, moxDataMatrix const& matrix) {
    database_.execute("drop table if exists " + table);
    std::string names;
    for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
      names += (i == 0 ? "" : ",") + matrix.columnAt(i)->getName();
    }
    database_.execute("create table " + table + " (" + names + ")");
    for (unsigned int row = 0; row < matrix.rowCount(); ++row) {
      std::string values;
      for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
        values += (i == 0 ? "" : ",") + sqlText(cellAt(*matrix.columnAt(i), row));
      }
      database_.execute("insert into " + table + " values (" + values + ")");
    }
  }

  std::vector<std::string> fetched(std::string const& sql,
                                   std::vector<JoinedSource> const& sources) {
    std::vector<moxDataMatrixTypes::Types> types;
    for (auto const& source : sources) {
      for (auto const& column : source.columns) {
        types.push_back(source.matrix->columnByName(column.name)->getType());
      }
    }
    std::vector<std::string> rows;
    auto const statement = database_.prepare(sql);
    statement->execute();
    while (statement->fetch()) {
      std::string row;
      for (int i = 0; i < static_cast<int>(types.size()); ++i) {
        row += "|" + cellText(*statement, i, types[static_cast<std::size_t>(i)]);
      }
      rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  static std::string cellText(moxDatabaseConnection::PreparedStatement const& statement, int field,
                              moxDataMatrixTypes::Types type) {
    if (statement.isNull(field)) {
      return "null";
    }
    if (type == moxDataMatrixTypes::Int) {
      return sqlText(statement.getInt(field));
    }
    return type == moxDataMatrixTypes::Double ? sqlText(statement.getDouble(field))
                                              : sqlText(std::string(statement.getString(field)));
  }

  moxDatabaseConnection& database_;
};

std::vector<std::string> rowsAsTexts(moxDataMatrix const& matrix) {
  std::vector<std::string> rows;
  for (unsigned int row = 0; row < matrix.rowCount(); ++row) {
    std::string text;
    for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
      text += "|" + sqlText(cellAt(*matrix.columnAt(i), row));
    }
    rows.push_back(text);
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

/// Tables whose joins SQL knows as well: ints, numbers and texts, each column with a name of its
/// own, and conditions that look back.
class SqlLikeJoins {
 public:
  explicit SqlLikeJoins(std::uint64_t seed) : tables_(seed, {4, 9, false, false, false, false}) {}

  std::vector<JoinedSource> next() {
    std::vector<JoinedSource> sources(1 + tables_.pick(4));
    std::vector<std::pair<std::string, moxDataMatrixTypes::Types>> known;
    for (std::size_t i = 0; i < sources.size(); ++i) {
      sources[i].matrix = table();
      for (auto const& [alias, type] : known) {
        if (sources[i].conditions.size() < 2 && tables_.pick(6) == 0) {
          addCondition(sources[i], alias, type);
        }
      }
      takeColumns(sources[i], i, known);
    }
    return sources;
  }

 private:
  using Known = std::vector<std::pair<std::string, moxDataMatrixTypes::Types>>;

  Matrix table() {
    Matrix made = matrix({});
    auto const rows = static_cast<unsigned int>(1 + tables_.pick(8));
    for (int i = 0; i < 3; ++i) {
      made->addColumn(tables_.column(
          "c" + std::to_string(i), static_cast<moxDataMatrixTypes::Types>(tables_.pick(3)), rows));
    }
    return made;
  }

  void takeColumns(JoinedSource& source, std::size_t number, Known& known) {
    for (unsigned int i = 0; i < 3; ++i) {
      auto const column = source.matrix->columnAt(i);
      auto const alias = "a" + std::to_string(number) + column->getName();
      source.columns.push_back({column->getName(), alias});
      known.emplace_back(alias, column->getType());
    }
  }

  static void addCondition(JoinedSource& source, std::string const& alias,
                           moxDataMatrixTypes::Types type) {
    for (unsigned int i = 0; i < 3; ++i) {
      if (source.matrix->columnAt(i)->getType() == type) {
        source.conditions.push_back({source.matrix->columnAt(i)->getName(), alias});
        return;
      }
    }
  }

  RandomTables tables_;
};

}  // namespace

TEST(MatrixJoiningProperty, JoinsRandomTablesAsTheClerkDoes) {
  compareMany(smallTables(), 9, 20'000);
}

TEST(MatrixJoiningProperty, WithFewAliasesSourcesOverwriteEachOtherAsTheClerkHasIt) {
  compareMany(smallTables(), 3, 20'000);
}

TEST(MatrixJoiningProperty, JoinsLongerTablesAsTheClerkDoes) {
  RandomTableOptions options;
  options.maxRows = 14;
  options.maxColumns = 2;
  options.blobs = false;
  compareMany(options, 6, 4'000);
}

TEST(MatrixJoiningProperty, HasTheRowsThatSQLiteFinds) {
  TestHost host(TestHost::kMemoryDatabase);
  SqlJoin sql(host.database());
  std::size_t rows = 0;
  for (std::uint64_t seed = 1; seed <= 1'000 && !HasFailure(); ++seed) {
    auto const sources = SqlLikeJoins(seed).next();
    auto const expected = sql.rowsOf(sources);
    EXPECT_EQ(rowsAsTexts(*joined(sources)), expected) << "seed " << seed << "\n"
                                                       << described(sources);
    rows += expected.size();
  }
  EXPECT_GT(rows, 10'000U);
}
