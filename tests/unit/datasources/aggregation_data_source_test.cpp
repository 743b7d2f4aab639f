#include "zyn/datasources/aggregation_data_source.h"

#include "mox/core/registry.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/data_source_label.h"

namespace {

using Strings = std::vector<std::string>;
using Types = moxDataMatrixTypes::Types;

std::string const kMarks =
    "<moxSQLDataSource name=\"Notas\"><Command>select 1</Command><Columns>"
    "<Column tableName=\"n\" columnName=\"turma\" Type=\"1\"/>"
    "<Column tableName=\"n\" columnName=\"dia\" Type=\"5\"/>"
    "<Column tableName=\"n\" columnName=\"nota\" Type=\"4\"/></Columns></moxSQLDataSource>";

/// Marks by class and student: a mean and the number of days.
std::string aggregationElement(std::string const& name, std::string const& source,
                               std::string const& countColumn = "0") {
  return "<moxAggregationDataSource name=\"" + name + "\" dataSource=\"" + source +
         "\" generateTempTable=\"0\" countColumn=\"" + countColumn +
         "\"><moxDataMatrixAggregator><Indexes><Index name=\"turma\"/><Index name=\"aluno\"/>"
         "</Indexes><Functions><moxDoubleAvg source=\"nota\" target=\"media\"/>"
         "<moxIntegralSum source=\"um\" target=\"dias\"/></Functions></moxDataMatrixAggregator>"
         "</moxAggregationDataSource>";
}

moxDataSourceColumnType const kTurma{"turma", Types::Text};
moxDataSourceColumnType const kAluno{"aluno", Types::Int};
moxDataSourceColumnType const kMedia{"media", Types::Double};
moxDataSourceColumnType const kDias{"dias", Types::Int};
moxDataSourceColumnType const kCount{"data_count", Types::Int};

std::string const kInvalid = "Fonte de dados externa inválida";

class AggregationDataSourceTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxAggregationDataSource> aggregationOf(std::string const& source,
                                                          std::string const& countColumn = "0") {
    return read<moxAggregationDataSource>(aggregationElement("Médias", source, countColumn));
  }

  std::shared_ptr<moxAggregationDataSource> newSource() {
    return host_.get<moxAggregationDataSource>("moxAggregationDataSource");
  }
};

}  // namespace

TEST_F(AggregationDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const made = newSource();
  EXPECT_EQ(made->name(), "moxAggregationDataSource");
  EXPECT_EQ(made->getTipo(), 3);
  made->setName("Médias");
  EXPECT_EQ(made->getName(), "Médias");
  EXPECT_EQ(made->description(), "Médias");
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
  made->setParentLibraryName("ESCOLA");
  EXPECT_EQ(made->getParentLibName(), "ESCOLA");
}

TEST_F(AggregationDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions =
      moxInternalPluginContainer<AggregationDataSource>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Sumarização");
}

TEST_F(AggregationDataSourceTest, BeginsEmptyWithAnAggregatorOfItsOwn) {
  auto const made = newSource();
  EXPECT_EQ(made->getName(), "");
  EXPECT_EQ(made->getDataSourceName(), "");
  EXPECT_FALSE(made->getGerarTabelaTemporaria());
  EXPECT_FALSE(made->getCountColumn());
  ASSERT_NE(made->getAggregator(), nullptr);
  EXPECT_EQ(made->getAggregator(), made->getAggregator());
  EXPECT_NE(made->getAggregator(), newSource()->getAggregator());
  EXPECT_TRUE(made->getColumns().empty());
}

TEST_F(AggregationDataSourceTest, OffersNoFiltersAndNoOptions) {
  auto const made = aggregationOf("Notas");
  EXPECT_TRUE(made->getFilters().empty());
  EXPECT_TRUE(made->options().empty());
}

TEST_F(AggregationDataSourceTest, IsWrittenInItsOrderAndReadAgain) {
  auto const text = aggregationElement("Médias", "Notas", "1");
  auto const made = read<moxAggregationDataSource>(text);
  EXPECT_EQ(textOf(*made), text);
  EXPECT_EQ(made->getName(), "Médias");
  EXPECT_EQ(made->getDataSourceName(), "Notas");
  EXPECT_FALSE(made->getGerarTabelaTemporaria());
  EXPECT_TRUE(made->getCountColumn());
  EXPECT_EQ(made->getAggregator()->getIndexes(), (Strings{"turma", "aluno"}));
  EXPECT_EQ(made->getAggregator()->getFunctions().size(), 2u);
  EXPECT_EQ(textOf(*read(textOf(*made))), text);
}

