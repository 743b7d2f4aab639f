#include "zyn/datasources/sql_data_source_xml.h"

#include <vector>

#include "mox/core/blob.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "mox/zyn/search/search.h"
#include "unit/datasources/sql_source_fixture.h"

using sql_source_test::failureOf;

namespace {

using Strings = std::vector<std::string>;

class SqlDataSourceXml : public sql_source_test::SqlSourceTest {
 protected:
  /// What reading a source with those three columns and `content` fails with.
  sql_source_test::Failure failure(std::string const& content) {
    auto const made = newSource();
    auto const text = document("<moxSQLDataSource name=\"Alunos\"><Command type=\"0\">s</Command>" +
                               kThreeColumns + content + "</moxSQLDataSource>");
    return failureOf([&] { made->load(text->root()); });
  }
};

std::string const kShort =
    "<Columns><moxDataMatrixIntColumn name=\"i\"/><moxDataMatrixDoubleColumn name=\"d\"/>"
    "<moxDataMatrixTextColumn name=\"t\"/><moxDataMatrixDateColumn name=\"a\"/>"
    "<moxDataMatrixBlobColumn name=\"b\"/><unheardOf name=\"u\"/></Columns>";

/// A column as it is written, of that table and name.
std::string written(std::string const& table, std::string const& name) {
  return "<Column tableName=\"" + table + "\" tableNameOrigin=\"\" columnName=\"" + name +
         "\" columnNameOrigin=\"\" VisibleName=\"\" ColumnWidth=\"0\" Visible=\"0\" "
         "Avaliable=\"0\" Type=\"0\"/>";
}

}  // namespace

TEST_F(SqlDataSourceXml, AnEmptyNodeGivesFalseAndChangesNothing) {
  auto const made = threeColumns();
  EXPECT_FALSE(made->load({}));
  EXPECT_FALSE(made->save({}));
  EXPECT_EQ(made->columns().size(), 3u);
}

TEST_F(SqlDataSourceXml, AnElementWithoutContentIsASourceWithoutStatement) {
  auto const made = source("", "name=\"n\" VisibleName=\"v\"");
  EXPECT_EQ(made->getName(), "n");
  EXPECT_EQ(made->getHeaderName(), "v");
  EXPECT_EQ(made->getSQL(), "");
  EXPECT_FALSE(made->getModoCompatibilidade());
}

TEST_F(SqlDataSourceXml, TheLeastSourceIsWrittenWithItsAttributesCommandAndColumns) {
  EXPECT_EQ(textOf(*newSource()),
            "<moxSQLDataSource name=\"\" VisibleName=\"\" whereand=\"\"><Command type=\"0\"/>"
            "<Columns/></moxSQLDataSource>");
}

TEST_F(SqlDataSourceXml, ACommandWithoutTypeIsPlain) {
  auto const made = source("<Command>select 2</Command>");
  EXPECT_EQ(made->getSQLTipo(), moxSQLDataSource::kPlain);
  EXPECT_EQ(made->getSQL(), "select 2");
}

TEST_F(SqlDataSourceXml, ATypeOfAnyOtherTextThanOneIsPlain) {
  for (auto const* const type : {"", "0", "2", "01", "1 ", "true"}) {
    auto const made =
        source("<Command type=\"" + std::string(type) + "\">s<from>f</from></Command>");
    EXPECT_EQ(made->getSQLTipo(), moxSQLDataSource::kPlain) << type;
    EXPECT_EQ(made->getSQL(), "s") << type;
  }
}

TEST_F(SqlDataSourceXml, ShortColumnsHaveTheirTypesAndUnknownTagsAreIntegers) {
  auto const made = source("<Command>s</Command>" + kShort);
  using Types = moxDataMatrixTypes::Types;
  std::vector<moxDataSourceColumnType> const expected = {{"i", Types::Int},  {"d", Types::Double},
                                                         {"t", Types::Text}, {"a", Types::Date},
                                                         {"b", Types::Blob}, {"u", Types::Int}};
  EXPECT_EQ(made->getColumns(), expected);
  std::vector<int> types;
  for (auto const& column : made->columns()) {
    types.push_back(column->getDbType());
  }
  EXPECT_EQ(types, (std::vector<int>{2, 4, 1, 5, 3, 2}));
}

