#include "mox/zyn/datasources/join_data_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "definition_fixture.h"
#include "zyn/datasources/data_source_label.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using JoinData = moxJoinDataSource::JoinData;

constexpr char const* kInvoicesWithPayments =
    "<moxJoinDataSource name=\"pagos\"><sources>"
    "<source name=\"notas\"><columns>"
    "<moxDataMatrixIntColumn columnName=\"id\" acolumnAlias=\"nota\"/>"
    "<moxDataMatrixTextColumn columnName=\"aluno\" acolumnAlias=\"aluno\"/></columns><joins/>"
    "</source><source name=\"pagamentos\"><columns>"
    "<moxDataMatrixDoubleColumn columnName=\"valor\" acolumnAlias=\"pago\"/>"
    "<moxDataMatrixDateColumn columnName=\"data\" acolumnAlias=\"em\"/></columns><joins>"
    "<join columnNameOrigin=\"id_nota\" sourceNameRelac=\"notas\" columnNameRelac=\"id\""
    " columnNameJoin=\"nota\"/></joins></source></sources></moxJoinDataSource>";

class JoinDataSourceTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxJoinDataSource> readJoin(std::string const& text) {
    return read<moxJoinDataSource>(text);
  }
};

}  // namespace

TEST_F(JoinDataSourceTest, ReadsSourcesColumnsAndConditionsInTheirOrder) {
  auto const join = readJoin(kInvoicesWithPayments);

  EXPECT_EQ(join->getName(), "pagos");
  auto const sources = join->getSources();
  ASSERT_EQ(sources.size(), 2U);
  EXPECT_EQ(sources[0].sourceName, "notas");
  ASSERT_EQ(sources[0].columns.size(), 2U);
  EXPECT_EQ(sources[0].columns[0].columnName, "id");
  EXPECT_EQ(sources[0].columns[0].columnAlias, "nota");
  EXPECT_EQ(sources[0].columns[0].type, moxDataMatrixTypes::Int);
  EXPECT_THAT(sources[0].joins, IsEmpty());
  EXPECT_EQ(sources[1].sourceName, "pagamentos");
  ASSERT_EQ(sources[1].joins.size(), 1U);
  EXPECT_EQ(sources[1].joins[0].columnNameOrigin, "id_nota");
  EXPECT_EQ(sources[1].joins[0].sourceNameRelac, "notas");
  EXPECT_EQ(sources[1].joins[0].columnNameRelac, "id");
  EXPECT_EQ(sources[1].joins[0].columnNameJoin, "nota");
}

TEST_F(JoinDataSourceTest, WritesTheAliasUnderTheNameThatFilesHave) {
  auto const join = host_.get<moxJoinDataSource>("moxJoinDataSource");
  join->setName("j");
  join->setSources({{"a", {{"x", "y", moxDataMatrixTypes::Int}}, {{"o", "s", "r", "j"}}}});

  EXPECT_EQ(textOf(*join),
            "<moxJoinDataSource name=\"j\"><sources><source name=\"a\"><columns>"
            "<moxDataMatrixIntColumn columnName=\"x\" acolumnAlias=\"y\"/></columns><joins>"
            "<join columnNameOrigin=\"o\" sourceNameRelac=\"s\" columnNameRelac=\"r\""
            " columnNameJoin=\"j\"/></joins></source></sources></moxJoinDataSource>");
}

TEST_F(JoinDataSourceTest, WhatIsReadIsWrittenByteByByte) {
  EXPECT_EQ(textOf(*readJoin(kInvoicesWithPayments)), kInvoicesWithPayments);
}

TEST_F(JoinDataSourceTest, AConditionMayHaveAnyElementName) {
  auto const join = readJoin(
      "<moxJoinDataSource><sources><source><joins><JData columnNameOrigin=\"a\"/><x/></joins>"
      "</source></sources></moxJoinDataSource>");

  auto const sources = join->getSources();
  ASSERT_EQ(sources.size(), 1U);
  ASSERT_EQ(sources[0].joins.size(), 2U);
  EXPECT_EQ(sources[0].joins[0].columnNameOrigin, "a");
}

TEST_F(JoinDataSourceTest, WithoutListsThereAreNoSources) {
  EXPECT_THAT(readJoin("<moxJoinDataSource name=\"j\"/>")->getSources(), IsEmpty());
  EXPECT_THAT(
      readJoin("<moxJoinDataSource><sources><other/></sources></moxJoinDataSource>")->getSources(),
      IsEmpty());
}