TEST_F(AggregationDataSourceTest, ANewOneIsWrittenWithAllThatItCouldHave) {
  EXPECT_EQ(textOf(*newSource()),
            "<moxAggregationDataSource name=\"\" dataSource=\"\" generateTempTable=\"0\" "
            "countColumn=\"0\"><moxDataMatrixAggregator><Indexes/><Functions/>"
            "</moxDataMatrixAggregator></moxAggregationDataSource>");
}

TEST_F(AggregationDataSourceTest, FlagsAreSetByOneAlone) {
  for (auto const* const text : {"", "0", "yes", "true", "11", " 1"}) {
    auto const made = read<moxAggregationDataSource>(
        "<moxAggregationDataSource generateTempTable=\"" + std::string(text) + "\" countColumn=\"" +
        text + "\"><moxDataMatrixAggregator/></moxAggregationDataSource>");
    EXPECT_FALSE(made->getGerarTabelaTemporaria()) << text;
    EXPECT_FALSE(made->getCountColumn()) << text;
  }
  auto const set = read<moxAggregationDataSource>(
      "<moxAggregationDataSource generateTempTable=\"1\" countColumn=\"1\">"
      "<moxDataMatrixAggregator/></moxAggregationDataSource>");
  EXPECT_TRUE(set->getGerarTabelaTemporaria());
  EXPECT_TRUE(set->getCountColumn());
}

TEST_F(AggregationDataSourceTest, MissingFlagsReadAsNotSet) {
  auto const made = newSource();
  made->setGerarTabelaTeporaria(true);
  made->setCountColumn(true);
  auto const text =
      document("<moxAggregationDataSource><moxDataMatrixAggregator/></moxAggregationDataSource>");
  EXPECT_TRUE(made->load(text->root()));
  EXPECT_FALSE(made->getGerarTabelaTemporaria());
  EXPECT_FALSE(made->getCountColumn());
}

TEST_F(AggregationDataSourceTest, WithoutAnAggregatorsElementTheAttributesAreReadAndTheLoadFails) {
  auto const made = aggregationOf("Notas");
  auto const aggregator = made->getAggregator();
  auto const text = document(
      "<moxAggregationDataSource name=\"b\" dataSource=\"c\" generateTempTable=\"1\" "
      "countColumn=\"1\"/>");
  EXPECT_FALSE(made->load(text->root()));
  EXPECT_EQ(made->getName(), "b");
  EXPECT_EQ(made->getDataSourceName(), "c");
  EXPECT_TRUE(made->getGerarTabelaTemporaria());
  EXPECT_TRUE(made->getCountColumn());
  EXPECT_EQ(made->getAggregator(), aggregator);
  EXPECT_EQ(aggregator->getIndexes(), (Strings{"turma", "aluno"}));
}

TEST_F(AggregationDataSourceTest, TheFirstAggregatorsElementCounts) {
  auto const made = read<moxAggregationDataSource>(
      "<moxAggregationDataSource><other/><moxDataMatrixAggregator><Indexes><Index name=\"a\"/>"
      "</Indexes></moxDataMatrixAggregator><moxDataMatrixAggregator><Indexes><Index name=\"b\"/>"
      "</Indexes></moxDataMatrixAggregator></moxAggregationDataSource>");
  EXPECT_EQ(made->getAggregator()->getIndexes(), Strings{"a"});
}

TEST_F(AggregationDataSourceTest, AnUnknownFunctionFailsTheLoadByItsName) {
  auto const text = document(
      "<moxAggregationDataSource><moxDataMatrixAggregator><Functions><moxNenhuma/></Functions>"
      "</moxDataMatrixAggregator></moxAggregationDataSource>");
  auto const failure = failureOf([&] { newSource()->load(text->root()); });
  EXPECT_NE(failure.find("moxNenhuma"), std::string::npos) << failure;
}