TEST_F(SqlDataSourceXml, ShortColumnsWrapTheStatementUnlessToldNotTo) {
  std::string const content = "<Command>select 1 as i</Command>" + kShort;
  EXPECT_EQ(source(content)->getSQL(), "select * from ( select 1 as i ) command ");
  EXPECT_EQ(source(content, "evitarSubquery=\"0\"")->getSQL(),
            "select * from ( select 1 as i ) command ");
  EXPECT_EQ(source(content, "evitarSubquery=\"\"")->getSQL(),
            "select * from ( select 1 as i ) command ");
  EXPECT_EQ(source(content, "evitarSubquery=\"1\"")->getSQL(), "select 1 as i");
  EXPECT_EQ(source(content, "evitarSubquery=\"yes\"")->getSQL(), "select 1 as i");
}

TEST_F(SqlDataSourceXml, FullColumnsNeverWrap) {
  EXPECT_EQ(threeColumns()->getSQL(), "select 1");
  EXPECT_EQ(source("<Command>s</Command><Columns/>")->getSQL(), "s");
  EXPECT_EQ(source("<Command>s</Command>")->getSQL(), "s");
}

TEST_F(SqlDataSourceXml, OneFullColumnMakesTheWholeListFull) {
  auto const made = source(
      "<Command>s</Command><Columns><moxDataMatrixIntColumn name=\"i\"/>"
      "<Column columnName=\"c\"/></Columns>");
  ASSERT_EQ(made->columns().size(), 1u);
  EXPECT_EQ(made->columnAt(0)->getColumnName(), "c");
  EXPECT_EQ(made->getSQL(), "s");
}

TEST_F(SqlDataSourceXml, ShortColumnsWrapTheUnusedTextOfAComposedStatement) {
  auto const made = source("<Command type=\"1\"><from>f</from></Command>" + kShort);
  EXPECT_EQ(made->getSQL(), "select ,,,,, from f");
  made->setSQLTipo(moxSQLDataSource::kPlain);
  EXPECT_EQ(made->getSQL(), "select * from (  ) command ");
}

TEST_F(SqlDataSourceXml, AWrappedSourceIsWrittenInFullAndNotWrappedAgain) {
  auto const made = source(
      "<Command>s</Command><Columns><moxDataMatrixTextColumn name=\"t\"/>"
      "</Columns>");
  auto const again = reread(*made);
  EXPECT_EQ(again->getSQL(), "select * from ( s ) command ");
  EXPECT_EQ(again->getColumns(), made->getColumns());
  EXPECT_EQ(textOf(*again), textOf(*made));
}

TEST_F(SqlDataSourceXml, ReferencesMayPointForward) {
  auto const made = source(
      "<Command/><Columns><Column columnName=\"a\"><IconColumn tableName=\"t\" columnName=\"c\"/>"
      "<refColumn tableName=\"\" columnName=\"b\"/></Column><Column columnName=\"b\"/>"
      "<Column tableName=\"t\" columnName=\"c\" refColumn=\"a\"/></Columns>");
  EXPECT_EQ(made->columnAt(0)->getIconColumn(), made->columnAt(2));
  EXPECT_EQ(made->columnAt(0)->getIdColumn(), made->columnAt(1));
  EXPECT_EQ(made->columnAt(2)->getIdColumn(), made->columnAt(0));
  auto const again = reread(*made);
  EXPECT_EQ(again->columnAt(0)->getIconColumn(), again->columnAt(2));
  EXPECT_EQ(again->columnAt(0)->getIdColumn(), again->columnAt(1));
  EXPECT_EQ(textOf(*again), textOf(*made));
}

TEST_F(SqlDataSourceXml, AColumnMayReferToItself) {
  auto const made = source(
      "<Command/><Columns><Column columnName=\"a\"><refColumn columnName=\"a\"/></Column>"
      "</Columns>");
  EXPECT_EQ(made->columnAt(0)->getIdColumn(), made->columnAt(0));
}