TEST_F(JoinDataSourceTest, ReadingAgainReplacesTheSources) {
  auto const join = readJoin(kInvoicesWithPayments);
  auto const other = document(
      "<moxJoinDataSource name=\"b\"><sources><source name=\"c\"/></sources></moxJoinDataSource>");

  ASSERT_TRUE(join->load(other->root()));

  EXPECT_EQ(join->getName(), "b");
  EXPECT_EQ(join->getSources().size(), 1U);
}

TEST_F(JoinDataSourceTest, AnElementOfNoColumnClassFailsAsTheTableBehindItDoes) {
  auto const join = readJoin(kInvoicesWithPayments);
  for (auto const* const element : {"column", "moxDataMatrixBlobColumn"}) {
    auto const text = "<moxJoinDataSource name=\"x\"><sources><source><columns><" +
                      std::string(element) + "/></columns></source></sources></moxJoinDataSource>";
    auto const held = document(text);
    try {
      join->load(held->root());
      FAIL() << element << " was read";
    } catch (std::out_of_range const& error) {
      EXPECT_STREQ(error.what(), "map::at");
    }
  }
  EXPECT_EQ(textOf(*join), kInvoicesWithPayments) << "a failed load changes nothing";
}

TEST_F(JoinDataSourceTest, AColumnOfBlobsHasNoElementAndIsNotWritten) {
  auto const join = host_.get<moxJoinDataSource>("moxJoinDataSource");
  join->setSources({{"a", {{"x", "x", moxDataMatrixTypes::Blob}}, {}}});
  auto const target = document("<moxJoinDataSource/>");

  EXPECT_THROW(join->save(target->root()), std::out_of_range);
}

TEST_F(JoinDataSourceTest, AnEmptyNodeIsNeitherReadNorWritten) {
  auto const join = readJoin(kInvoicesWithPayments);

  EXPECT_FALSE(join->load(nullptr));
  EXPECT_FALSE(join->save(nullptr));
  EXPECT_EQ(textOf(*join), kInvoicesWithPayments);
}

TEST_F(JoinDataSourceTest, ItsColumnsAreTheAliasesSourceBySource) {
  auto const join = readJoin(kInvoicesWithPayments);

  EXPECT_THAT(
      join->getColumns(),
      ElementsAre(Pair("nota", moxDataMatrixTypes::Int), Pair("aluno", moxDataMatrixTypes::Text),
                  Pair("pago", moxDataMatrixTypes::Double), Pair("em", moxDataMatrixTypes::Date)));
  EXPECT_EQ(join->getRelatedColumns({}), join->getColumns());
}

TEST_F(JoinDataSourceTest, OffersNeitherFiltersNorOptions) {
  auto const join = readJoin(kInvoicesWithPayments);

  EXPECT_THAT(join->getFilters(), IsEmpty());
  EXPECT_THAT(join->options(), IsEmpty());
  EXPECT_THAT(join->createExecution()->getFilters(), IsEmpty());
  EXPECT_FALSE(join->getZynItemRelated());
}

TEST_F(JoinDataSourceTest, ReadsItsSourcesInTheirOrderAndTheirsBeforeThem) {
  enter(std::string(kInvoicesWithPayments) +
        "<moxSQLDataSource name=\"notas\"/>"
        "<moxJoinDataSource name=\"pagamentos\"><sources><source name=\"caixa\"/></sources>"
        "</moxJoinDataSource><moxSQLDataSource name=\"caixa\"/>");
  auto const join = entered("pagos");

  EXPECT_THAT(namesOf(join->getRelatedDataSources(false)), ElementsAre("notas", "pagamentos"));
  EXPECT_THAT(namesOf(join->getRelatedDataSources(true)),
              ElementsAre("notas", "caixa", "pagamentos"));
}

TEST_F(JoinDataSourceTest, ARingOfJoinsIsToldAndNotFollowed) {
  enter(
      "<moxJoinDataSource name=\"a\"><sources><source name=\"b\"/></sources></moxJoinDataSource>"
      "<moxJoinDataSource name=\"b\"><sources><source name=\"a\"/></sources></moxJoinDataSource>");

  EXPECT_EQ(failureOf([&] { entered("a")->getRelatedDataSources(true); }),
            "Fonte de dados externa inválida");
}

TEST_F(JoinDataSourceTest, ARunKeepsTheDefinitionAlive) {
  auto execution = readJoin(kInvoicesWithPayments)->createExecution();

  EXPECT_EQ(execution->name(), "moxJoinDataSourceExecution");
  EXPECT_FALSE(execution->generateDataMatrix(newContext(), ""));
}

TEST_F(JoinDataSourceTest, UsersCallTheKindByItsLabel) {
  ASSERT_NE(PluginPermissionsOf<JoinDataSource>::get(), nullptr);
  EXPECT_STREQ(PluginPermissionsOf<JoinDataSource>::get()->label, "Join");
}