TEST_F(AggregationDataSourceTest, AnEmptyNodeGivesFalseAndChangesNothing) {
  auto const made = aggregationOf("Notas");
  auto const before = textOf(*made);
  EXPECT_FALSE(made->load(nullptr));
  EXPECT_FALSE(made->save(nullptr));
  EXPECT_EQ(textOf(*made), before);
}

TEST_F(AggregationDataSourceTest, GetColumnsEndsWithTheCountBehindAllColumnsOfTheAggregator) {
  enter(kMarks);
  EXPECT_EQ(aggregationOf("Notas")->getColumns(), (Columns{kTurma, kAluno, kMedia, kDias}));
  EXPECT_EQ(aggregationOf("Notas", "1")->getColumns(),
            (Columns{kTurma, kAluno, kMedia, kDias, kCount}));
}

TEST_F(AggregationDataSourceTest, KeysAreIntegersUnlessTheSourceIsFoundAndNamesThem) {
  enter(kMarks + "<moxFormatterZYNItem description=\"Moeda\"/>");
  Columns const unknown{{"turma", Types::Int}, kAluno, kMedia, kDias};
  for (auto const* const source : {"", "Nenhuma", "Moeda"}) {
    EXPECT_EQ(aggregationOf(source)->getColumns(), unknown) << source;
  }
  EXPECT_EQ(aggregationOf("Notas")->getColumns(), (Columns{kTurma, kAluno, kMedia, kDias}));
}

TEST_F(AggregationDataSourceTest, OnlyKeysTakeTheirKindsFromTheSource) {
  enter(kMarks);
  auto const made = newSource();
  made->setDataSourceName("Notas");
  made->getAggregator()->pushIndexColumn("dia");
  auto const function = host_.get<moxCommonAggregationFunction>("moxIntegralSum");
  function->setTargetColumn("turma");
  made->getAggregator()->addFunction(function);
  EXPECT_EQ(made->getColumns(), (Columns{{"dia", Types::Date}, {"turma", Types::Int}}));
}

TEST_F(AggregationDataSourceTest, KindsOfKeysComeThroughAChain) {
  enter(kMarks + aggregationElement("Por aluno", "Notas"));
  EXPECT_EQ(aggregationOf("Por aluno")->getColumns(), (Columns{kTurma, kAluno, kMedia, kDias}));
}

TEST_F(AggregationDataSourceTest, ASourceIsAskedForOnEveryCall) {
  auto const made = aggregationOf("Notas");
  EXPECT_EQ(made->getColumns()[0].second, Types::Int);
  enter(kMarks);
  EXPECT_EQ(made->getColumns()[0].second, Types::Text);
  cache()->clear();
  EXPECT_EQ(made->getColumns()[0].second, Types::Int);
}

TEST_F(AggregationDataSourceTest, RelatedColumnsAreThoseKeysThatTheInputHas) {
  auto const marks = read(kMarks);
  auto const other = read(
      "<moxSQLDataSource name=\"Outra\"><Command/><Columns>"
      "<Column columnName=\"aluno\" Type=\"1\"/></Columns></moxSQLDataSource>");
  auto const made = aggregationOf("Notas");
  Columns const ofOther{{"aluno", Types::Text}};
  EXPECT_EQ(made->getRelatedColumns({{"Notas", marks}}), Columns{kTurma});
  EXPECT_EQ(made->getRelatedColumns({{"Outra", other}, {"a", marks}}), Columns{kTurma});
  EXPECT_EQ(made->getRelatedColumns({{"Notas", other}, {"a", marks}}), ofOther);
}

TEST_F(AggregationDataSourceTest, RelatedColumnsStandInTheOrderOfTheKeys) {
  auto const made = newSource();
  made->setDataSourceName("Notas");
  for (auto const* const index : {"nota", "dia", "turma"}) {
    made->getAggregator()->pushIndexColumn(index);
  }
  EXPECT_EQ(made->getRelatedColumns({{"Notas", read(kMarks)}}),
            (Columns{{"nota", Types::Double}, {"dia", Types::Date}, kTurma}));
}

