#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/core/xml_table.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "unit/items/items_fixture.h"
#include "zyn/items/zyn_collection.h"

// A collection from a file is read piece by piece, one that somebody else's document holds by its
// table while that has one, and by nodes elsewhere. Nobody may see which it was.

namespace {

constexpr std::string_view kDefinitions = R"(<moxZYNCollection parentLibraryName="L &amp; M">
  <!-- definitions of both forms -->
  <moxSQLDataSource name="Alunos" VisibleName="Os
alunos" whereand="a &lt; 1">
    <Prefix>set @a = 1</Prefix>
    <Command type="1"><from>alunos a</from><join/>
      <where>a.x &lt; 5 <!-- x --> and a.y</where></Command>
    <mainData tableName="a" columnName="id"/>
    <unidadeColumn tableName="a" columnName="unidade" allownull="1"/>
    <Columns>
      <Column tableName="a" tableNameOrigin="alunos" columnName="id" columnNameOrigin="id"
              VisibleName="Código" ColumnWidth="60" Visible="0" Avaliable="1" Type="2"
              dataType="d">
        <IconColumn tableName="a" columnName="unidade"/>
        <Formatters Visual="moxDecimalFormatter" Icon="moxTextFilter">
          <Visual prefix="R$ " precision="2" separator=","><thousand grouping="3" separator="."/>
            <span filler="*" width="9"/></Visual>
          <Icon name="n" prefix="&lt;" upper="1" trim="1"/>
        </Formatters>
        <FiltersType><moxTextUniqueFilter visualRepresentation="t"/></FiltersType>
        <sql alias="id" index="1"><![CDATA[a.id]]></sql>
        <columnSourceOrigin tableName="z" columnName="y"/>
      </Column>
      <Column tableName="a" columnName="unidade" Visible="1" Type="5" refColumn="id">
        <Formatters Visual="moxDateFormatter">
          <Visual mask="%d/%m/%Y" description="D"/></Formatters>
      </Column>
      <Column dbName="n" Type="4">
        <Formatters Visual="moxIntegralFormatter"><Visual suffix="!"/></Formatters>
      </Column>
    </Columns>
    <Order><By columnName="id" tableName="a" dir="Desc"/></Order>
    <Relations><Rel dataSource="Outra" columnName="c">
      <DataSourceOrigin tableName="a" columnName="id"/></Rel></Relations>
    <Filters>
      <column>
        <moxIntegralInFilter tableName="a" columnName="id" require="1" description="F">
        <position X="1" Y="2" spanX="3" spanY="4"/></moxIntegralInFilter></column>
      <custom>
        <moxTextUniqueFilter columnName="x" removePunctuation="1" visualRepresentation="v"/>
      </custom>
    </Filters>
  </moxSQLDataSource>
  <moxSQLDataSource name="Curta"><Command type="0">select 1 as a</Command>
    <Columns><moxDataMatrixTextColumn name="a"/><moxDataMatrixIntColumn name="b"/></Columns>
  </moxSQLDataSource>
  <moxSQLDataSource name="Antiga"><Sql>select 2</Sql><Columns><Column dbName="a"/></Columns>
    <General mainData="a"/></moxSQLDataSource>
  <moxNobodysItem name="x"/>
  <moxTestItem name="Um"/>
  <moxFormatterZYNItem><moxTextFormatter description="T" prefix="&gt;"/></moxFormatterZYNItem>
  <moxZYNPack name="P"/>
</moxZYNCollection>)";

struct Outcome {
  std::string text;                  // what the collection saves
  std::vector<std::string> details;  // of the failure
  std::vector<int> skippedLines;
};

enum class How { kByPieces, kByTable, kByNodes };