TEST_F(SqlDataSourceXml, OrderNamesColumnsInEitherAttribute) {
  auto const made = threeColumns(
      "<Order><By tableName=\"u\" column=\"nome\" dir=\"Desc\"/>"
      "<By tableName=\"t\" columnName=\"id\" column=\"x\" dir=\"desc\"/></Order>");
  auto const order = made->getOrderColumns();
  ASSERT_EQ(order.size(), 2u);
  EXPECT_EQ(order[0].first, made->columnAt(2));
  EXPECT_TRUE(order[0].second);
  EXPECT_EQ(order[1].first, made->columnAt(0));
  EXPECT_FALSE(order[1].second);
  EXPECT_NE(textOf(*made).find("<Order><By columnName=\"nome\" tableName=\"u\" "
                               "columnNameOrigin=\"\" tableNameOrigin=\"\" dir=\"Desc\"/>"
                               "<By columnName=\"id\" tableName=\"t\" columnNameOrigin=\"\" "
                               "tableNameOrigin=\"\"/></Order>"),
            std::string::npos);
}

TEST_F(SqlDataSourceXml, AnOrderByAWrongColumnIsRefused) {
  EXPECT_EQ(failure("<Order><By columnName=\"id\"/></Order>").message,
            "Ordem By com coluna inválida");
  EXPECT_EQ(failure("<Order><By/></Order>").message, "Ordem By com coluna inválida");
  EXPECT_EQ(failure("<Order><By tableName=\"t\" columnName=\"ID\"/></Order>").message,
            "Ordem By com coluna inválida");
}

TEST_F(SqlDataSourceXml, AWrongColumnIsToldWithElementLineAndTheColumnsThereAre) {
  auto const told = failure("\n\n<Order><By tableName=\"t\" columnName=\"x\"/></Order>");
  EXPECT_EQ(told.details,
            (Strings{"element: By, line 3",
                     "no column is called \"t.x\" (tableName \"t\", columnName \"x\"); the source "
                     "has t.id, t.nome, u.nome"}));
}

TEST_F(SqlDataSourceXml, ACollectionAddsTheItemToTheDetailsOfAFailure) {
  auto const collection = host_.get<moxZYNCollection>("moxZYNCollection");
  auto const text = document(
      "<moxZYNCollection>\n<moxSQLDataSource name=\"Alunos\"><Command/>\n"
      "<Order><By column=\"x\"/></Order></moxSQLDataSource></moxZYNCollection>");
  auto const told = failureOf([&] { collection->unserialize(text->root()); });
  EXPECT_EQ(told.message, "Ordem By com coluna inválida");
  EXPECT_EQ(told.details,
            (Strings{"item: moxSQLDataSource, line 2, name \"Alunos\"", "element: By, line 3",
                     "no column is called \"x\" (tableName \"\", columnName \"x\"); the source has "
                     "no columns"}));
}

TEST_F(SqlDataSourceXml, RelationsMakeTheRoundTrip) {
  auto const made = threeColumns(
      "<Relations><Rel dataSource=\"Turmas\" columnName=\"id_turma\"><DataSourceOrigin "
      "tableName=\"t\" columnName=\"id\"/></Rel></Relations>");
  auto const relations = made->getRelations();
  ASSERT_EQ(relations.size(), 1u);
  EXPECT_EQ(relations[0].dataSource, "Turmas");
  EXPECT_EQ(relations[0].columnName, "id_turma");
  EXPECT_EQ(relations[0].column, made->columnAt(0));
  EXPECT_NE(textOf(*made).find(
                "<Relations><Rel dataSource=\"Turmas\" columnName=\"id_turma\"><DataSourceOrigin "
                "columnNameOrigin=\"\" tableNameOrigin=\"\" columnName=\"id\" tableName=\"t\"/>"
                "</Rel></Relations>"),
            std::string::npos);
  EXPECT_EQ(textOf(*reread(*made)), textOf(*made));
}

TEST_F(SqlDataSourceXml, ARelationOfAWrongColumnOrOfNoneIsRefused) {
  EXPECT_EQ(
      failure("<Relations><Rel><DataSourceOrigin columnName=\"id\"/></Rel></Relations>").message,
      "Relação entre datasources inválida");
  auto const told = failure("<Relations><Rel dataSource=\"x\"/></Relations>");
  EXPECT_EQ(told.message, "Relação entre datasources inválida");
  EXPECT_EQ(told.details,
            (Strings{"element: Rel, line 1", "it needs a child \"DataSourceOrigin\""}));
}

