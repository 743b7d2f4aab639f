#include "zyn/datasources/union_data_source.h"

#include <stdexcept>

#include "mox/core/registry.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/data_source_label.h"

namespace {

using Strings = std::vector<std::string>;
using Types = moxDataMatrixTypes::Types;

std::string const kBoth =
    "<moxUnionDataSource name=\"Ambos\" generateTempTable=\"1\"><sources>"
    "<source name=\"Notas 2023\"><moxDataMatrixIntColumn name=\"id\"/>"
    "<moxDataMatrixDoubleColumn name=\"nota\"/><moxDataMatrixTextColumn name=\"nome\"/>"
    "<moxDataMatrixDateColumn name=\"dia\"/></source>"
    "<source name=\"Notas 2024\"><moxDataMatrixIntColumn name=\"codigo\"/></source>"
    "</sources></moxUnionDataSource>";

std::string const kBroken =
    "<moxUnionDataSource name=\"Quebrada\"><sources><source name=\"a\"><coluna name=\"id\"/>"
    "</source></sources></moxUnionDataSource>";

std::string query(std::string const& name) {
  return "<moxSQLDataSource name=\"" + name + "\"><Command>select 1</Command></moxSQLDataSource>";
}

class UnionDataSourceTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxUnionDataSource> made() {
    return host_.get<moxUnionDataSource>("moxUnionDataSource");
  }
};

}  // namespace

TEST_F(UnionDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const source = made();
  EXPECT_EQ(source->name(), "moxUnionDataSource");
  EXPECT_EQ(source->getTipo(), 3);
  source->setName("Ambos");
  EXPECT_EQ(source->description(), "Ambos");
}

TEST_F(UnionDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions = moxInternalPluginContainer<UnionDataSource>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "União");
}

TEST_F(UnionDataSourceTest, BeginsWithoutSourcesAndTemporaryTable) {
  EXPECT_TRUE(made()->getSources().empty());
  EXPECT_FALSE(made()->getGerarTabelaTemporaria());
}

TEST_F(UnionDataSourceTest, IsWrittenAsItWasRead) {
  auto const source = read<moxUnionDataSource>(kBoth);
  EXPECT_EQ(textOf(*source), kBoth);
  EXPECT_TRUE(source->getGerarTabelaTemporaria());
  auto const sources = source->getSources();
  ASSERT_EQ(sources.size(), 2u);
  EXPECT_EQ(sources[1].sourceName, "Notas 2024");
  EXPECT_EQ(sources[1].columns, (Columns{{"codigo", Types::Int}}));
}

TEST_F(UnionDataSourceTest, AnEmptyDefinitionHasAListOfNoSources) {
  EXPECT_EQ(
      textOf(*made()),
      "<moxUnionDataSource name=\"\" generateTempTable=\"0\"><sources/></moxUnionDataSource>");
  EXPECT_TRUE(read<moxUnionDataSource>("<moxUnionDataSource/>")->getSources().empty());
}

TEST_F(UnionDataSourceTest, OnlyAOneAsksForATemporaryTable) {
  for (auto const* const text : {"0", "yes", "true", "", " 1", "11"}) {
    auto const source = read<moxUnionDataSource>("<moxUnionDataSource generateTempTable=\"" +
                                                 std::string(text) + "\"/>");
    EXPECT_FALSE(source->getGerarTabelaTemporaria()) << text;
  }
}

TEST_F(UnionDataSourceTest, ElementsOfOtherNamesInTheListAreReadOver) {
  auto const source = read<moxUnionDataSource>(
      "<moxUnionDataSource><sources><fonte name=\"a\"/><source name=\"b\"/></sources>"
      "<source name=\"c\"/></moxUnionDataSource>");
  ASSERT_EQ(source->getSources().size(), 1u);
  EXPECT_EQ(source->getSources()[0].sourceName, "b");
}

TEST_F(UnionDataSourceTest, LoadingAnewReplacesTheSources) {
  auto const source = read<moxUnionDataSource>(kBoth);
  auto const held = document(kBoth);
  source->load(held->root());
  EXPECT_EQ(textOf(*source), kBoth);
}

TEST_F(UnionDataSourceTest, AnEmptyNodeIsRefusedAndChangesNothing) {
  auto const source = read<moxUnionDataSource>(kBoth);
  EXPECT_FALSE(source->load(nullptr));
  EXPECT_FALSE(source->save(nullptr));
  EXPECT_EQ(textOf(*source), kBoth);
}

