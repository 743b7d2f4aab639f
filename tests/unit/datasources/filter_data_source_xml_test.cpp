#include "zyn/datasources/filter_data_source_xml.h"

#include <set>

#include "mox/zyn/datasources/filter_data_source.h"
#include "unit/datasources/definition_fixture.h"

namespace {

using Spec = moxFilterDataSourceSpec;

class FilterDataSourceXml : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxFilterDataSource> newSource() {
    return host_.get<moxFilterDataSource>("moxFilterDataSource");
  }

  std::shared_ptr<moxFilterDataSource> source(std::string const& content,
                                              std::string const& attributes = "") {
    return read<moxFilterDataSource>("<moxFilterDataSource " + attributes + ">" + content +
                                     "</moxFilterDataSource>");
  }

  /// The ids of the first condition among "Filters" with that content.
  std::set<int> idsOf(std::string const& values) {
    auto const made = source("<Filters><Valor>" + values + "</Valor></Filters>");
    return made->getFiltersSpec().at(0)->getIds();
  }
};

std::string const kWhole =
    "<moxFilterDataSource name=\"Do curso\" dataSource=\"Alunos\"><join>join t on t.a=a.id</join>"
    "<where>t.x&lt;1</where><group>t.g</group><order>t.o desc</order><Filters>"
    "<Valor plugin=\"moxIntegralInFilter\" tableNameOrigin=\"cursos\" columnNameOrigin=\"id\" "
    "tableName=\"c\" columnName=\"curso\"><value>-3</value><value>2</value><value>10</value>"
    "</Valor><Sql plugin=\"\" tableNameOrigin=\"\" columnNameOrigin=\"b\" tableName=\"\" "
    "columnName=\"\"><SQL>select id from v</SQL></Sql><SemFiltro plugin=\"p\" "
    "tableNameOrigin=\"to\" columnNameOrigin=\"co\" tableName=\"tn\" columnName=\"cn\"/></Filters>"
    "<selectColumns tipo=\"1\"><column tableName=\"\" tableNameOrigin=\"\" columnName=\"media\" "
    "columnNameOrigin=\"\" VisibleName=\"Média\" ColumnWidth=\"80\" Visible=\"1\" Avaliable=\"0\" "
    "Type=\"4\"><sql alias=\"media\" index=\"0\">[nota]/2</sql><columnSourceOrigin "
    "tableNameOrigin=\"notas\" columnNameOrigin=\"nota\" tableName=\"n\" columnName=\"nota\"/>"
    "</column></selectColumns></moxFilterDataSource>";

}  // namespace

TEST_F(FilterDataSourceXml, AnEmptyNodeGivesFalseAndChangesNothing) {
  auto const made = read<moxFilterDataSource>(kWhole);
  EXPECT_FALSE(made->load({}));
  EXPECT_FALSE(made->save({}));
  EXPECT_EQ(textOf(*made), kWhole);
}

TEST_F(FilterDataSourceXml, TheLeastSourceIsWrittenWithItsAttributesAndEmptyLists) {
  EXPECT_EQ(textOf(*newSource()),
            "<moxFilterDataSource name=\"\" dataSource=\"\"><Filters/><selectColumns tipo=\"0\"/>"
            "</moxFilterDataSource>");
}

TEST_F(FilterDataSourceXml, AnElementWithoutContentIsAFilterSourceThatChangesNothing) {
  EXPECT_EQ(textOf(*source("")), textOf(*newSource()));
}

TEST_F(FilterDataSourceXml, WhatIsWrittenIsReadAndWrittenTheSame) {
  EXPECT_EQ(textOf(*read<moxFilterDataSource>(kWhole)), kWhole);
}

TEST_F(FilterDataSourceXml, EachTextHasAnElementOfItsOwn) {
  auto const made = read<moxFilterDataSource>(kWhole);
  EXPECT_EQ(made->getName(), "Do curso");
  EXPECT_EQ(made->getDataSourceName(), "Alunos");
  EXPECT_EQ(made->getSQLJoin(), "join t on t.a=a.id");
  EXPECT_EQ(made->getSQLWhere(), "t.x<1");
  EXPECT_EQ(made->getSQLGroup(), "t.g");
  EXPECT_EQ(made->getSQLOrder(), "t.o desc");
}

TEST_F(FilterDataSourceXml, TheTagOfAConditionTellsItsKind) {
  auto const specs = read<moxFilterDataSource>(kWhole)->getFiltersSpec();
  ASSERT_EQ(specs.size(), 3u);
  EXPECT_EQ(specs[0]->getTipo(), Spec::kValor);
  EXPECT_EQ(specs[0]->getPluginFilter(), "moxIntegralInFilter");
  EXPECT_EQ(specs[0]->getColumnOrigin(),
            (moxSQLDataSourceColumn::SQLColum{"cursos", "id", "c", "curso"}));
  EXPECT_EQ(specs[0]->getIds(), (std::set<int>{-3, 2, 10}));
  EXPECT_EQ(specs[1]->getTipo(), Spec::kSql);
  EXPECT_EQ(specs[1]->getSQL(), "select id from v");
  EXPECT_EQ(specs[2]->getTipo(), Spec::kSemFiltro);
  EXPECT_EQ(specs[2]->getColumnOrigin(),
            (moxSQLDataSourceColumn::SQLColum{"to", "co", "tn", "cn"}));
}