TEST_F(SqlDataSourceXml, ARelationThatLostItsColumnIsNotWritten) {
  auto const made = newSource();
  made->setRelations({{"x", "y", nullptr}});
  EXPECT_EQ(textOf(*made).find("Relations"), std::string::npos);
}

TEST_F(SqlDataSourceXml, RolesNameTheirColumn) {
  auto const made = threeColumns(
      "<mainData tableName=\"t\" columnName=\"nome\"/><statusColumn tableName=\"u\" "
      "columnName=\"nome\"/><unidadeColumn tableName=\"t\" columnName=\"id\" allownull=\"0\"/>"
      "<descricaoColumn tableName=\"t\" columnName=\"nome\"/>");
  EXPECT_EQ(made->getMainColumn(), made->columnAt(1));
  EXPECT_EQ(made->getStatusColumn(), made->columnAt(2));
  EXPECT_EQ(made->getUnidadeColumn().first, made->columnAt(0));
  EXPECT_FALSE(made->getUnidadeColumn().second);
  EXPECT_EQ(made->getDescricaoColumn(), made->columnAt(1));
  EXPECT_EQ(textOf(*reread(*made)), textOf(*made));
}

TEST_F(SqlDataSourceXml, ARoleWithoutSuchAColumnStaysEmpty) {
  auto const made = threeColumns(
      "<mainData tableName=\"t\" columnName=\"x\"/><statusColumn columnName=\"id\"/>"
      "<descricaoColumn/>");
  EXPECT_EQ(made->getMainColumn(), nullptr);
  EXPECT_EQ(made->getStatusColumn(), nullptr);
  EXPECT_EQ(made->getUnidadeColumn().first, nullptr);
  EXPECT_EQ(made->getDescricaoColumn(), nullptr);
}

TEST_F(SqlDataSourceXml, OfSeveralColumnsOfTheNamesTheLastHasTheRole) {
  auto const made = source(
      "<Command/><Columns><Column columnName=\"a\"/><Column columnName=\"a\"/></Columns>"
      "<mainData columnName=\"a\"/>");
  EXPECT_EQ(made->getMainColumn(), made->columnAt(1));
}

TEST_F(SqlDataSourceXml, AllownullIsReadOnlyWhereTheUnitColumnIs) {
  EXPECT_FALSE(source("<Command/>" + kThreeColumns, "allownull=\"1\"")->getUnidadeColumn().second);
  for (auto const& [text, isAllowed] :
       std::vector<std::pair<std::string, bool>>{{"1", true}, {"0", false}, {"true", false}}) {
    auto const made = threeColumns("<unidadeColumn tableName=\"t\" columnName=\"id\" allownull=\"" +
                                   text + "\"/>");
    EXPECT_EQ(made->getUnidadeColumn().second, isAllowed) << text;
    EXPECT_EQ(reread(*made)->getUnidadeColumn().second, isAllowed) << text;
  }
}

TEST_F(SqlDataSourceXml, FiltersAreBoundToTheirColumnOrStayFree) {
  auto const made = threeColumns(
      "<Filters><custom><moxTextUniqueFilter columnName=\"{{nome}}\" description=\"c\"/></custom>"
      "<column><moxIntegralInFilter tableName=\"t\" columnName=\"id\" description=\"b\"/></column>"
      "</Filters>");
  auto const filters = made->getFilters();
  ASSERT_EQ(filters.size(), 2u);
  EXPECT_EQ(filters[0]->name(), "moxIntegralInFilter");
  EXPECT_EQ(filters[0]->getSQLDataSourceColumn(), made->columnAt(0));
  EXPECT_EQ(filters[1]->name(), "moxTextUniqueFilter");
  EXPECT_EQ(filters[1]->getSQLDataSourceColumn(), nullptr);
  EXPECT_EQ(filters[1]->getColumn(), "{{nome}}");
}

