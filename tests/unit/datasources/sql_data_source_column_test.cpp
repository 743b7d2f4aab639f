#include "zyn/datasources/sql_data_source_column.h"

#include <vector>

#include "mox/zyn/format/decimal_formatter.h"
#include "unit/datasources/sql_source_fixture.h"

using Types = moxDataMatrixTypes::Types;

namespace {

class SqlDataSourceColumn : public sql_source_test::SqlSourceTest {
 protected:
  std::shared_ptr<SQLDataSourceColumn> column(std::string const& attributes,
                                              std::string const& content = "") {
    auto made = std::make_shared<SQLDataSourceColumn>();
    EXPECT_TRUE(
        made->load(document("<Column " + attributes + ">" + content + "</Column>")->root()));
    return made;
  }

  std::string textOf(SQLDataSourceColumn& written) {
    auto const target = document("<Column/>");
    EXPECT_TRUE(written.save(target->root()));
    return target->writeText(0, 0);
  }
};

/// A source as far as references need one.
struct Columns {
  std::vector<std::shared_ptr<moxSQLDataSourceColumn>> list;
  std::vector<std::shared_ptr<moxSQLDataSourceColumn>> columns() const { return list; }
};

std::shared_ptr<SQLDataSourceColumn> called(std::string const& table, std::string const& name) {
  auto made = std::make_shared<SQLDataSourceColumn>();
  made->setTableName(table);
  made->setColumnName(name);
  return made;
}

}  // namespace

TEST_F(SqlDataSourceColumn, BeginsEmpty) {
  SQLDataSourceColumn const made;
  EXPECT_EQ(made.name(), "moxSQLDataSourceColumn");
  EXPECT_FALSE(made.getVisible());
  EXPECT_FALSE(made.getAvaliable());
  EXPECT_EQ(made.getWidth(), 0);
  EXPECT_EQ(made.getDbType(), 0);
  EXPECT_EQ(made.getSQLColumnIndex(), 0);
  EXPECT_EQ(made.getFormatter(), nullptr);
  EXPECT_EQ(made.getIdColumn(), nullptr);
}

TEST_F(SqlDataSourceColumn, VisibleIsTrueWhenTheFirstCharacterIsOne) {
  EXPECT_TRUE(column("Visible=\"10\" Avaliable=\"1x\"")->getVisible());
  EXPECT_TRUE(column("Visible=\"10\" Avaliable=\"1x\"")->getAvaliable());
  EXPECT_FALSE(column("Visible=\"01\" Avaliable=\"01\"")->getVisible());
  EXPECT_FALSE(column("Visible=\"01\" Avaliable=\"01\"")->getAvaliable());
  EXPECT_FALSE(column("Visible=\"\"")->getVisible());
  EXPECT_FALSE(column("")->getVisible());
}

TEST_F(SqlDataSourceColumn, DbNameGivesTheNameWhereColumnNameIsEmpty) {
  EXPECT_EQ(column("dbName=\"nome\"")->getColumnName(), "nome");
  EXPECT_EQ(column("columnName=\"\" dbName=\"nome\"")->getColumnName(), "nome");
  EXPECT_EQ(column("columnName=\"id\" dbName=\"nome\"")->getColumnName(), "id");
}

TEST_F(SqlDataSourceColumn, FullNameWithEqualOriginsHasNoParenthesis) {
  EXPECT_EQ(column("columnName=\"a\"")->getColumnNameFull(), "a");
  EXPECT_EQ(column("tableName=\"t\" columnName=\"a\" tableNameOrigin=\"t\" columnNameOrigin=\"a\"")
                ->getColumnNameFull(),
            "t.a");
}