class CollectionTable : public items_test::ItemsTest {
 protected:
  Outcome read(std::string_view text, How how) {
    auto const collection = moxApp->get<moxZYNCollection>("moxZYNCollection");
    Outcome outcome;
    try {
      readInto(*collection, text, how);
    } catch (moxError const& error) {
      outcome.details = error.errorDetails();
      outcome.details.push_back(error.errorMessage());
    }
    auto const saved = moxApp->get<moxXMLDocument>("moxXMLDocument");
    collection->serialize(saved->root());
    outcome.text = saved->writeText(1, 0);
    auto const& report = dynamic_cast<moxZYNLoadReport const&>(*collection);
    for (auto const& element : report.skippedElements()) {
      outcome.skippedLines.push_back(element.line);
    }
    return outcome;
  }

  static void readInto(moxZYNCollection& collection, std::string_view text, How how) {
    auto const document = moxApp->get<moxXMLDocument>("moxXMLDocument");
    if (how == How::kByPieces) {
      auto const blob = moxApp->get<moxBlob>("moxBlob");
      blob->assign(text.data(), text.size());
      auto const& reader = dynamic_cast<moxXMLPieces const&>(*document);
      EXPECT_TRUE(dynamic_cast<zynCollection&>(collection).readPieces(reader, *blob));
      return;
    }
    document->loadText(text);
    if (how == How::kByNodes) {
      EXPECT_EQ(document->root()->elementName(), "moxZYNCollection");  // makes the nodes
    }
    collection.unserialize(document->root());
  }

  void expectSame(std::string_view text) {
    auto const nodes = read(text, How::kByNodes);
    for (How const how : {How::kByPieces, How::kByTable}) {
      auto const other = read(text, how);
      EXPECT_EQ(other.text, nodes.text);
      EXPECT_EQ(other.details, nodes.details);
      EXPECT_EQ(other.skippedLines, nodes.skippedLines);
    }
  }
};

TEST_F(CollectionTable, DefinitionsReadTheSameAsByNodes) {
  expectSame(kDefinitions);
  auto const read = this->read(kDefinitions, How::kByPieces);
  EXPECT_EQ(read.details, std::vector<std::string>());
  EXPECT_EQ(read.skippedLines, std::vector<int>({49}));
  EXPECT_NE(read.text.find("Os alunos"), std::string::npos);
  EXPECT_NE(read.text.find("a.x &lt; 5  and a.y"), std::string::npos);
}

TEST_F(CollectionTable, FailuresTellTheSamePlaceAsByNodes) {
  constexpr std::string_view kWrong = R"(<moxZYNCollection>
  <moxTestItem name="Um"/>
  <moxSQLDataSource name="Errada"><Command type="0">x</Command>
    <Columns><Column columnName="a"/></Columns>
    <Order>
      <By columnName="b"/>
    </Order>
  </moxSQLDataSource>
</moxZYNCollection>)";
  expectSame(kWrong);
  auto const details = read(kWrong, How::kByPieces).details;
  ASSERT_EQ(details.size(), 4U);
  EXPECT_EQ(details.back(), "Ordem By com coluna inválida");
  EXPECT_EQ(details[0], "item: moxSQLDataSource, line 3, name \"Errada\"");
  EXPECT_EQ(details[1], "element: By, line 6");
}

TEST_F(CollectionTable, AnItemThatRefusesEndsTheListAsByNodes) {
  constexpr std::string_view kRefused =
      "<moxZYNCollection><moxTestItem name='a'/><moxTestItem refuse='1'/><moxTestItem name='b'/>"
      "</moxZYNCollection>";
  expectSame(kRefused);
  EXPECT_EQ(read(kRefused, How::kByPieces).text.find("name=\"b\""), std::string::npos);
}

TEST_F(CollectionTable, ACollectionWithoutItemsKeepsItsLibrary) {
  expectSame("<moxZYNCollection parentLibraryName='L'><!-- none --></moxZYNCollection>");
  auto const read = this->read("<moxZYNCollection parentLibraryName='L'/>", How::kByPieces);
  EXPECT_EQ(read.text, "<moxZYNCollection parentLibraryName=\"L\"/>\n");
}

}  // namespace