TEST_F(SqlDataSourceXml, AFilterWithoutColumnIsWrittenUnderCustomAndComesBackSo) {
  auto const made = threeColumns();
  auto const filter = host_.get<moxFilterSpecification>("moxIntegralUniqueFilter");
  filter->setColumn("{{id}}");
  made->addFilter(filter);
  auto const text = textOf(*made);
  EXPECT_NE(text.find("<Filters><custom><moxIntegralUniqueFilter "), std::string::npos);
  EXPECT_EQ(text.find("<column>"), std::string::npos);
  auto const again = reread(*made)->getFilters();
  ASSERT_EQ(again.size(), 1u);
  EXPECT_EQ(again[0]->getSQLDataSourceColumn(), nullptr);
  EXPECT_EQ(again[0]->getColumn(), "{{id}}");
}

TEST_F(SqlDataSourceXml, FiltersOfBothKindsMakeTheRoundTrip) {
  auto const made = source(
      "<Command/><Columns><Column tableName=\"t\" columnName=\"id\" columnNameOrigin=\"id_aluno\"/>"
      "</Columns><Filters><column><moxIntegralUniqueFilter tableName=\"t\" columnName=\"id\"/>"
      "</column><custom><moxDateRangeFilter columnName=\"{{d}}\"/></custom></Filters>");
  auto const text = textOf(*made);
  EXPECT_LT(text.find("<Filters><column><moxIntegralUniqueFilter"), text.find("<custom>"));
  auto const again = reread(*made);
  EXPECT_EQ(textOf(*again), text);
  ASSERT_EQ(again->getFilters().size(), 2u);
  EXPECT_EQ(again->getFilters()[0]->getSQLDataSourceColumn(), again->columnAt(0));
  EXPECT_EQ(again->getFilters()[0]->getColumn(), "id_aluno");
}

TEST_F(SqlDataSourceXml, AFilterOnAWrongColumnIsRefused) {
  EXPECT_EQ(failure("<Filters><column><moxIntegralInFilter columnName=\"id\"/></column></Filters>")
                .message,
            "Coluna de Filtro inválida");
  EXPECT_EQ(failure("<Filters><column><moxIntegralInFilter/></column></Filters>").message,
            "Coluna de Filtro inválida");
}

TEST_F(SqlDataSourceXml, AFilterOfAnUnknownClassIsTheRegistrysError) {
  for (auto const* const list : {"column", "custom"}) {
    auto const made = newSource();
    auto const text = document("<r><Command/><Filters><" + std::string(list) +
                               "><moxUnheardOf/></" + list + "></Filters></r>");
    EXPECT_THROW(made->load(text->root()), moxPluginNotFound) << list;
  }
}

TEST_F(SqlDataSourceXml, AClassThatIsNoFilterIsRefused) {
  auto const told = failure("<Filters><custom><moxDataMatrix/></custom></Filters>");
  EXPECT_EQ(told.message, "Filtro inválido: moxDataMatrix");
  EXPECT_EQ(told.details, (Strings{"element: moxDataMatrix, line 1",
                                   "the class of this name is no filter specification"}));
}

TEST_F(SqlDataSourceXml, AComposedStatementNeedsItsFrom) {
  auto const made = newSource();
  auto const text = document(
      "<moxSQLDataSource name=\"Alunos\"><Command type=\"1\"><where>1=1</where></Command>"
      "</moxSQLDataSource>");
  auto const told = failureOf([&] { made->load(text->root()); });
  EXPECT_EQ(told.message, "Fonte de dados Alunos sem \"from\"");
  EXPECT_EQ(told.details,
            (Strings{"element: Command, line 1",
                     "a statement of type 1 needs a child \"from\", which may be empty"}));
  EXPECT_EQ(source("<Command type=\"1\"><from/></Command>")->getSQL(), "select  from ");
}

TEST_F(SqlDataSourceXml, AComposedStatementMakesTheRoundTrip) {
  auto const made = source(
      "<Command type=\"1\"><group>a.id</group><where>a.x &lt; 2</where><join>join b</join>"
      "<from>aluno a</from></Command>");
  EXPECT_EQ(textOf(*made),
            "<moxSQLDataSource name=\"\" VisibleName=\"\" whereand=\"\"><Command type=\"1\">"
            "<from>aluno a</from><join>join b</join><where>a.x &lt; 2</where><group>a.id</group>"
            "</Command><Columns/></moxSQLDataSource>");
  EXPECT_EQ(reread(*made)->getSQL(), "select  from aluno a join b where a.x < 2 group by a.id");
  EXPECT_EQ(textOf(*source("<Command type=\"1\"><from/></Command>")),
            "<moxSQLDataSource name=\"\" VisibleName=\"\" whereand=\"\"><Command type=\"1\">"
            "<from/></Command><Columns/></moxSQLDataSource>");
}

