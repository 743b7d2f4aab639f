#include "cli/definitions/unread_parts.h"

#include <gtest/gtest.h>

#include "mox/core/blob.h"
#include "mox/core/xml.h"
#include "mox/core/xml_table.h"
#include "support/test_host.h"

namespace mox::cli {
namespace {

using Texts = std::vector<std::string>;

class UnreadPartsTest : public testing::Test {
 protected:
  /// What is told of the items, which begin in the second line of "a.xml".
  Texts toldOf(std::string const& items) {
    auto const text = "<moxZYNCollection>\n" + items + "\n</moxZYNCollection>";
    auto const bytes = host_.get<moxBlob>("moxBlob");
    bytes->assign(text.data(), text.size());
    auto const document = host_.get<moxXMLDocument>("moxXMLDocument");
    Texts told;
    EXPECT_TRUE(dynamic_cast<moxXMLPieces const&>(*document).readPieces(
        *bytes, [&](moxXMLTable const& table, std::uint32_t element) {
          if (element != 0) {
            auto const parts = unreadParts(table, element, "a.xml");
            told.insert(told.end(), parts.begin(), parts.end());
          }
        }));
    return told;
  }

  TestHost host_;
};

TEST_F(UnreadPartsTest, SoundSourcesOfAllKindsHaveNone) {
  EXPECT_EQ(
      toldOf(
          R"(<moxAggregationDataSource name="a" dataSource="n" generateTempTable="0" countColumn="1">
<moxDataMatrixAggregator><Indexes><Index name="k"/></Indexes>
<Functions><moxDoubleAvg source="v" target="m"/></Functions></moxDataMatrixAggregator>
</moxAggregationDataSource>
<moxSorterDataSource name="s" source="a" replace="no" userDefined="yes" description="Ordem">
<column name="k" desc="K" dir="desc"/><other name="m" dir="asc"/></moxSorterDataSource>
<moxObjectDataSource name="o"><Sql>delete from t</Sql><Binds><moxTextUniqueFilter any="x"><p/>
</moxTextUniqueFilter></Binds></moxObjectDataSource>
<moxUnionDataSource name="u" generateTempTable="1"><sources><source name="a">
<moxDataMatrixIntColumn name="k"/></source></sources></moxUnionDataSource>
<moxExpressionDataSource name="e" source="a" convertZeroToNull="1"><expressions>
<moxColumnExpression name="x" type="1" decimalPrecision="2" decimalOperation="1">m(0)
</moxColumnExpression></expressions></moxExpressionDataSource>
<moxDataSourcePivoting name="p" source="a"><columns><column source="k" formatter=""/></columns>
<rows><row source="k"/></rows><cells><cell source="m" aggregation="moxDoubleAvg"/></cells>
</moxDataSourcePivoting>
<moxJoinDataSource name="j"><sources><source name="a"><columns>
<moxDataMatrixIntColumn columnName="k" acolumnAlias="k"/></columns><joins><on
columnNameOrigin="k" columnNameJoin="k" sourceNameRelac="" columnNameRelac=""/></joins></source>
</sources></moxJoinDataSource>)"),
      Texts{});
}

TEST_F(UnreadPartsTest, DefinitionsOfOtherKindsAreLeftAlone) {
  EXPECT_EQ(toldOf("<moxSQLDataSource any=\"x\"><Any/></moxSQLDataSource><moxFuture/>"), Texts{});
}

TEST_F(UnreadPartsTest, AttributesOfOtherNamesAreToldWithThoseThatAreRead) {
  EXPECT_EQ(toldOf("<moxAggregationDataSource name=\"a\" source=\"n\"/>"),
            (Texts{"a.xml:2: moxAggregationDataSource does not read its attribute source; it reads "
                   "name, dataSource, generateTempTable, countColumn",
                   "a.xml:2: moxAggregationDataSource has no dataSource"}));
}

TEST_F(UnreadPartsTest, ElementsOfOtherNamesAreToldWithTheirLine) {
  EXPECT_EQ(toldOf("<moxAggregationDataSource name=\"a\" dataSource=\"n\">\n"
                   "<moxDataMatrixAggregator><Indexes>\n<Indice name=\"k\"/></Indexes>\n<Function/>"
                   "</moxDataMatrixAggregator></moxAggregationDataSource>"),
            (Texts{"a.xml:4: Indexes does not read Indice inside of it; it reads Index",
                   "a.xml:5: moxDataMatrixAggregator does not read Function inside of it; it reads "
                   "Indexes, Functions"}));
}

TEST_F(UnreadPartsTest, OfAListThatStandsTwiceTheSecondIsTold) {
  EXPECT_EQ(toldOf("<moxDataSourcePivoting name=\"p\" source=\"n\"><rows/>\n<rows><row/></rows>"
                   "</moxDataSourcePivoting>"),
            Texts{"a.xml:3: moxDataSourcePivoting reads its first rows alone"});
}

TEST_F(UnreadPartsTest, ValuesThatAreNoneAreToldWithThoseThatThereAre) {
  EXPECT_EQ(
      toldOf("<moxExpressionDataSource name=\"e\" source=\"n\" convertZeroToNull=\"true\">"
             "<expressions>\n<moxColumnExpression name=\"x\" type=\"2\" decimalPrecision=\"two\" "
             "decimalOperation=\"cut\">1</moxColumnExpression></expressions>"
             "</moxExpressionDataSource>\n"
             "<moxSorterDataSource name=\"s\" source=\"e\" userDefined=\"1\" replace=\"\">\n"
             "<column name=\"x\" dir=\"down\"/></moxSorterDataSource>"),
      (Texts{
          "a.xml:2: convertZeroToNull=\"true\" of moxExpressionDataSource should be 0 or 1",
          "a.xml:3: type=\"2\" of moxColumnExpression should be 0 or 1",
          "a.xml:3: decimalPrecision=\"two\" of moxColumnExpression should be a number from 0 on",
          "a.xml:3: decimalOperation=\"cut\" of moxColumnExpression should be 0 or 1",
          "a.xml:4: userDefined=\"1\" of moxSorterDataSource should be yes or no",
          "a.xml:5: dir=\"down\" of column should be asc or desc"}));
}

TEST_F(UnreadPartsTest, WhatHasToBeThereIsToldWhenItIsMissingOrEmpty) {
  EXPECT_EQ(
      toldOf("<moxSorterDataSource source=\"\"/>\n"
             "<moxExpressionDataSource name=\"e\" source=\"n\"><expressions>\n"
             "<moxColumnExpression/></expressions></moxExpressionDataSource>\n"
             "<moxObjectDataSource name=\"o\"><Sql/></moxObjectDataSource>\n"
             "<moxJoinDataSource name=\"j\"><sources><source><columns>\n"
             "<moxDataMatrixIntColumn columnName=\"k\"/></columns></source></sources>"
             "</moxJoinDataSource>"),
      (Texts{"a.xml:2: moxSorterDataSource has no name",
             "a.xml:2: moxSorterDataSource has no source",
             "a.xml:4: moxColumnExpression has no name", "a.xml:4: moxColumnExpression has no text",
             "a.xml:5: Sql has no text", "a.xml:6: source has no name",
             "a.xml:7: moxDataMatrixIntColumn has no acolumnAlias"}));
}

TEST_F(UnreadPartsTest, MembersOfGroupsAreLookedIntoAndNeedNoName) {
  EXPECT_EQ(toldOf("<moxGroupDataSource name=\"g\"><DataSources><moxDadoDataSource name=\"m\">\n"
                   "<moxSorterDataSource fonte=\"n\"/></moxDadoDataSource></DataSources>"
                   "</moxGroupDataSource>"),
            (Texts{"a.xml:3: moxSorterDataSource does not read its attribute fonte; it reads name, "
                   "source, replace, userDefined, description",
                   "a.xml:3: moxSorterDataSource has no source"}));
}

}  // namespace
}  // namespace mox::cli
