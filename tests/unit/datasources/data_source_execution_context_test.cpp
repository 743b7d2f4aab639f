#include "zyn/datasources/data_source_execution_context.h"

#include <stdexcept>

#include "mox/core/error.h"
#include "mox/zyn/datasources/data_source_option.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "unit/datasources/context_fixture.h"

namespace mox_test {

namespace {

using DataSourceExecutionContextTest = ContextTest;

class FakeOption final : public moxDataSourceOptionData {
 public:
  std::string name() const override { return "fakeOption"; }
};

/// What a run says when it fails; "no failure" for one that does not.
template <class Run>
std::string failureOf(Run const& run) {
  try {
    run();
  } catch (moxError const& error) {
    return error.errorMessage();
  }
  return "no failure";
}

TEST_F(DataSourceExecutionContextTest, IsMadeByTheRegistryAnewOnEveryCall) {
  auto const one = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  auto const other = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  ASSERT_NE(one, nullptr);
  EXPECT_NE(one, other);
  EXPECT_EQ(one->name(), "moxDataSourceExecutionContext");
}

TEST_F(DataSourceExecutionContextTest, FreshContextHoldsNothing) {
  EXPECT_FALSE(context_->dataSourcesProcessed());
  EXPECT_EQ(context_->getIdUnidadeMatriz(), 0);
  EXPECT_TRUE(context_->getIdUnidadeNegocio().empty());
  EXPECT_EQ(context_->getDataMatrix("a"), nullptr);
  EXPECT_EQ(context_->getDataSourceRow("k", "a"), nullptr);
  EXPECT_TRUE(context_->getDataSourceOptions("a").empty());
  EXPECT_TRUE(context_->getDataSourceFilters("a").empty());
  EXPECT_EQ(context_->getReportContext(), nullptr);
}

// Running a list.

TEST_F(DataSourceExecutionContextTest, EmptyListEndsProcessedWithTheUnitsStored) {
  EXPECT_TRUE(run({}, {3, 4}, 1));
  EXPECT_TRUE(context_->dataSourcesProcessed());
  EXPECT_EQ(context_->getIdUnidadeNegocio(), (std::vector<int>{3, 4}));
  EXPECT_EQ(context_->getIdUnidadeMatriz(), 1);
}

TEST_F(DataSourceExecutionContextTest, SecondRunUpdatesTheUnitsAndRunsNothing) {
  auto const execution = std::make_shared<FakeExecution>();
  run({entry("a", execution)}, {3}, 1);
  EXPECT_TRUE(run({entry("a", execution)}, {4}, 2));
  EXPECT_EQ(execution->targets, Texts{"a"});
  EXPECT_EQ(context_->getIdUnidadeNegocio(), std::vector<int>{4});
  EXPECT_EQ(context_->getIdUnidadeMatriz(), 2);
}

TEST_F(DataSourceExecutionContextTest, RunsTheListInItsOrder) {
  Texts seen;
  auto const noting = [&](auto const& context, std::string const& target) {
    seen.push_back(target + (context->getDataMatrix("b") ? " after b" : " before b"));
    return context->registerDataMatrix(target, matrix({}));
  };
  auto const execution = std::make_shared<FakeExecution>(noting);
  run({entry("b", execution), entry("a", execution)});
  EXPECT_EQ(seen, (Texts{"b before b", "a after b"}));
}

TEST_F(DataSourceExecutionContextTest, NotifierIsToldOfTheTotalAndEachStep) {
  auto const notifier = std::make_shared<ScriptedNotifier>();
  context_->processDataSources(notifier, {entry("a"), entry("b")}, {}, 0);
  EXPECT_EQ(notifier->told, (Texts{"step 0", "total 2", "step 0", "step 1", "step 2"}));
  EXPECT_TRUE(context_->dataSourcesProcessed());
}

TEST_F(DataSourceExecutionContextTest, NotifierOfAProcessedContextGetsOneStep) {
  run({});
  auto const notifier = std::make_shared<ScriptedNotifier>();
  context_->processDataSources(notifier, {entry("a")}, {}, 0);
  EXPECT_EQ(notifier->told, Texts{"step 0"});
}

TEST_F(DataSourceExecutionContextTest, NotifierThatStopsAtFirstStopsBeforeTheTotal) {
  auto const execution = std::make_shared<FakeExecution>();
  auto const notifier = std::make_shared<ScriptedNotifier>(1);
  EXPECT_TRUE(context_->processDataSources(notifier, {entry("a", execution)}, {3}, 1));
  EXPECT_EQ(notifier->told, Texts{"step 0"});
  EXPECT_FALSE(context_->dataSourcesProcessed());
  EXPECT_EQ(context_->getIdUnidadeNegocio(), std::vector<int>{3});

  EXPECT_TRUE(run({entry("a", execution)}));
  EXPECT_EQ(execution->targets, Texts{"a"});
  EXPECT_TRUE(context_->dataSourcesProcessed());
}

TEST_F(DataSourceExecutionContextTest, NotifierThatStopsAfterTheTotalRunsNothing) {
  auto const execution = std::make_shared<FakeExecution>();
  auto const notifier = std::make_shared<ScriptedNotifier>(2);
  EXPECT_TRUE(context_->processDataSources(notifier, {entry("a", execution)}, {}, 0));
  EXPECT_EQ(notifier->told, (Texts{"step 0", "total 1", "step 0"}));
  EXPECT_TRUE(execution->targets.empty());
  EXPECT_FALSE(context_->dataSourcesProcessed());
}

TEST_F(DataSourceExecutionContextTest, NotifierThatStopsBetweenSourcesKeepsTheMatricesSoFar) {
  auto const notifier = std::make_shared<ScriptedNotifier>(3);
  EXPECT_TRUE(context_->processDataSources(notifier, {entry("a"), entry("b")}, {}, 0));
  EXPECT_EQ(notifier->told, (Texts{"step 0", "total 2", "step 0", "step 1"}));
  EXPECT_NE(context_->getDataMatrix("a"), nullptr);
  EXPECT_EQ(context_->getDataMatrix("b"), nullptr);
  EXPECT_FALSE(context_->dataSourcesProcessed());
}

TEST_F(DataSourceExecutionContextTest, NotifierThatStopsAtTheLastStepLeavesTheRunUnfinished) {
  auto const notifier = std::make_shared<ScriptedNotifier>(3);
  EXPECT_TRUE(context_->processDataSources(notifier, {entry("a")}, {}, 0));
  EXPECT_FALSE(context_->dataSourcesProcessed());
}

TEST_F(DataSourceExecutionContextTest, ExecutionThatGivesFalseFailsTheRunWithItsName) {
  auto const failing = [](auto const&, std::string const&) { return false; };
  auto const after = std::make_shared<FakeExecution>();
  EXPECT_EQ(failureOf([&] {
              run({entry("a"), entry("alunos", std::make_shared<FakeExecution>(failing)),
                   entry("c", after)});
            }),
            "Falha: alunos");
  EXPECT_FALSE(context_->dataSourcesProcessed());
  EXPECT_NE(context_->getDataMatrix("a"), nullptr);
  EXPECT_TRUE(after->targets.empty());
}

TEST_F(DataSourceExecutionContextTest, OneNameTwiceInAListFails) {
  EXPECT_EQ(failureOf([&] { run({entry("a"), entry("a")}); }), "Falha: a");
}

TEST_F(DataSourceExecutionContextTest, ExceptionOfAnExecutionPassesThrough) {
  auto const throwing = [](auto const&, std::string const&) -> bool {
    throw moxDefaultErrorImpl<moxError>("Filtro com token x não localizado");
  };
  EXPECT_EQ(failureOf([&] {
              run({entry("a"), entry("b", std::make_shared<FakeExecution>(throwing))});
            }),
            "Filtro com token x não localizado");
  EXPECT_FALSE(context_->dataSourcesProcessed());
  EXPECT_NE(context_->getDataMatrix("a"), nullptr);
}

TEST_F(DataSourceExecutionContextTest, ContextThatNothingSharesFailsAtItsFirstSource) {
  DataSourceExecutionContext alone;
  EXPECT_TRUE(alone.processDataSources(nullptr, {}, {}, 0));
  DataSourceExecutionContext other;
  EXPECT_THROW(other.processDataSources(nullptr, {entry("a")}, {}, 0), std::bad_weak_ptr);
}

TEST_F(DataSourceExecutionContextTest, ListWithAnEmptyExecutionRunsNothing) {
  auto const execution = std::make_shared<FakeExecution>();
  EXPECT_THROW(run({entry("a", execution), entry("b", nullptr)}), std::invalid_argument);
  EXPECT_TRUE(execution->targets.empty());
}

// Units.

TEST_F(DataSourceExecutionContextTest, SessionFillsInItsUnitAndHeadOffice) {
  logIn(5, 9);
  run({});
  EXPECT_EQ(context_->getIdUnidadeNegocio(), std::vector<int>{5});
  EXPECT_EQ(context_->getIdUnidadeMatriz(), 9);
}

TEST_F(DataSourceExecutionContextTest, GivenUnitsStayAsTheyAreWithASession) {
  logIn(5, 9);
  run({}, {8, 7}, 2);
  EXPECT_EQ(context_->getIdUnidadeNegocio(), (std::vector<int>{8, 7}));
  EXPECT_EQ(context_->getIdUnidadeMatriz(), 2);
}

TEST_F(DataSourceExecutionContextTest, UnitsAndHeadOfficeAreFilledInEachForItself) {
  logIn(5, 9);
  run({}, {8}, 0);
  EXPECT_EQ(context_->getIdUnidadeNegocio(), std::vector<int>{8});
  EXPECT_EQ(context_->getIdUnidadeMatriz(), 9);
}

TEST_F(DataSourceExecutionContextTest, HeadOfficeStays0WithoutASession) {
  run({});
  EXPECT_EQ(context_->getIdUnidadeMatriz(), 0);
  EXPECT_TRUE(context_->getIdUnidadeNegocio().empty());
}

TEST_F(DataSourceExecutionContextTest, WorksWithoutASessionService) {
  auto* const service = std::exchange(moxSession, nullptr);
  run({}, {3}, 0);
  moxSession = service;
  EXPECT_EQ(context_->getIdUnidadeNegocio(), std::vector<int>{3});
  EXPECT_EQ(context_->getIdUnidadeMatriz(), 0);
}

// Filters and options.

TEST_F(DataSourceExecutionContextTest, FirstFiltersOfANameWin) {
  EXPECT_TRUE(context_->setDataSourceFilters("s", {filterOn("a")}));
  EXPECT_FALSE(context_->setDataSourceFilters("s", {filterOn("b")}));
  EXPECT_EQ(columnsOf(*context_, "s"), Texts{"a"});
}

TEST_F(DataSourceExecutionContextTest, NoFiltersAreAnEntryToo) {
  EXPECT_TRUE(context_->setDataSourceFilters("s", {}));
  EXPECT_FALSE(context_->setDataSourceFilters("s", {filterOn("b")}));
  EXPECT_TRUE(columnsOf(*context_, "s").empty());
}

TEST_F(DataSourceExecutionContextTest, FixedFiltersAreAllKept) {
  context_->addDataSourceFixedFilter("s", filterOn("a"));
  context_->addDataSourceFixedFilter("s", filterOn("b"));
  EXPECT_EQ(columnsOf(*context_, "s"), (Texts{"a", "b"}));
}

TEST_F(DataSourceExecutionContextTest, UsersFiltersComeBeforeTheFixedOnes) {
  context_->addDataSourceFixedFilter("s", filterOn("fixed"));
  context_->setDataSourceFilters("s", {filterOn("user"), filterOn("user 2")});
  EXPECT_EQ(columnsOf(*context_, "s"), (Texts{"user", "user 2", "fixed"}));
}

TEST_F(DataSourceExecutionContextTest, FiltersAreFoundByTheExactName) {
  context_->setDataSourceFilters("Alunos", {filterOn("a")});
  EXPECT_TRUE(columnsOf(*context_, "alunos").empty());
}

TEST_F(DataSourceExecutionContextTest, EmptyFiltersAreRefused) {
  EXPECT_THROW(context_->setDataSourceFilters("s", {nullptr}), std::invalid_argument);
  EXPECT_THROW(context_->addDataSourceFixedFilter("s", nullptr), std::invalid_argument);
  EXPECT_TRUE(context_->setDataSourceFilters("s", {filterOn("a")}));
  EXPECT_EQ(columnsOf(*context_, "s"), Texts{"a"});
}

TEST_F(DataSourceExecutionContextTest, FirstOptionsOfANameWin) {
  auto const first = std::make_shared<FakeOption>();
  EXPECT_TRUE(context_->setDataSourceOptions("s", {first}));
  EXPECT_FALSE(context_->setDataSourceOptions("s", {}));
  ASSERT_EQ(context_->getDataSourceOptions("s").size(), 1u);
  EXPECT_EQ(context_->getDataSourceOptions("s")[0], first);
}

// Matrices and rows.

TEST_F(DataSourceExecutionContextTest, FirstMatrixOfANameStays) {
  auto const first = matrix({});
  EXPECT_TRUE(context_->registerDataMatrix("m", first));
  EXPECT_FALSE(context_->registerDataMatrix("m", matrix({})));
  EXPECT_EQ(context_->getDataMatrix("m"), first);
}

TEST_F(DataSourceExecutionContextTest, EmptyMatrixIsNotRegistered) {
  EXPECT_FALSE(context_->registerDataMatrix("m", nullptr));
  EXPECT_TRUE(context_->registerDataMatrix("m", matrix({})));
}

TEST_F(DataSourceExecutionContextTest, NameOfAMatrixWithTwoNamesIsTheSmaller) {
  auto const shared = matrix({});
  context_->registerDataMatrix("b", shared);
  context_->registerDataMatrix("B", shared);
  context_->registerDataMatrix("A", matrix({}));
  EXPECT_EQ(context_->getDataMatrixName(shared), "B");
  EXPECT_EQ(context_->getDataMatrixName(matrix({})), "");
  EXPECT_EQ(context_->getDataMatrixName(nullptr), "");
}

TEST_F(DataSourceExecutionContextTest, AskersWithOneKeyShareACursor) {
  context_->registerDataMatrix("m", matrix({{"a", ints(1, 2)}}));
  auto const row = context_->getDataSourceRow("k", "m");
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(context_->getDataSourceRow("k", "m"), row);
  EXPECT_NE(context_->getDataSourceRow("other", "m"), row);
}

TEST_F(DataSourceExecutionContextTest, KnownKeyWithAnUnknownMatrixGivesTheCursor) {
  context_->registerDataMatrix("m", matrix({{"a", ints(1)}}));
  auto const row = context_->getDataSourceRow("k", "m");
  EXPECT_EQ(context_->getDataSourceRow("k", "unknown"), row);
}

TEST_F(DataSourceExecutionContextTest, UnknownMatrixIsAskedForAgainLater) {
  EXPECT_EQ(context_->getDataSourceRow("k", "m"), nullptr);
  context_->registerDataMatrix("m", matrix({{"a", ints(1)}}));
  EXPECT_NE(context_->getDataSourceRow("k", "m"), nullptr);
}

TEST_F(DataSourceExecutionContextTest, ResetForgetsTheCursorsAndKeepsTheMatrices) {
  context_->registerDataMatrix("m", matrix({{"a", ints(1)}}));
  auto const row = context_->getDataSourceRow("k", "m");
  context_->resetRows();
  EXPECT_NE(context_->getDataMatrix("m"), nullptr);
  EXPECT_NE(context_->getDataSourceRow("k", "m"), row);
}

// Groups: filters on their way to a member.

class AppendContextTest : public ContextTest {
 protected:
  void append(std::string const& targetName = "",
              std::vector<ManageFilterData> const& managers = {}) {
    context_->appendContext(child_, "membro", "grupo", targetName, managers);
  }