TEST_F(UnionDataSourceTest, AnElementThatIsNoClassOfColumnsFailsTheLoad) {
  auto const source = read<moxUnionDataSource>(kBoth);
  auto const held = document(kBroken);
  try {
    source->load(held->root());
    FAIL() << "it was read";
  } catch (std::out_of_range const& error) {
    EXPECT_STREQ(error.what(), "map::at");
  }
  EXPECT_EQ(textOf(*source), kBoth);
}

TEST_F(UnionDataSourceTest, ReadersOfCollectionsAreToldTheItemAndTheElement) {
  try {
    collection(query("boa") + kBroken);
    FAIL() << "it was read";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "Classe de coluna inválida: coluna");
    auto const details = error.errorDetails();
    ASSERT_EQ(details.size(), 3u);
    EXPECT_EQ(details[0], "item: moxUnionDataSource, line 1, name \"Quebrada\"");
    EXPECT_EQ(details[1], "element: coluna, line 1");
  }
}

TEST_F(UnionDataSourceTest, ColumnsAreThoseOfTheFirstSource) {
  auto const source = made();
  source->setSources(
      {{"a", {{"id", Types::Int}, {"nota", Types::Double}}}, {"b", {{"codigo", Types::Text}}}},
      false);
  Columns const first{{"id", Types::Int}, {"nota", Types::Double}};
  EXPECT_EQ(source->getColumns(), first);
  EXPECT_EQ(source->getRelatedColumns({{"a", read(query("a"))}}), first);
}

TEST_F(UnionDataSourceTest, WithoutSourcesThereAreNoColumns) {
  EXPECT_TRUE(made()->getColumns().empty());
  EXPECT_TRUE(made()->getRelatedColumns({}).empty());
}

TEST_F(UnionDataSourceTest, SetSourcesSetsTheTemporaryTableWhateverWasLoaded) {
  auto const source = read<moxUnionDataSource>("<moxUnionDataSource generateTempTable=\"0\"/>");
  source->setSources({}, true);
  EXPECT_TRUE(source->getGerarTabelaTemporaria());
  source->setSources({}, false);
  EXPECT_FALSE(source->getGerarTabelaTemporaria());
}

TEST_F(UnionDataSourceTest, AColumnOfBlobsCannotBeWritten) {
  auto const source = made();
  source->setSources({{"a", {{"foto", Types::Blob}}}}, false);
  auto const held = document("<x/>");
  EXPECT_THROW(source->save(held->root()), std::out_of_range);
}

TEST_F(UnionDataSourceTest, OffersNoFiltersAndNoOptions) {
  auto const source = read<moxUnionDataSource>(kBoth);
  EXPECT_TRUE(source->getFilters().empty());
  EXPECT_TRUE(source->createExecution()->getFilters().empty());
  EXPECT_TRUE(source->options().empty());
}

TEST_F(UnionDataSourceTest, ReadsItsSourcesInTheirOrderAndDeepOnesFirst) {
  enter(query("Notas 2023") + query("base") +
        "<moxUnionDataSource name=\"Notas 2024\"><sources><source name=\"base\"/></sources>"
        "</moxUnionDataSource>" +
        kBoth);
  auto const source = entered("Ambos");
  EXPECT_EQ(namesOf(source->getRelatedDataSources(false)), (Strings{"Notas 2023", "Notas 2024"}));
  EXPECT_EQ(namesOf(source->getRelatedDataSources(true)),
            (Strings{"Notas 2023", "base", "Notas 2024"}));
}

TEST_F(UnionDataSourceTest, SourcesThatNobodyKnowsAreLeftOut) {
  EXPECT_TRUE(read<moxUnionDataSource>(kBoth)->getRelatedDataSources(true).empty());
}

TEST_F(UnionDataSourceTest, ASourceThatReadsItselfIsRefused) {
  enter(
      "<moxUnionDataSource name=\"u\"><sources><source name=\"u\"/></sources>"
      "</moxUnionDataSource>");
  auto const source = entered("u");
  EXPECT_EQ(failureOf([&] { source->getRelatedDataSources(true); }),
            "Fonte de dados externa inválida");
}

TEST_F(UnionDataSourceTest, ADefinitionThatNobodyHoldsMakesNoExecution) {
  UnionDataSource source;
  EXPECT_THROW((void)source.createExecution(), std::bad_weak_ptr);
}