TEST_F(FilterDataSourceXml, AValorWithTheValueTwiceHoldsItOnce) {
  EXPECT_EQ(idsOf("<value>7</value><value>5</value><value>7</value>"), (std::set<int>{5, 7}));
}

TEST_F(FilterDataSourceXml, BlanksAroundAnIdAreNoPartOfIt) {
  EXPECT_EQ(idsOf("<value>\n  12\t</value>"), std::set<int>{12});
}

TEST_F(FilterDataSourceXml, AnIdThatIsNoNumberIsReadAsZero) {
  for (auto const* const text : {"", " ", "doze", "12x", "1 2", "2147483648", "0x1F", "+3"}) {
    EXPECT_EQ(idsOf("<value>" + std::string(text) + "</value>"), std::set<int>{0}) << text;
  }
}

TEST_F(FilterDataSourceXml, TheSmallestAndTheLargestIdsAreKept) {
  EXPECT_EQ(idsOf("<value>-2147483648</value><value>2147483647</value>"),
            (std::set<int>{-2147483648, 2147483647}));
}

TEST_F(FilterDataSourceXml, ASqlWithoutItsStatementHasAnEmptyOne) {
  EXPECT_EQ(source("<Filters><Sql/></Filters>")->getFiltersSpec().at(0)->getSQL(), "");
}

TEST_F(FilterDataSourceXml, OldFilesKeepJoinAndWhereAmongTheFilters) {
  auto const made = source(
      "<Filters><Join><SQL>join t on 1=1</SQL></Join><Where><SQL>t.y=2</SQL></Where></Filters>");
  EXPECT_EQ(made->getSQLJoin(), "join t on 1=1");
  EXPECT_EQ(made->getSQLWhere(), "t.y=2");
  EXPECT_TRUE(made->getFiltersSpec().empty());
}

TEST_F(FilterDataSourceXml, WhatOldFilesKeepAmongTheFiltersIsWrittenInItsPlace) {
  auto const made = source("<Filters><Where><SQL>t.y=2</SQL></Where></Filters>");
  EXPECT_EQ(textOf(*made),
            "<moxFilterDataSource name=\"\" dataSource=\"\"><where>t.y=2</where><Filters/>"
            "<selectColumns tipo=\"0\"/></moxFilterDataSource>");
}

TEST_F(FilterDataSourceXml, AnOldElementWithoutStatementLeavesTheTextAsItIs) {
  auto const made = source("<where>a=1</where><join>j</join><Filters><Where/><Join/></Filters>");
  EXPECT_EQ(made->getSQLWhere(), "a=1");
  EXPECT_EQ(made->getSQLJoin(), "j");
}

TEST_F(FilterDataSourceXml, AnyOtherTagAmongTheFiltersIsSkipped) {
  auto const made = source(
      "<Filters><valor><value>1</value></valor><moxIntegralInFilter/><Group><SQL>g</SQL></Group>"
      "<SemFiltro/></Filters>");
  EXPECT_EQ(made->getFiltersSpec().size(), 1u);
  EXPECT_EQ(made->getSQLGroup(), "");
}

TEST_F(FilterDataSourceXml, OnlyOneAsTipoPutsTheColumnsInThePlaceOfTheSources) {
  for (auto const* const tipo : {"", "0", "2", "01", "yes"}) {
    auto const made = source("<selectColumns tipo=\"" + std::string(tipo) + "\"/>");
    EXPECT_EQ(made->getTipoRetornoSelect(), moxFilterDataSource::kAdiciona) << tipo;
  }
  EXPECT_EQ(source("<selectColumns tipo=\"1\"/>")->getTipoRetornoSelect(),
            moxFilterDataSource::kSubstitui);
}

TEST_F(FilterDataSourceXml, ReferencesOfColumnsMayPointForward) {
  auto const made = source(
      "<selectColumns tipo=\"0\"><column columnName=\"nome\"><refColumn tableName=\"\" "
      "columnName=\"id\"/></column><column columnName=\"id\"/></selectColumns>");
  auto const columns = made->columns();
  ASSERT_EQ(columns.size(), 2u);
  EXPECT_EQ(columns[0]->getIdColumn(), columns[1]);
}

TEST_F(FilterDataSourceXml, AFormatterOfAnUnknownClassIsTold) {
  auto const made = newSource();
  auto const held = document(
      "<moxFilterDataSource><selectColumns><column><Formatters Visual=\"moxNada\"><Visual/>"
      "</Formatters></column></selectColumns></moxFilterDataSource>");
  EXPECT_THROW(made->load(held->root()), moxPluginNotFound);
}

TEST_F(FilterDataSourceXml, AConditionOfANumberThatIsNoKindIsWrittenAsNoCondition) {
  auto const made = source("<Filters><Valor><value>1</value></Valor></Filters>");
  made->getFiltersSpec().at(0)->setTipo(static_cast<Spec::Tipos>(3));
  EXPECT_NE(textOf(*made).find("<Filters><SemFiltro "), std::string::npos);
}
