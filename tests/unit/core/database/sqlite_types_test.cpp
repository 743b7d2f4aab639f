#include "core/database/sqlite_types.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "unit/core/database/memory_database.h"

namespace mox::core {
namespace {

using Types = std::vector<FieldType>;

constexpr FieldType kText = FieldType::kText;
constexpr FieldType kInt = FieldType::kInt;
constexpr FieldType kBlob = FieldType::kBlob;
constexpr FieldType kDouble = FieldType::kDouble;
constexpr FieldType kDate = FieldType::kDate;

TEST(SqliteTypes, ReadsDeclarations) {
  for (char const* word :
       {"int", "INTEGER", "bigint(20) unsigned", "unsigned big int", "tinyint(1)", "boolean"}) {
    EXPECT_EQ(declaredType(word), kInt) << word;
  }
  for (char const* word :
       {"double", "double precision", "real", "float", "decimal(10,2)", "NUMERIC"}) {
    EXPECT_EQ(declaredType(word), kDouble) << word;
  }
  for (char const* word : {"date", "datetime", "timestamp", "DATETIME(6)"}) {
    EXPECT_EQ(declaredType(word), kDate) << word;
  }
  for (char const* word : {"blob", "longblob", "varbinary(16)"}) {
    EXPECT_EQ(declaredType(word), kBlob) << word;
  }
  for (char const* word :
       {"char(2)", "varchar(200)", "text", "longtext", "character varying(20)", "time"}) {
    EXPECT_EQ(declaredType(word), kText) << word;
  }
  for (char const* word : {"", "any", "point", "(", "'"}) {
    EXPECT_EQ(declaredType(word), std::nullopt) << word;
  }
}

/// An empty table with a column of every kind: no row can tell a type.
struct EmptyTable : ::testing::Test {
  EmptyTable() {
    data.run("create table t (i int, d double, c varchar(20), dt datetime, b blob, x)");
  }

  FieldType typeOf(std::string const& item) {
    return data.types("select " + item + " from t").at(0);
  }