TEST_F(SqlDataSourceXml, TextsInPiecesAreReadWhole) {
  auto const made = source(
      "<Prefix>set <!-- first -->@a = 1</Prefix><Sufix><![CDATA[drop table t]]></Sufix>"
      "<Command type=\"0\">select <![CDATA[a < b]]> from t</Command>",
      "whereand=\"and\"");
  EXPECT_EQ(made->getPrefix(), "set @a = 1");
  EXPECT_EQ(made->getSufix(), "drop table t");
  EXPECT_EQ(made->getSQL(), "select a < b from t");
  EXPECT_EQ(made->getWhereAnd(), "and");
}

TEST_F(SqlDataSourceXml, EveryPartIsWrittenInItsPlace) {
  auto const made = source(
      "<descricaoColumn tableName=\"u\" columnName=\"nome\"/><unidadeColumn tableName=\"t\" "
      "columnName=\"id\" allownull=\"1\"/><statusColumn tableName=\"t\" columnName=\"nome\"/>"
      "<mainData tableName=\"t\" columnName=\"id\"/><Sufix>drop table x</Sufix>"
      "<Prefix>create table x</Prefix><Command type=\"0\">select * from x</Command>"
      "<Relations><Rel dataSource=\"s\" columnName=\"c\"><DataSourceOrigin tableName=\"t\" "
      "columnName=\"id\"/></Rel></Relations><Order><By tableName=\"t\" columnName=\"id\"/></Order>"
      "<Filters><custom><moxIntegralInFilter columnName=\"x\"/></custom></Filters>" +
          kThreeColumns,
      "whereand=\"and\" VisibleName=\"Todos\" name=\"Alunos\"");
  auto const reference = [](char const* table, char const* column) {
    return " tableName=\"" + std::string(table) + "\" columnName=\"" + column +
           "\" tableNameOrigin=\"\" columnNameOrigin=\"\"";
  };
  std::string const expected =
      "<moxSQLDataSource name=\"Alunos\" VisibleName=\"Todos\" whereand=\"and\">"
      "<Prefix>create table x</Prefix><Sufix>drop table x</Sufix>"
      "<Command type=\"0\">select * from x</Command>"
      "<mainData" +
      reference("t", "id") + "/><statusColumn" + reference("t", "nome") + "/><unidadeColumn" +
      reference("t", "id") + " allownull=\"1\"/><descricaoColumn" + reference("u", "nome") +
      "/><Columns>" + written("t", "id") + written("t", "nome") + written("u", "nome") +
      "</Columns><Order><By columnName=\"id\" tableName=\"t\" columnNameOrigin=\"\" "
      "tableNameOrigin=\"\"/></Order><Relations><Rel dataSource=\"s\" columnName=\"c\">"
      "<DataSourceOrigin columnNameOrigin=\"\" tableNameOrigin=\"\" columnName=\"id\" "
      "tableName=\"t\"/></Rel></Relations><Filters><custom><moxIntegralInFilter ";
  auto const text = textOf(*made);
  EXPECT_EQ(text.substr(0, expected.size()), expected);
  EXPECT_EQ(textOf(*reread(*made)), text);
  EXPECT_EQ(made->getPrefix(), "create table x");
  EXPECT_EQ(made->getSufix(), "drop table x");
  EXPECT_EQ(made->getWhereAnd(), "and");
}