TEST_F(SqlDataSourceColumn, FullNameTellsWhatTheDatabaseCallsDifferently) {
  EXPECT_EQ(column("tableName=\"t\" columnName=\"a\" tableNameOrigin=\"t\" columnNameOrigin=\"b\"")
                ->getColumnNameFull(),
            "t.a (b)");
  EXPECT_EQ(column("tableName=\"t\" columnName=\"a\" columnNameOrigin=\"b\"")->getColumnNameFull(),
            "t.a (b)");
  EXPECT_EQ(column("tableName=\"t\" columnName=\"a\" tableNameOrigin=\"s\" columnNameOrigin=\"a\"")
                ->getColumnNameFull(),
            "t.a (s)");
  EXPECT_EQ(column("tableName=\"a\" columnName=\"nome\" tableNameOrigin=\"pessoa\" "
                   "columnNameOrigin=\"nome_completo\"")
                ->getColumnNameFull(),
            "a.nome (pessoa.nome_completo)");
}

TEST_F(SqlDataSourceColumn, DatabaseTypesHaveTheirKindOfMatrixColumn) {
  std::vector<std::pair<std::string, Types>> const kinds = {
      {"0", Types::Int},    {"1", Types::Text}, {"2", Types::Int}, {"3", Types::Blob},
      {"4", Types::Double}, {"5", Types::Date}, {"6", Types::Int}, {"-1", Types::Int}};
  for (auto const& [type, kind] : kinds) {
    EXPECT_EQ(column("Type=\"" + type + "\"")->getDataMatrixType(), kind) << type;
  }
}

TEST_F(SqlDataSourceColumn, StartsFromAField) {
  moxDatabaseConnection::FieldInfo const field = {"aluno", "nome", "p", "pessoa",
                                                  moxDatabaseConnection::FieldType::kDouble};
  SQLDataSourceColumn made;
  made.startFrom(&field);
  EXPECT_EQ(made.getColumnName(), "aluno");
  EXPECT_EQ(made.getColumnNameOrigin(), "nome");
  EXPECT_EQ(made.getTableName(), "p");
  EXPECT_EQ(made.getTableNameOrigin(), "pessoa");
  EXPECT_EQ(made.getVisibleName(), "aluno");
  EXPECT_EQ(made.getDbType(), 4);
  EXPECT_EQ(made.getWidth(), 100);
  EXPECT_TRUE(made.getVisible());
  EXPECT_TRUE(made.getAvaliable());
}

TEST_F(SqlDataSourceColumn, StartsFromNothing) {
  SQLDataSourceColumn made;
  made.startFrom(nullptr);
  EXPECT_EQ(made.getWidth(), 100);
  EXPECT_TRUE(made.getVisible());
  EXPECT_TRUE(made.getAvaliable());
  EXPECT_EQ(made.getColumnName() + made.getColumnNameOrigin() + made.getTableName() +
                made.getTableNameOrigin() + made.getVisibleName(),
            "");
  EXPECT_EQ(made.getDbType(), 0);
}

TEST_F(SqlDataSourceColumn, TheChildCountsBeforeTheAttributeOfItsName) {
  auto const made =
      column("IconColumn=\"b\" refColumn=\"b\"",
             "<IconColumn tableName=\"t\" columnName=\"a\"/><refColumn columnName=\"\"/>");
  Columns const source{{called("", "b"), called("t", "a")}};
  made->updateRelations(&source);
  EXPECT_EQ(made->getIconColumn(), source.list[1]);
  EXPECT_EQ(made->getIdColumn(), nullptr);
}

TEST_F(SqlDataSourceColumn, AttributesOfOldFilesNameAColumnWithoutTable) {
  auto const made = column("IconColumn=\"a\" refColumn=\"b\"");
  Columns const source{{called("t", "a"), called("", "a"), called("", "b")}};
  made->updateRelations(&source);
  EXPECT_EQ(made->getIconColumn(), source.list[1]);
  EXPECT_EQ(made->getIdColumn(), source.list[2]);
}

TEST_F(SqlDataSourceColumn, OfSeveralMatchesTheLastOneIsReferredTo) {
  auto const made = column("", "<refColumn tableName=\"t\" columnName=\"a\"/>");
  Columns const source{{called("t", "a"), called("t", "a"), called("t", "b")}};
  made->updateRelations(&source);
  EXPECT_EQ(made->getIdColumn(), source.list[1]);
}

