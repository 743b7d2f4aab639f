#include "zyn/datasources/union_data_source_execution.h"

#include <gmock/gmock.h>

#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"

using namespace mox_test;

namespace {

using Types = moxDataMatrixTypes::Types;

class UnionExecutionTest : public DefinitionTest {
 protected:
  UnionExecutionTest()
      : source_(host_.get<moxUnionDataSource>("moxUnionDataSource")), context_(newContext()) {
    source_->setName("uniao");
  }

  /// Makes the union of those columns of "a" and "b".
  void unite(Columns const& ofA, Columns const& ofB, bool temporaryTable = false) {
    source_->setSources({{"a", ofA}, {"b", ofB}}, temporaryTable);
  }

  void registerBoth() {
    context_->registerDataMatrix("a", matrix({{"id", ints(1, null)}, {"x", doubles(1.5, 2.5)}}));
    context_->registerDataMatrix("b", matrix({{"codigo", ints(3)}, {"y", ints(4)}}));
  }

  bool run(std::string const& target = {}) {
    return source_->createExecution()->generateDataMatrix(context_, target);
  }

  std::vector<std::string> rowsOfTable(std::string const& name) {
    auto const statement = host_.database().prepare("select * from " + name + " order by id");
    statement->execute();
    std::vector<std::string> rows;
    while (statement->fetch()) {
      rows.emplace_back(statement->getString(0));
    }
    return rows;
  }

  std::shared_ptr<moxUnionDataSource> source_;
  std::shared_ptr<moxDataSourceExecutionContext> context_;
};

std::vector<moxDataSourceColumnType> const kOfA{{"id", Types::Int}, {"x", Types::Double}};
std::vector<moxDataSourceColumnType> const kOfB{{"codigo", Types::Int}, {"y", Types::Int}};

}  // namespace

TEST_F(UnionExecutionTest, KnowsItsName) {
  EXPECT_EQ(source_->createExecution()->name(), "moxUnionDataSourceExecution");
}

TEST_F(UnionExecutionTest, RowsOfTheSourcesStandInTheirOrderUnderTheColumnsOfTheFirst) {
  registerBoth();
  unite(kOfA, kOfB);
  EXPECT_TRUE(run());
  EXPECT_THAT(context_->getDataMatrix("uniao"),
              isMatrix({{"id", ints(1, null, 3)}, {"x", doubles(1.5, 2.5, 4.0)}}));
}

TEST_F(UnionExecutionTest, OnlyTheListedColumnsTakePartInTheListsOrder) {
  registerBoth();
  unite({kOfA[1]}, {kOfB[1]});
  EXPECT_TRUE(run());
  EXPECT_THAT(context_->getDataMatrix("uniao"), isMatrix({{"x", doubles(1.5, 2.5, 4.0)}}));
}

TEST_F(UnionExecutionTest, TheSourcesStayAsTheyAre) {
  registerBoth();
  unite(kOfA, kOfB);
  run();
  EXPECT_THAT(context_->getDataMatrix("a"),
              isMatrix({{"id", ints(1, null)}, {"x", doubles(1.5, 2.5)}}));
}

TEST_F(UnionExecutionTest, TheTargetNamesTheResult) {
  registerBoth();
  unite(kOfA, kOfB);
  EXPECT_TRUE(run("alvo"));
  EXPECT_NE(context_->getDataMatrix("alvo"), nullptr);
  EXPECT_EQ(context_->getDataMatrix("uniao"), nullptr);
}

TEST_F(UnionExecutionTest, ExternalRelationsNameTheSourcesInTheContext) {
  context_->registerDataMatrix("interna", matrix({{"id", ints(7)}}));
  source_->setSources({{"a", {kOfA[0]}}, {"a", {kOfA[0]}}}, false);
  auto const execution = source_->createExecution();
  execution->setDataSourceExternalRelation({{"a", "interna"}, {"a", "outra"}});
  EXPECT_TRUE(execution->generateDataMatrix(context_, ""));
  EXPECT_THAT(context_->getDataMatrix("uniao"), isMatrix({{"id", ints(7, 7)}}));
}

TEST_F(UnionExecutionTest, AMissingInputGivesFalseAndNothingIsRegistered) {
  context_->registerDataMatrix("a", matrix({{"id", ints(1)}, {"x", doubles(1.5)}}));
  unite(kOfA, kOfB);
  EXPECT_FALSE(run());
  EXPECT_EQ(context_->getDataMatrix("uniao"), nullptr);
}

TEST_F(UnionExecutionTest, TheContextTellsAMissingInputByTheNameOfTheUnion) {
  unite(kOfA, kOfB);
  EXPECT_EQ(failureOf([&] {
              context_->processDataSources(nullptr,
                                           {{"uniao", {false, source_->createExecution()}}}, {}, 0);
            }),
            "Falha: uniao");
}

TEST_F(UnionExecutionTest, AColumnThatASourceLacksIsTheEnginesFailure) {
  registerBoth();
  unite(kOfA, {{"nada", Types::Int}});
  EXPECT_EQ(failureOf([&] { run(); }), "Coluna nada não localizada.");
  EXPECT_EQ(context_->getDataMatrix("uniao"), nullptr);
}

TEST_F(UnionExecutionTest, ANameThatIsTakenKeepsItsMatrixAndIsNoFailure) {
  registerBoth();
  unite({kOfA[0]}, {kOfB[0]});
  auto const first = matrix({{"z", ints()}});
  context_->registerDataMatrix("uniao", first);
  EXPECT_TRUE(run());
  EXPECT_EQ(context_->getDataMatrix("uniao"), first);
}

TEST_F(UnionExecutionTest, WithoutSourcesTheResultIsAnEmptyMatrix) {
  EXPECT_TRUE(run());
  EXPECT_THAT(context_->getDataMatrix("uniao"), isMatrix(matrix({})));
}

TEST_F(UnionExecutionTest, TheTemporaryTableBearsTheNameOfTheResult) {
  registerBoth();
  unite({kOfA[0]}, {kOfB[0]}, true);
  EXPECT_TRUE(run());
  EXPECT_THAT(rowsOfTable("uniao"), testing::ElementsAre("", "1", "3"));
  EXPECT_TRUE(run("alvo"));
  EXPECT_THAT(rowsOfTable("alvo"), testing::SizeIs(3));
}

TEST_F(UnionExecutionTest, WithoutTheFlagThereIsNoTemporaryTable) {
  registerBoth();
  unite({kOfA[0]}, {kOfB[0]});
  run();
  EXPECT_NE(failureOf([&] { rowsOfTable("uniao"); }), "");
}