TEST_F(SqlDataSourceXml, TheOldFormHasAStatementColumnsFiltersAndAMainColumn) {
  auto const made = source(
      "<Sql>select * from aluno</Sql><Columns><Column dbName=\"id\" refColumn=\"nome\"/>"
      "<Column dbName=\"nome\" tableName=\"t\"/><Column dbName=\"nome\"/></Columns>"
      "<Filters><moxIntegralInFilter columnName=\"id\"/></Filters><General mainData=\"nome\"/>"
      "<Order><By columnName=\"nothing\"/></Order><unidadeColumn columnName=\"id\"/>",
      "name=\"Velho\"");
  EXPECT_TRUE(made->getModoCompatibilidade());
  EXPECT_EQ(made->getSQLTipo(), moxSQLDataSource::kPlain);
  EXPECT_EQ(made->getSQL(), "select * from aluno");
  ASSERT_EQ(made->columns().size(), 3u);
  EXPECT_EQ(made->columnAt(0)->getIdColumn(), made->columnAt(2));
  ASSERT_EQ(made->getFilters().size(), 1u);
  EXPECT_EQ(made->getFilters()[0]->getSQLDataSourceColumn(), nullptr);
  EXPECT_EQ(made->getMainColumn(), made->columnAt(1));
  EXPECT_TRUE(made->getOrderColumns().empty());
  EXPECT_EQ(made->getUnidadeColumn().first, nullptr);
}

TEST_F(SqlDataSourceXml, TheOldFormIsWrittenAsTheNewOne) {
  auto const made = source("<Sql>s</Sql><Columns><Column dbName=\"id\"/></Columns>");
  EXPECT_EQ(textOf(*made),
            "<moxSQLDataSource name=\"\" VisibleName=\"\" whereand=\"\"><Command type=\"0\">s"
            "</Command><Columns>" +
                written("", "id") + "</Columns></moxSQLDataSource>");
  EXPECT_FALSE(reread(*made)->getModoCompatibilidade());
}

TEST_F(SqlDataSourceXml, AMainColumnOfTheOldFormThatThereIsNotStaysEmpty) {
  EXPECT_EQ(source("<Sql>s</Sql><General mainData=\"x\"/>")->getMainColumn(), nullptr);
  EXPECT_EQ(source("<Sql>s</Sql><Columns><Column/></Columns><General/>")->getMainColumn(), nullptr);
}

TEST_F(SqlDataSourceXml, WithoutCommandAndSqlNothingMoreIsRead) {
  auto const made = source("<Prefix>p</Prefix>" + kThreeColumns, "whereand=\"and\"");
  EXPECT_EQ(made->getPrefix(), "p");
  EXPECT_TRUE(made->columns().empty());
  EXPECT_EQ(made->getWhereAnd(), "");
  EXPECT_FALSE(made->getModoCompatibilidade());
}

TEST_F(SqlDataSourceXml, ReadingAddsToAUsedSource) {
  auto const made = threeColumns("<Order><By tableName=\"t\" columnName=\"id\"/></Order>");
  made->load(document("<r name=\"n\"><Command>s</Command><Columns><Column columnName=\"x\"/>"
                      "</Columns><Order><By columnName=\"x\"/></Order></r>")
                 ->root());
  EXPECT_EQ(made->getName(), "n");
  EXPECT_EQ(made->getSQL(), "s");
  EXPECT_EQ(made->columns().size(), 4u);
  EXPECT_EQ(made->getOrderColumns().size(), 2u);
}

TEST_F(SqlDataSourceXml, TextsOfManyLinesKeepTheirBytes) {
  auto const made = newSource();
  made->setSQL("select '<a>' & \"x\"\n\t, 'ção'\r\n -- fim");
  made->setHeaderName("a\tb\nc");
  auto const again = reread(*made);
  EXPECT_EQ(again->getSQL(), made->getSQL());
  EXPECT_EQ(again->getHeaderName(), made->getHeaderName());
}

TEST_F(SqlDataSourceXml, ManyColumnsAreListedInPartToTheAuthor) {
  std::string content = "<Command/><Columns>";
  for (int i = 0; i < 50; ++i) {
    content += "<Column columnName=\"c" + std::to_string(i) + "\"/>";
  }
  auto const text = document("<r>" + content + "</Columns><Order><By column=\"x\"/></Order></r>");
  auto const made = newSource();
  auto const told = failureOf([&] { made->load(text->root()); });
  ASSERT_EQ(told.details.size(), 2u);
  EXPECT_NE(told.details[1].find("c38, c39, ..."), std::string::npos);
  EXPECT_EQ(told.details[1].find("c40"), std::string::npos);
}