TEST_F(SqlDataSourceColumn, AReferenceThatMatchesNothingStaysEmptyAndIsLostOnSaving) {
  auto const made = column("IconColumn=\"x\"", "<refColumn tableName=\"t\" columnName=\"y\"/>");
  Columns const source{{called("t", "x"), called("", "y"), called("", "")}};
  made->updateRelations(&source);
  EXPECT_EQ(made->getIconColumn(), nullptr);
  EXPECT_EQ(made->getIdColumn(), nullptr);
  EXPECT_EQ(textOf(*made).find("IconColumn"), std::string::npos);
  EXPECT_EQ(textOf(*made).find("refColumn"), std::string::npos);
}

TEST_F(SqlDataSourceColumn, WithoutReferencesTheSourceIsNotAskedForItsColumns) {
  struct Unaskable {
    std::vector<std::shared_ptr<moxSQLDataSourceColumn>> columns() const {
      throw std::logic_error("asked");
    }
  } const source;
  EXPECT_NO_THROW(column("columnName=\"a\"")->updateRelations(&source));
}

TEST_F(SqlDataSourceColumn, AnEmptyColumnIsWrittenWithItsNinePlainAttributes) {
  SQLDataSourceColumn made;
  EXPECT_EQ(textOf(made),
            "<Column tableName=\"\" tableNameOrigin=\"\" columnName=\"\" columnNameOrigin=\"\" "
            "VisibleName=\"\" ColumnWidth=\"0\" Visible=\"0\" Avaliable=\"0\" Type=\"0\"/>");
}

TEST_F(SqlDataSourceColumn, EveryPartMakesTheRoundTrip) {
  std::string const text =
      "<Column tableName=\"a\" tableNameOrigin=\"aluno\" columnName=\"nome\" "
      "columnNameOrigin=\"nm\" VisibleName=\"Nome do aluno\" ColumnWidth=\"250\" Visible=\"1\" "
      "Avaliable=\"1\" Type=\"1\" dataType=\"varchar\">"
      "<Formatters Visual=\"moxTextFormatter\" Icon=\"moxIntegralFormatter\">"
      "<Visual description=\"\" prefix=\"&lt;\" suffix=\"\"/><Icon description=\"\" prefix=\"n\" "
      "suffix=\"\"/></Formatters>"
      "<FiltersType><moxTextInFilter visualRepresentation=\"edit\"/>"
      "<moxTextUniqueFilter visualRepresentation=\"\"/></FiltersType>"
      "<sql alias=\"nome\" index=\"-3\">upper([0]) || [1]</sql>"
      "<columnSourceOrigin tableNameOrigin=\"w\" columnNameOrigin=\"x\" tableName=\"y\" "
      "columnName=\"z\"/>"
      "<columnSourceOrigin tableNameOrigin=\"\" columnNameOrigin=\"\" tableName=\"\" "
      "columnName=\"q\"/></Column>";
  SQLDataSourceColumn made;
  ASSERT_TRUE(made.load(document(text)->root()));
  EXPECT_EQ(made.getVisibleName(), "Nome do aluno");
  EXPECT_EQ(made.getWidth(), 250);
  EXPECT_EQ(made.getDataType(), "varchar");
  ASSERT_NE(made.getFormatter(), nullptr);
  EXPECT_EQ(made.getFormatter()->name(), "moxTextFormatter");
  EXPECT_EQ(made.getFormatter()->getPrefix(), "<");
  EXPECT_EQ(made.getIconFormatter()->getPrefix(), "n");
  EXPECT_EQ(made.getSQLColumn(),
            std::make_pair(std::string("upper([0]) || [1]"), std::string("nome")));
  EXPECT_EQ(made.getSQLColumnIndex(), -3);
  ASSERT_EQ(made.getColumnOrigin().size(), 2u);
  EXPECT_EQ(made.getColumnOrigin()[0], (moxSQLDataSourceColumn::SQLColum{"w", "x", "y", "z"}));
  ASSERT_EQ(made.getAllowedFiltersType().size(), 2u);
  EXPECT_EQ(made.getAllowedFiltersType()[0].second, "edit");

  std::string const written = textOf(made);
  SQLDataSourceColumn again;
  ASSERT_TRUE(again.load(document(written)->root()));
  EXPECT_EQ(textOf(again), written);
  EXPECT_LT(written.find("<Formatters Visual="), written.find("<FiltersType>"));
  EXPECT_LT(written.find("<FiltersType>"), written.find("<sql alias=\"nome\" index=\"-3\">"));
  EXPECT_LT(written.find("<sql "), written.find("<columnSourceOrigin tableNameOrigin=\"w\""));
}