  void give(std::string const& source, Texts const& columns) {
    std::vector<Filter> filters;
    for (auto const& column : columns) {
      filters.push_back(filterOn(column));
    }
    context_->setDataSourceFilters(source, filters);
  }

  std::shared_ptr<DataSourceExecutionContext> child_ =
      std::make_shared<DataSourceExecutionContext>();
};

TEST_F(AppendContextTest, NamesAndThenManagersInTheirOrder) {
  give("membro", {"membro"});
  give("alvo", {"alvo"});
  give("grupo", {"grupo"});
  give("g1", {"a", "estranho", "b"});
  append("alvo", {manager("g1", {"b"}, {"a"})});
  EXPECT_EQ(columnsOf(*child_, "membro"), (Texts{"grupo", "alvo", "membro", "a", "b"}));
}

TEST_F(AppendContextTest, FixedFiltersGoTheSameWayAndStayFixed) {
  for (auto const* const source : {"membro", "alvo", "grupo"}) {
    context_->addDataSourceFixedFilter(source, filterOn(source));
  }
  context_->addDataSourceFixedFilter("g1", filterOn("a"));
  context_->addDataSourceFixedFilter("g1", filterOn("estranho"));
  append("alvo", {manager("g1", {"a"}, {})});
  EXPECT_TRUE(child_->setDataSourceFilters("membro", {filterOn("user")}));
  EXPECT_EQ(columnsOf(*child_, "membro"), (Texts{"user", "grupo", "alvo", "membro", "a"}));
}

TEST_F(AppendContextTest, TargetEqualToTheGroupIsTakenOnce) {
  give("grupo", {"a"});
  append("grupo");
  EXPECT_EQ(columnsOf(*child_, "membro"), Texts{"a"});
}

TEST_F(AppendContextTest, MemberNamedAsTheGroupIsTakenOnce) {
  give("grupo", {"a"});
  context_->addDataSourceFixedFilter("grupo", filterOn("f"));
  context_->appendContext(child_, "grupo", "grupo", "", {});
  EXPECT_EQ(columnsOf(*child_, "grupo"), (Texts{"a", "f"}));
}

TEST_F(AppendContextTest, MemberNamedAsTheTargetIsTakenOnce) {
  give("alvo", {"a"});
  context_->appendContext(child_, "alvo", "grupo", "alvo", {});
  EXPECT_EQ(columnsOf(*child_, "alvo"), Texts{"a"});
}

TEST_F(AppendContextTest, EmptyTargetIsNoName) {
  give("", {"a"});
  append("");
  EXPECT_TRUE(columnsOf(*child_, "membro").empty());
}

TEST_F(AppendContextTest, FilterThatIsRelatedAndAvailablePassesOnce) {
  give("g1", {"a"});
  append("", {manager("g1", {"a"}, {"a"})});
  EXPECT_EQ(columnsOf(*child_, "membro"), Texts{"a"});
}

TEST_F(AppendContextTest, FiltersAimedAtAMemberGoToItUnderEitherNameOfTheGroup) {
  give("grupo->outro", {"a"});
  give("alvo->outro", {"b"});
  give("grupo->interno->fundo", {"c"});
  give("grupo->membro", {"d"});
  give("grupo", {"e"});
  give("grupos->outro", {"f"});
  context_->addDataSourceFixedFilter("grupo->outro", filterOn("x"));
  append("alvo");
  EXPECT_TRUE(child_->setDataSourceFilters("free", {filterOn("y")}));
  EXPECT_EQ(columnsOf(*child_, "outro"), (Texts{"b", "a", "x"}));
  EXPECT_EQ(columnsOf(*child_, "interno->fundo"), Texts{"c"});
  EXPECT_EQ(columnsOf(*child_, "membro"), (Texts{"e", "d"}));
}

TEST_F(AppendContextTest, NoFiltersLeaveTheMembersPlaceFree) {
  append();
  EXPECT_TRUE(child_->setDataSourceFilters("membro", {filterOn("later")}));
  EXPECT_EQ(columnsOf(*child_, "membro"), Texts{"later"});
}

TEST_F(AppendContextTest, SomeFiltersTakeTheMembersPlace) {
  give("grupo", {"a"});
  append();
  EXPECT_FALSE(child_->setDataSourceFilters("membro", {filterOn("later")}));
}

TEST_F(AppendContextTest, ChildLivesAsLongAsTheContext) {
  append();
  std::weak_ptr<moxDataSourceExecutionContext> const watch = child_;
  child_.reset();
  EXPECT_FALSE(watch.expired());
  context_.reset();
  EXPECT_TRUE(watch.expired());
}

TEST_F(AppendContextTest, ContextIsNoChildOfItsOwn) {
  EXPECT_THROW(context_->appendContext(context_, "m", "g", "", {}), std::invalid_argument);
  EXPECT_THROW(context_->appendContext(nullptr, "m", "g", "", {}), std::invalid_argument);
  std::weak_ptr<DataSourceExecutionContext> const watch = context_;
  context_.reset();
  EXPECT_TRUE(watch.expired());
}

}  // namespace

}  // namespace mox_test
