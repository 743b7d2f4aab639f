#include "escola/generator/example_database.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "mox/core/error.h"

// The example on SQLite. What every database must give alike stands among the contract tests.

namespace {

constexpr char const* kMemory = "sqlite::memory:";

class EscolaDatabase : public ::testing::Test {
 protected:
  escola::BuildOptions options(bool replace = false) {
    escola::BuildOptions result;
    result.url = kMemory;
    result.scale = {3, 0};
    result.replace = replace;
    return result;
  }

  void build() { escola::buildExample(*connection_, options()); }

  int number(std::string const& sql) {
    auto const statement = connection_->prepare(sql);
    statement->execute();
    return statement->fetch() ? statement->getInt(0) : -1;
  }

  int tableCount() { return number("select count(*) from sqlite_master where type='table'"); }

  std::unique_ptr<moxDatabaseConnection> connection_ = escola::openForExample(kMemory, "");
};

TEST_F(EscolaDatabase, HoldsWhatWasGenerated) {
  build();
  escola::ChecksumSink generated;
  escola::generate({}, {3, 0}, generated);
  EXPECT_EQ(escola::checksumReport(escola::readChecksums(*connection_)),
            escola::checksumReport(generated));
}

TEST_F(EscolaDatabase, KeepsEveryForeignKey) {
  build();
  auto const statement =
      connection_->prepare("select \"table\", parent from pragma_foreign_key_check");
  statement->execute();
  EXPECT_FALSE(statement->fetch()) << statement->getString(0) << " -> " << statement->getString(1);
  EXPECT_GT(number("select count(*) from pragma_foreign_key_list('escola_notas')"), 0);
}

TEST_F(EscolaDatabase, RefusesToReplaceTablesUnlessToldTo) {
  build();
  try {
    build();
    FAIL() << "the tables were replaced";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(),
              "The database already has the table ambiente_unidades; --force drops the "
              "example's tables and makes them anew");
  }
  EXPECT_GT(number("select count(*) from escola_alunos"), 0);
}

TEST_F(EscolaDatabase, ForceReplacesTheTablesAndLeavesOthersAlone) {
  build();
  connection_->execute("create table minha (a int)");
  connection_->execute("insert into minha values (7)");
  connection_->execute("delete from escola_notas");
  escola::buildExample(*connection_, options(true));
  EXPECT_GT(number("select count(*) from escola_notas"), 0);
  EXPECT_EQ(number("select a from minha"), 7);
}

TEST_F(EscolaDatabase, AFailureHalfWayLeavesNoTableOfTheExample) {
  connection_->execute("create table minha (a int)");
  connection_->execute(
      "create index escola_eventos_data on minha (a)");  // the name that the example wants
  EXPECT_THROW(build(), moxError);
  EXPECT_EQ(tableCount(), 1);
  EXPECT_THROW(build(), moxError);
}

TEST_F(EscolaDatabase, LeavesTheLineAsItFoundIt) {
  connection_->execute("pragma foreign_keys=1");
  connection_->execute("pragma synchronous=1");
  build();
  EXPECT_EQ(number("pragma foreign_keys"), 1);
  EXPECT_EQ(number("pragma synchronous"), 1);
}

TEST_F(EscolaDatabase, SchemaAndDescriptionsHaveTheSameColumnsInTheSameOrder) {
  using FieldType = moxDatabaseConnection::FieldType;
  static std::map<escola::ColumnType, FieldType> const kTypes{
      {escola::ColumnType::kInt, FieldType::kInt},
      {escola::ColumnType::kNumber, FieldType::kDouble},
      {escola::ColumnType::kDay, FieldType::kDate},
      {escola::ColumnType::kMoment, FieldType::kDate},
      {escola::ColumnType::kText, FieldType::kText},
      {escola::ColumnType::kBytes, FieldType::kBlob}};
  build();
  for (escola::Table const& table : escola::allTables()) {
    auto const statement = connection_->prepare("select * from " + std::string(table.name));
    statement->execute();
    ASSERT_EQ(statement->fieldCount(), static_cast<int>(table.columns.size())) << table.name;
    for (int index = 0; index < statement->fieldCount(); ++index) {
      escola::Column const& column = table.columns[static_cast<std::size_t>(index)];
      EXPECT_EQ(statement->field(index).name, column.name) << table.name;
      EXPECT_EQ(statement->field(index).type, kTypes.at(column.type))
          << table.name << "." << column.name;
    }
  }
}

TEST_F(EscolaDatabase, UnitsOwnSettingComesBeforeTheGeneralOne) {
  build();
  auto const statement = connection_->prepare(
      "select ambiente_buscadadostringconfiguracao('mox_genericos','dataBaseUtilizacao',?)");
  for (auto const& [unit, expected] : {std::pair{3, "2015-02-01"}, {5, "2017-02-01"}}) {
    statement->bindInt(0, unit);
    statement->execute();
    ASSERT_TRUE(statement->fetch());
    EXPECT_EQ(statement->getString(0), expected);
  }
}

}  // namespace