TEST_F(SqlDataSourceColumn, OnlyTheIconsFormatterMayBeSet) {
  SQLDataSourceColumn made;
  made.setIconFormatter(host_.get<moxGenericFormatter>("moxTextFormatter"));
  auto const read = std::make_shared<SQLDataSourceColumn>();
  read->load(document(textOf(made))->root());
  EXPECT_EQ(read->getFormatter(), nullptr);
  ASSERT_NE(read->getIconFormatter(), nullptr);
  EXPECT_EQ(read->getIconFormatter()->name(), "moxTextFormatter");
}

TEST_F(SqlDataSourceColumn, AFormatterOfAnUnknownClassIsTheRegistrysError) {
  EXPECT_THROW(column("", "<Formatters Visual=\"moxUnheardOf\"><Visual/></Formatters>"),
               moxPluginNotFound);
  EXPECT_THROW(column("", "<Formatters><Icon/></Formatters>"), moxPluginNotFound);
}

TEST_F(SqlDataSourceColumn, AFormatterNeedsItsChildAndAClassThatIsOne) {
  EXPECT_EQ(column("", "<Formatters Visual=\"moxTextFormatter\"/>")->getFormatter(), nullptr);
  EXPECT_EQ(
      column("", "<Formatters Visual=\"moxDataMatrix\"><Visual/></Formatters>")->getFormatter(),
      nullptr);
}

TEST_F(SqlDataSourceColumn, AnExpressionWithoutTextIsNotWritten) {
  SQLDataSourceColumn made;
  made.setSQLColumn({"", "alias"});
  made.setSQLColumnIndex(4);
  EXPECT_EQ(textOf(made).find("<sql"), std::string::npos);
  made.setSQLColumn({"1", ""});
  EXPECT_NE(textOf(made).find("<sql index=\"4\">1</sql>"), std::string::npos);
}

TEST_F(SqlDataSourceColumn, NumbersThatAreNoneOrTooLargeReadAsZero) {
  auto const made =
      column("ColumnWidth=\"99999999999999999999\" Type=\"x\"", "<sql index=\"1e9\">a</sql>");
  EXPECT_EQ(made->getWidth(), 0);
  EXPECT_EQ(made->getDbType(), 0);
  EXPECT_EQ(made->getSQLColumnIndex(), 0);
}

TEST_F(SqlDataSourceColumn, RemovesTheFirstAllowedFilterThatEqualsInBoth) {
  SQLDataSourceColumn made;
  made.addAllowedFiltersType({"a", "x"});
  made.addAllowedFiltersType({"a", "y"});
  made.addAllowedFiltersType({"a", "x"});
  made.removeAllowedFiltersType({"a", "z"});
  EXPECT_EQ(made.getAllowedFiltersType().size(), 3u);
  made.removeAllowedFiltersType({"a", "x"});
  ASSERT_EQ(made.getAllowedFiltersType().size(), 2u);
  EXPECT_EQ(made.getAllowedFiltersType()[0].second, "y");
  EXPECT_EQ(made.getAllowedFiltersType()[1].second, "x");
}

TEST_F(SqlDataSourceColumn, AnEmptyNodeGivesFalseAndChangesNothing) {
  SQLDataSourceColumn made;
  made.setColumnName("a");
  EXPECT_FALSE(made.load({}));
  EXPECT_FALSE(made.save({}));
  EXPECT_EQ(made.getColumnName(), "a");
}
