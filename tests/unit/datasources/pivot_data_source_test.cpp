#include "zyn/datasources/pivot_data_source.h"

#include "mox/core/registry.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/data_source_label.h"

namespace {

using Strings = std::vector<std::string>;
using Pairs = std::vector<moxPivotDataSource::Pair>;

std::string const kBoletim =
    "<moxDataSourcePivoting name=\"Boletim\" source=\"Notas\">"
    "<columns><column source=\"ano\" formatter=\"inteiro\"/><column source=\"bimestre\" "
    "formatter=\"\"/></columns>"
    "<rows><row source=\"aluno\"/><row source=\"materia\"/></rows>"
    "<cells><cell source=\"nota\" aggregation=\"moxDoubleAvg\"/></cells></moxDataSourcePivoting>";

class PivotDataSourceTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxPivotDataSource> made() {
    return host_.get<moxPivotDataSource>("moxDataSourcePivoting");
  }
};

}  // namespace

TEST_F(PivotDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const source = made();
  EXPECT_EQ(source->name(), "moxDataSourcePivoting");
  EXPECT_EQ(source->getTipo(), 3);
  source->setName("Boletim");
  EXPECT_EQ(source->description(), "Boletim");
}

TEST_F(PivotDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions =
      moxInternalPluginContainer<DataSourcePivoting>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Pivô");
}

TEST_F(PivotDataSourceTest, IsWrittenAsItWasRead) {
  auto const source = read<moxPivotDataSource>(kBoletim);
  EXPECT_EQ(source->getName(), "Boletim");
  EXPECT_EQ(source->getDataSourceName(), "Notas");
  EXPECT_EQ(source->getColumnsPivot(), (Pairs{{"ano", "inteiro"}, {"bimestre", ""}}));
  EXPECT_EQ(source->getRowsPivot(), (Strings{"aluno", "materia"}));
  EXPECT_EQ(source->getCellsPivot(), (Pairs{{"nota", "moxDoubleAvg"}}));
  EXPECT_EQ(textOf(*source), kBoletim);
}

TEST_F(PivotDataSourceTest, AnEmptyDefinitionHasThreeEmptyLists) {
  EXPECT_EQ(textOf(*made()),
            "<moxDataSourcePivoting name=\"\" source=\"\"><columns/><rows/><cells/>"
            "</moxDataSourcePivoting>");
}

TEST_F(PivotDataSourceTest, LoadingEmptiesTheListsFirst) {
  auto const source = read<moxPivotDataSource>(kBoletim);
  auto const held = document("<moxDataSourcePivoting name=\"x\"/>");
  EXPECT_TRUE(source->load(held->root()));
  EXPECT_TRUE(source->getColumnsPivot().empty());
  EXPECT_TRUE(source->getRowsPivot().empty());
  EXPECT_TRUE(source->getCellsPivot().empty());
}

TEST_F(PivotDataSourceTest, ElementsOfOtherNamesInTheListsAreReadOver) {
  auto const source = read<moxPivotDataSource>(
      "<moxDataSourcePivoting><rows><cell source=\"x\"/><row source=\"a\"/><!-- b -->"
      "<row source=\"c\"/></rows><columns><row source=\"d\"/></columns></moxDataSourcePivoting>");
  EXPECT_EQ(source->getRowsPivot(), (Strings{"a", "c"}));
  EXPECT_TRUE(source->getColumnsPivot().empty());
}

TEST_F(PivotDataSourceTest, AnEmptyNodeIsRefusedAndChangesNothing) {
  auto const source = read<moxPivotDataSource>(kBoletim);
  EXPECT_FALSE(source->load(nullptr));
  EXPECT_FALSE(source->save(nullptr));
  EXPECT_EQ(textOf(*source), kBoletim);
}

TEST_F(PivotDataSourceTest, SettersAreWhatIsWritten) {
  auto const source = made();
  source->setName("Boletim");
  source->setDataSourceName("Notas");
  source->setColumnsPivot({{"ano", "inteiro"}, {"bimestre", ""}});
  source->setRowsPivot({"aluno", "materia"});
  source->setCellsPivot({{"nota", "moxDoubleAvg"}});
  EXPECT_EQ(textOf(*source), kBoletim);
}

TEST_F(PivotDataSourceTest, ColumnsAreEmptyWhateverTheDefinitionHolds) {
  auto const source = read(kBoletim);
  EXPECT_TRUE(source->getColumns().empty());
  EXPECT_TRUE(source->getRelatedColumns({{"Notas", source}}).empty());
}

TEST_F(PivotDataSourceTest, OffersNoFiltersAndNoOptions) {
  auto const source = read(kBoletim);
  EXPECT_TRUE(source->getFilters().empty());
  EXPECT_TRUE(source->createExecution()->getFilters().empty());
  EXPECT_TRUE(source->options().empty());
}

TEST_F(PivotDataSourceTest, ReadsItsInput) {
  enter(
      "<moxSQLDataSource name=\"base\"><Command>select 1</Command></moxSQLDataSource>"
      "<moxUnionDataSource name=\"Notas\"><sources><source name=\"base\"/></sources>"
      "</moxUnionDataSource>" +
      kBoletim);
  EXPECT_EQ(namesOf(entered("Boletim")->getRelatedDataSources(false)), Strings{"Notas"});
  EXPECT_EQ(namesOf(entered("Boletim")->getRelatedDataSources(true)), (Strings{"base", "Notas"}));
}

TEST_F(PivotDataSourceTest, AnInputThatNobodyKnowsIsLeftOut) {
  EXPECT_TRUE(read(kBoletim)->getRelatedDataSources(true).empty());
}

TEST_F(PivotDataSourceTest, ADefinitionThatNobodyHoldsMakesNoExecution) {
  DataSourcePivoting source;
  EXPECT_THROW((void)source.createExecution(), std::bad_weak_ptr);
}