  MemoryDatabase data;
};

using SqliteTypesWithoutRows = EmptyTable;

TEST_F(SqliteTypesWithoutRows, DeclaredColumnsHaveTheirType) {
  EXPECT_EQ(data.types("select i, d, c, dt, b from t"),
            (Types{kInt, kDouble, kText, kDate, kBlob}));
  EXPECT_EQ(data.types("select * from t as q"), (Types{kInt, kDouble, kText, kDate, kBlob, kText}));
}

TEST_F(SqliteTypesWithoutRows, AggregatesAndFunctionsHaveTheirType) {
  for (char const* item :
       {"sum(i)", "SUM( i )", "avg(i)", "round(i)", "coalesce(i, 0)", "coalesce(sum(d), 0)",
        "ifnull(d, 0)", "round(sum(i) / count(*), 2)", "sum(i) over ()", "(sum(i))", "-sum(i)"}) {
    EXPECT_EQ(typeOf(item), kDouble) << item;
  }
  for (char const* item :
       {"count(*)", "count(distinct c)", "year(dt)", "month(dt)", "day(dt)", "quarter(dt)",
        "length(c)", "1", "-1", "i = 1", "not i", "i in (1, 2)", "c is null", "exists (select 1)",
        "case when i = 1 then 1 else 0 end", "if(i = 1, 1, 0)", "cast(c as signed)",
        "row_number() over (order by i)", "dt between ? and ?"}) {
    EXPECT_EQ(typeOf(item), kInt) << item;
  }
  for (char const* item :
       {"date(dt)", "curdate()", "now()", "date(concat(year(dt),'-',quarter(dt),'-01'))",
        "coalesce(dt, curdate())", "case when i then dt else null end", "if(i, dt, null)"}) {
    EXPECT_EQ(typeOf(item), kDate) << item;
  }
  for (char const* item :
       {"concat(i, d)", "upper(c)", "'a'", "coalesce(c, '')", "group_concat(c)", "substr(c, 1)",
        "coalesce(dt, '')", "case i when 1 then 'a' else 'b' end",
        "ambiente_buscadadostringconfiguracao('a', 'b', 1)"}) {
    EXPECT_EQ(typeOf(item), kText) << item;
  }
}

TEST_F(SqliteTypesWithoutRows, MinimumAndMaximumHaveTheTypeOfTheirColumn) {
  EXPECT_EQ(data.types("select min(i), max(d), max(c), min(q.dt), max(b) from t q"),
            (Types{kInt, kDouble, kText, kDate, kBlob}));
  EXPECT_EQ(typeOf("max(coalesce(d, 0))"), kDouble);
}

TEST_F(SqliteTypesWithoutRows, ArithmeticIsANumberAndAllElseIsText) {
  EXPECT_EQ(data.types("select x + 1, i * d, (x) / 2, x, ?, null from t"),
            (Types{kDouble, kDouble, kDouble, kText, kText, kText}));
}

TEST(SqliteTypes, ArithmeticWithADoubleIsADoubleWhateverTheFirstRowHolds) {
  MemoryDatabase data;
  data.run("create table t (i int, d decimal(10, 2))");
  data.run("insert into t values (2, 3), (2, 3.5)");
  EXPECT_EQ(
      data.types("select d - i, (d - 1) * 2, i * -d, -d + i, 2 * (select max(d) from t) from t"),
      (Types{kDouble, kDouble, kDouble, kDouble, kDouble}));
  EXPECT_EQ(data.types("select i + 1, i * i - 2, -i from t"), (Types{kInt, kInt, kInt}));
}

TEST_F(SqliteTypesWithoutRows, TypesComeThroughSubqueries) {
  EXPECT_EQ(data.types("select * from ( select i, sum(d) as total, date(dt) as day from t group by "
                       "i, date(dt)) command "),
            (Types{kInt, kDouble, kDate}));
  EXPECT_EQ(data.types("select c.total, c.n, max(c.day) from (select sum(i) total, count(*) as n, "
                       "date(dt) as day "
                       "from t) as c"),
            (Types{kDouble, kInt, kDate}));
  EXPECT_EQ(data.types("select total from (select * from (select sum(i) as total from t) a) b"),
            (Types{kDouble}));
  EXPECT_EQ(data.types("select max(dt) from (select * from t) q"), (Types{kDate}));
  EXPECT_EQ(data.types("select (select max(dt) from t), (select count(*) from t)"),
            (Types{kDate, kInt}));
}

TEST_F(SqliteTypesWithoutRows, TypesComeThroughNamedSubqueries) {
  EXPECT_EQ(
      data.types(
          "with a as (select sum(i) as s, date(dt) as d from t), b (u, v) as (select s, d from a) "
          "select u, v, 1 from b"),
      (Types{kDouble, kDate, kInt}));
}

TEST_F(SqliteTypesWithoutRows, TypesComeFromTheTableThatHasTheColumn) {
  data.run("create table u (k int, when_ date)");
  EXPECT_EQ(
      data.types(
          "select max(when_), min(t.dt), max(q.k) from t inner join u as q on q.k = t.i left join "
          "(select 1 as one) r on r.one = q.k"),
      (Types{kDate, kDate, kInt}));
}

TEST_F(SqliteTypesWithoutRows, ColumnsAroundAStarAreFound) {
  EXPECT_EQ(data.types("select sum(i) over () as s, t.*, count(*) over () as n from t"),
            (Types{kDouble, kInt, kDouble, kText, kDate, kBlob, kText, kInt}));
}

TEST_F(SqliteTypesWithoutRows, UnionsTakeTheirFirstSelect) {
  EXPECT_EQ(data.types("select sum(i) as a from t union all select 'x'"), (Types{kDouble}));
}

TEST_F(SqliteTypesWithoutRows, NamesThatLeadInCirclesComeToAnEnd) {
  EXPECT_EQ(data.types("with recursive a (n) as (select n from a2 union all select n from a), a2 "
                       "(n) as (select x from t)"
                       " select n from a"),
            (Types{kText}));
}

struct RowsDecide : ::testing::Test {
  MemoryDatabase data;
};

using SqliteTypesWithRows = RowsDecide;

TEST_F(SqliteTypesWithRows, TheFirstRowTellsWhatTheTextDoesNot) {
  data.run("create table t (x)");
  data.run(
      "insert into t values (x'00'), (1), (1.5), ('2024-03-05'), ('2024-03-05 10:11:12'), "
      "('2024-3-5'), ('a'), (null)");
  Types types;
  for (int i = 1; i <= 8; ++i) {
    types.push_back(data.types("select x from t where rowid = " + std::to_string(i)).at(0));
  }
  EXPECT_EQ(types, (Types{kBlob, kInt, kDouble, kDate, kDate, kText, kText, kText}));
  EXPECT_EQ(data.types("select x + 1 from t where rowid = 2"), (Types{kInt}));
  EXPECT_EQ(data.types("select x + 1 from t where rowid = 8"), (Types{kDouble}));
}

TEST_F(SqliteTypesWithRows, EachExecutionLooksAtItsOwnFirstRow) {
  auto const statement = data.db.prepare("select ?");
  statement->bindInt(0, 1);
  statement->execute();
  EXPECT_EQ(statement->field(0).type, kInt);
  statement->bindString(0, "a");
  statement->execute();
  EXPECT_EQ(statement->field(0).type, kText);
}

TEST_F(SqliteTypesWithRows, WhatTheTextTellsHoldsAgainstTheFirstRow) {
  EXPECT_EQ(data.types("select sum(1), date('2024-3-5'), count(*), concat(2024, '-03-05')"),
            (Types{kDouble, kDate, kInt, kText}));
}

TEST_F(SqliteTypesWithRows, AChangedTableIsReadAnew) {
  data.run("create table t (a int)");
  auto const statement = data.db.prepare("select * from t");
  statement->execute();
  EXPECT_EQ(statement->fieldCount(), 1);
  data.run("alter table t add column b date");
  statement->execute();
  ASSERT_EQ(statement->fieldCount(), 2);
  EXPECT_EQ(statement->field(1).type, kDate);
}

TEST_F(SqliteTypesWithRows, FieldsTellWhereTheyComeFrom) {
  data.run("create table alunos (id int, nome varchar(20))");
  auto const statement =
      data.query("select a.id as codigo, nome, count(*) as n, a.nome || 'x' from alunos a");
  moxDatabaseConnection::FieldInfo const& first = statement->field(0);
  EXPECT_EQ(first.name, "codigo");
  EXPECT_EQ(first.columnName, "id");
  EXPECT_EQ(first.tableAlias, "a");
  EXPECT_EQ(first.tableName, "alunos");
  EXPECT_EQ(statement->field(1).tableAlias, "a");
  EXPECT_EQ(statement->field(2).columnName, "");
  EXPECT_EQ(statement->field(2).tableAlias, "");
  EXPECT_EQ(statement->field(2).tableName, "");
  EXPECT_EQ(data.query("select id from alunos")->field(0).tableAlias, "alunos");
}

TEST(SqliteTypes, HostileNestingIsLeftToTheFirstRow) {
  std::string deep(3000, '(');
  deep += "1" + std::string(3000, ')');
  std::string nested = "select x from t";
  for (int i = 0; i < 60; ++i) {
    nested = fmt::format("select a{} from ({}) q, (select 1 b) r", i, nested);
  }
  auto const nothing = [](std::string const&, std::string const&) {
    return std::optional<FieldType>();
  };
  EXPECT_EQ(ResultTypes("select " + deep, {"a"}, nothing).at(0).type, kInt);
  EXPECT_EQ(ResultTypes(nested, {"a"}, nothing).at(0).type, std::nullopt);
  std::string wide = "with a0 as (select x)";
  for (int i = 1; i < 30; ++i) {
    wide += fmt::format(", a{} as (select * from a{} p, a{} q)", i, i - 1, i - 1);
  }
  EXPECT_EQ(ResultTypes(wide + " select y from a29", {"y"}, nothing).at(0).type, std::nullopt);
}

TEST(SqliteTypes, BrokenTextsTellNothing) {
  auto const nothing = [](std::string const&, std::string const&) {
    return std::optional<FieldType>();
  };
  for (char const* sql : {"",
                          "select",
                          "select from",
                          "select (",
                          "select a from (",
                          "with",
                          "with a",
                          "with a as",
                          "with a as (",
                          "select case when",
                          "select case end",
                          "select a.",
                          "select .a from .",
                          "select cast(",
                          "select coalesce(",
                          "select a as",
                          "select *",
                          "(",
                          "((select",
                          "select a,"}) {
    EXPECT_EQ(ResultTypes(sql, {"a", "b"}, nothing).at(1).type, std::nullopt) << sql;
    EXPECT_EQ(ResultTypes(sql, {"a"}, nothing).tableAlias(0, "").size(), 0u) << sql;
    ResultTypes(sql, {"a"}, nothing).tableAlias(0, "t");
  }
}

}  // namespace
}  // namespace mox::core