TEST_F(AggregationDataSourceTest, ComputedColumnsCarryNoRelation) {
  auto const made = newSource();
  made->setDataSourceName("Notas");
  auto const function = host_.get<moxCommonAggregationFunction>("moxDoubleSum");
  function->setSourceColumn("nota");
  function->setTargetColumn("nota");
  made->getAggregator()->addFunction(function);
  made->setCountColumn(true);
  EXPECT_TRUE(made->getRelatedColumns({{"Notas", read(kMarks)}}).empty());
}

TEST_F(AggregationDataSourceTest, WithoutTheInputInTheContextThereAreNoRelatedColumns) {
  enter(kMarks);
  auto const made = aggregationOf("Notas");
  EXPECT_TRUE(made->getRelatedColumns({}).empty());
  EXPECT_TRUE(made->getRelatedColumns({{"Outra", read(aggregationElement("x", "y"))}}).empty());
  EXPECT_TRUE(made->getRelatedColumns({{"Notas", nullptr}}).empty());
}

TEST_F(AggregationDataSourceTest, RelatedSourcesAreTheInputAndWithDepthThoseBelowAheadOfIt) {
  enter(kMarks + aggregationElement("Por aluno", "Notas"));
  auto const made = aggregationOf("Por aluno");
  EXPECT_EQ(namesOf(made->getRelatedDataSources(false)), Strings{"Por aluno"});
  EXPECT_EQ(namesOf(made->getRelatedDataSources(true)), (Strings{"Notas", "Por aluno"}));
}

TEST_F(AggregationDataSourceTest, AMissingInputAndOneThatIsNoSourceAreNotRelated) {
  enter("<moxFormatterZYNItem description=\"Moeda\"/>");
  for (auto const* const source : {"", "Nenhuma", "Moeda"}) {
    EXPECT_TRUE(aggregationOf(source)->getRelatedDataSources(false).empty()) << source;
    EXPECT_TRUE(aggregationOf(source)->getRelatedDataSources(true).empty()) << source;
  }
}

TEST_F(AggregationDataSourceTest, AggregationsInARingAreRefused) {
  enter(aggregationElement("a", "b") + aggregationElement("b", "a"));
  auto const one = entered("a");
  EXPECT_EQ(failureOf([&] { (void)one->getColumns(); }), kInvalid);
  EXPECT_EQ(failureOf([&] { (void)one->getRelatedDataSources(true); }), kInvalid);
  std::vector<moxNamedDataSource> const both{{"a", one}, {"b", entered("b")}};
  EXPECT_EQ(failureOf([&] { (void)one->getRelatedColumns(both); }), kInvalid);
}

TEST_F(AggregationDataSourceTest, ResetBringsANewAggregatorAndLeavesTheFlagsSet) {
  auto const made = aggregationOf("Notas", "1");
  made->setGerarTabelaTeporaria(true);
  auto const old = made->getAggregator();
  made->reset();
  EXPECT_NE(made->getAggregator(), old);
  EXPECT_TRUE(made->getAggregator()->getIndexes().empty());
  EXPECT_EQ(made->getDataSourceName(), "");
  EXPECT_EQ(made->getName(), "Médias");
  EXPECT_TRUE(made->getGerarTabelaTemporaria());
  EXPECT_TRUE(made->getCountColumn());
}

TEST_F(AggregationDataSourceTest, EditorsFillTheAggregatorThatTheDefinitionKeeps) {
  auto const made = newSource();
  made->getAggregator()->pushIndexColumn("turma");
  EXPECT_EQ(made->getColumns(), (Columns{{"turma", Types::Int}}));
  EXPECT_NE(textOf(*made).find("<Index name=\"turma\"/>"), std::string::npos);
}

TEST_F(AggregationDataSourceTest, AnExecutionNeedsADefinitionHeldBySharedPointers) {
  AggregationDataSource onTheStack;
  EXPECT_THROW((void)onTheStack.createExecution(), std::bad_weak_ptr);
}

TEST_F(AggregationDataSourceTest, AnExecutionKeepsTheDefinition) {
  auto made = aggregationOf("Notas");
  std::weak_ptr<moxAggregationDataSource> const watched = made;
  auto const execution = made->createExecution();
  made.reset();
  EXPECT_FALSE(watched.expired());
}
