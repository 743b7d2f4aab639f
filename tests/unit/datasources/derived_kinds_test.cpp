// What sources made of other sources, and statements that change data, have in common, kind by
// kind.

#include <gtest/gtest.h>

#include <string>

#include "unit/datasources/definition_fixture.h"

namespace {

class DerivedKindsTest : public mox_test::DefinitionTest,
                         public testing::WithParamInterface<char const*> {
 protected:
  std::string className() const { return GetParam(); }

  /// With a filter where the kind has any, and with what the aggregation cannot do without.
  std::shared_ptr<moxDataSource> make() {
    return read("<" + className() + " name=\"Fonte\"><Binds><moxTextUniqueFilter " +
                "columnName=\"a\"/></Binds>" +
                (className() == "moxAggregationDataSource" ? "<moxDataMatrixAggregator/>" : "") +
                "</" + className() + ">");
  }
};

}  // namespace

TEST_P(DerivedKindsTest, IsASourceThatIsFoundByItsName) {
  auto const made = make();
  EXPECT_EQ(made->name(), className());
  EXPECT_EQ(made->getTipo(), 3);
  EXPECT_EQ(made->getName(), "Fonte");
  EXPECT_EQ(made->description(), "Fonte");
  made->setName("Outra");
  EXPECT_EQ(made->description(), "Outra");
}

TEST_P(DerivedKindsTest, BelongsToItsLibraryAndToNoOtherItem) {
  auto const made = make();
  EXPECT_EQ(made->getParentLibName(), "");
  made->setParentLibraryName("ESCOLA");
  EXPECT_EQ(made->getParentLibName(), "ESCOLA");
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
}

TEST_P(DerivedKindsTest, RefusesAnEmptyNodeAndStaysAsItWas) {
  auto const made = make();
  auto const before = textOf(*made);
  EXPECT_FALSE(made->load(nullptr));
  EXPECT_FALSE(made->save(nullptr));
  EXPECT_EQ(textOf(*made), before);
}

TEST_P(DerivedKindsTest, ItsRunIsNamedLikeItAndOffersItsFilters) {
  auto const made = make();
  auto const run = made->createExecution();
  EXPECT_EQ(run->name(), className() + "Execution");
  EXPECT_EQ(run->getFilters(), made->getFilters());
  EXPECT_EQ(run->getFilters().size(), className() == "moxObjectDataSource" ? 1U : 0U);
}

TEST_P(DerivedKindsTest, OnlyASorterLeavesAnythingToChoose) {
  auto const made = host_.get<moxDataSource>(className());
  EXPECT_EQ(made->options().size(), className() == "moxSorterDataSource" ? 1U : 0U);
}

TEST_P(DerivedKindsTest, TellsNoSourcesThatNobodyKnows) {
  EXPECT_TRUE(make()->getRelatedDataSources(false).empty());
  EXPECT_TRUE(make()->getRelatedDataSources(true).empty());
}

INSTANTIATE_TEST_SUITE_P(Kinds, DerivedKindsTest,
                         testing::Values("moxAggregationDataSource", "moxSorterDataSource",
                                         "moxObjectDataSource", "moxUnionDataSource",
                                         "moxExpressionDataSource", "moxDataSourcePivoting",
                                         "moxJoinDataSource"));
