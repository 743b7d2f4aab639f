// What a run tells of itself: sources, statements, filters without effect, and runs that only put
// statements together.

#include "mox/zyn/datasources/run_report.h"

#include "mox/core/error.h"
#include "unit/datasources/context_fixture.h"

namespace mox_test {

namespace {

class RunReportTest : public ContextTest {
 protected:
  using Recording = std::function<void(RunRecorder&, moxDataSourceExecutionContext&)>;

  static RunRecorder* recorderOf(moxDataSourceExecutionContext& context) {
    return dynamic_cast<RunRecorderHolder&>(context).runRecorder();
  }

  /// A SQL source's execution that asks for its filters, records one statement and uses the first
  /// of the filters.
  static std::shared_ptr<FakeSqlExecution> sqlSource(std::string const& sql) {
    return std::make_shared<FakeSqlExecution>([sql](auto const& context, auto const& target) {
      auto const filters = context->getDataSourceFilters(target);
      auto* const recorder = recorderOf(*context);
      if (recorder == nullptr) {
        return context->registerDataMatrix(target, matrix({{"a", ints(1, 2, 3)}}));
      }
      recorder->statement({sql, {}, {}, {}});
      if (!filters.empty()) {
        recorder->filterUsed(filters.front());
      }
      return context->registerDataMatrix(
          target, recorder->executes() ? matrix({{"a", ints(1, 2, 3)}}) : matrix({}));
    });
  }

  static std::shared_ptr<FakeSqlExecution> sqlSourceFilteredBy(std::string const& other) {
    auto execution = sqlSource("select");
    execution->filterDataSource = other;
    return execution;
  }

  moxRunReport report() const { return context_->runReport(); }

  /// "name executed rows", or "name composed rows" for a source that was not executed.
  Texts sources() const {
    Texts told;
    for (auto const& source : report().sources) {
      told.push_back(source.name + (source.executed ? " executed " : " composed ") +
                     std::to_string(source.rows));
    }
    return told;
  }

  Texts ignored() const {
    Texts told;
    for (auto const& filter : report().ignoredFilters) {
      told.push_back(filter.source + "." + filter.column + ": " + filter.reason);
    }
    return told;
  }
};

TEST_F(RunReportTest, NothingIsKeptUnlessAskedFor) {
  context_->setDataSourceFilters("nobody", {filterOn("a")});
  run({entry("a", sqlSource("select 1"))}, {3}, 1);
  EXPECT_EQ(context_->runRecorder(), nullptr);
  EXPECT_TRUE(report().sources.empty());
  EXPECT_TRUE(report().units.empty());
  EXPECT_TRUE(report().ignoredFilters.empty());
}

TEST_F(RunReportTest, TellsTheSourceAtWorkWithoutAReport) {
  Texts during;
  auto const looks = [&](auto const&, std::string const&) {
    during = context_->sourcesAtWork();
    return true;
  };
  EXPECT_EQ(context_->sourcesAtWork(), Texts{});
  run({entry("a"), entry("b", std::make_shared<FakeExecution>(looks))});
  EXPECT_EQ(during, Texts{"b"});
  EXPECT_EQ(context_->sourcesAtWork(), Texts{}) << "the run has ended";
}

TEST_F(RunReportTest, TellsTheSourceThatFailed) {
  auto const gives = [](auto const&, std::string const&) { return false; };
  auto const throws = [](auto const&, std::string const&) -> bool {
    throw moxDefaultErrorImpl<moxError>("Quebrou");
  };
  EXPECT_THROW(run({entry("a"), entry("b", std::make_shared<FakeExecution>(gives)), entry("c")}),
               moxError);
  EXPECT_EQ(context_->sourcesAtWork(), Texts{"b"});
  EXPECT_THROW(run({entry("d", std::make_shared<FakeExecution>(throws))}), moxError);
  EXPECT_EQ(context_->sourcesAtWork(), Texts{"d"});
}

TEST_F(RunReportTest, TellsTheMemberThatFailedBehindItsGroup) {
  auto const groupOf = [this](List const& members) {
    return std::make_shared<FakeExecution>([this, members](auto const&, std::string const& name) {
      auto const child = std::make_shared<DataSourceExecutionContext>();
      context_->appendContext(child, "", name, name, {});
      return child->processDataSources({}, members, {}, 0);
    });
  };
  auto const gives = [](auto const&, std::string const&) { return false; };
  EXPECT_THROW(
      run({entry("sound", groupOf({entry("m")})),
           entry("broken",
                 groupOf({entry("m"), entry("n", std::make_shared<FakeExecution>(gives))}))}),
      moxError);
  EXPECT_EQ(context_->sourcesAtWork(), (Texts{"broken", "n"}));
}

TEST_F(RunReportTest, AGroupThatRanIsNotAtWork) {
  auto const group = [this](auto const&, std::string const& name) {
    auto const child = std::make_shared<DataSourceExecutionContext>();
    context_->appendContext(child, "", name, name, {});
    return child->processDataSources({}, {entry("m")}, {}, 0);
  };
  auto const gives = [](auto const&, std::string const&) { return false; };
  EXPECT_THROW(run({entry("g", std::make_shared<FakeExecution>(group)),
                    entry("b", std::make_shared<FakeExecution>(gives))}),
               moxError);
  EXPECT_EQ(context_->sourcesAtWork(), Texts{"b"});
}

TEST_F(RunReportTest, IsASecondFaceOfTheContext) {
  std::shared_ptr<moxDataSourceExecutionContext> const context =
      host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  EXPECT_NE(dynamic_cast<moxRunReporter*>(context.get()), nullptr);
  EXPECT_NE(dynamic_cast<RunRecorderHolder*>(context.get()), nullptr);
}

TEST_F(RunReportTest, SourcesWithClassRowsAndTimeInTheirOrder) {
  context_->keepRunReport();
  run({entry("b", sqlSource("select 1")), entry("a")});
  auto const kept = report();
  ASSERT_EQ(kept.sources.size(), 2u);
  EXPECT_EQ(sources(), (Texts{"b executed 3", "a executed 2"}));
  EXPECT_EQ(kept.sources[0].executionClass, "fakeExecution");
  ASSERT_EQ(kept.sources[0].statements.size(), 1u);
  EXPECT_EQ(kept.sources[0].statements[0].sql, "select 1");
  EXPECT_TRUE(kept.sources[1].statements.empty());
  EXPECT_GE(kept.sources[0].seconds, 0.0);
}

TEST_F(RunReportTest, SourceWithoutATargetIsNamedByItsLastMatrix) {
  auto const ownName = [](auto const& context, std::string const&) {
    EXPECT_TRUE(context->registerDataMatrix("given", matrix({{"a", ints(1)}})));
    return context->registerDataMatrix("alunos", matrix({{"a", ints(1, 2, 3, 4)}}));
  };
  context_->keepRunReport();
  run({entry("", std::make_shared<FakeExecution>(ownName))});
  EXPECT_EQ(sources(), Texts{"alunos executed 4"});
}

TEST_F(RunReportTest, UnitsOfTheCaller) {
  logIn(5, 9);
  context_->keepRunReport();
  run({}, {3, 4}, 1);
  EXPECT_EQ(report().units, (std::vector<int>{3, 4}));
  EXPECT_FALSE(report().unitsFromSession);
  EXPECT_EQ(report().headOffice, 1);
  EXPECT_FALSE(report().headOfficeFromSession);
}

TEST_F(RunReportTest, UnitsOfTheSession) {
  logIn(5, 9);
  context_->keepRunReport();
  run({});
  EXPECT_EQ(report().units, std::vector<int>{5});
  EXPECT_TRUE(report().unitsFromSession);
  EXPECT_EQ(report().headOffice, 9);
  EXPECT_TRUE(report().headOfficeFromSession);
}

TEST_F(RunReportTest, WithoutASessionNothingIsTheSessions) {
  context_->keepRunReport();
  run({});
  EXPECT_FALSE(report().unitsFromSession);
  EXPECT_FALSE(report().headOfficeFromSession);
}

TEST_F(RunReportTest, ExceptionLeavesTheReportUpToThere) {
  auto const throwing = [](auto const& context, auto const&) -> bool {
    recorderOf(*context)->statement({"select broken", {}, {}, {}});
    throw moxDefaultErrorImpl<moxError>("no such table");
  };
  context_->keepRunReport();
  context_->setDataSourceFilters("c", {filterOn("x")});
  EXPECT_THROW(run({entry("a"), entry("b", std::make_shared<FakeSqlExecution>(throwing)),
                    entry("c", sqlSource("select 3"))}),
               moxError);
  EXPECT_EQ(sources(), (Texts{"a executed 2", "b executed 0"}));
  EXPECT_EQ(report().sources[1].statements.at(0).sql, "select broken");
  EXPECT_EQ(ignored(), Texts{"c.x: the run ended before source \"c\""});
}

TEST_F(RunReportTest, StatementOfASourceThatIsRunByHand) {
  context_->keepRunReport();
  sqlSource("select 1")->generateDataMatrix(context_, "a");
  sqlSource("select 2")->generateDataMatrix(context_, "b");
  EXPECT_EQ(sources(), (Texts{"a executed 3", "b executed 3"}));
  EXPECT_EQ(report().sources[1].statements.at(0).sql, "select 2");
}

TEST_F(RunReportTest, MatrixThatTheCallerHandsInIsNoSource) {
  context_->keepRunReport();
  context_->registerDataMatrix("given", matrix({}));
  run({entry("a")});
  EXPECT_EQ(sources(), Texts{"a executed 2"});
}

TEST_F(RunReportTest, ReportThatIsBegunAnewWhileASourceRuns) {
  auto const renewing = [this](auto const& context, auto const& target) {
    context_->keepRunReport();
    return context->registerDataMatrix(target, matrix({}));
  };
  context_->keepRunReport();
  run({entry("a", std::make_shared<FakeExecution>(renewing)), entry("b")});
  EXPECT_EQ(sources(), Texts{"b executed 2"});
}

// Filters without effect.

TEST_F(RunReportTest, UsedFiltersAreNotIgnored) {
  context_->keepRunReport();
  context_->setDataSourceFilters("a", {filterOn("x")});
  context_->addDataSourceFixedFilter("b", filterOn("y"));
  run({entry("a", sqlSource("select 1")), entry("b", sqlSource("select 2"))});
  EXPECT_EQ(ignored(), Texts{});
}

TEST_F(RunReportTest, IgnoredFilterOfANameThatIsNotInTheRun) {
  context_->keepRunReport();
  context_->setDataSourceFilters("turmas", {filterOn("x")});
  run({entry("a", sqlSource("select 1"))});
  EXPECT_EQ(ignored(), Texts{"turmas.x: the run has no source \"turmas\""});
}

TEST_F(RunReportTest, IgnoredFilterOfASourceWithoutAStatement) {
  context_->keepRunReport();
  context_->setDataSourceFilters("a", {filterOn("x")});
  run({entry("a")});
  EXPECT_EQ(ignored(), Texts{"a.x: source \"a\" has no statement"});
}

TEST_F(RunReportTest, IgnoredFilterThatNoStatementTakes) {
  context_->keepRunReport();
  context_->setDataSourceFilters("a", {filterOn("x"), filterOn("y")});
  run({entry("a", sqlSource("select 1"))});
  EXPECT_EQ(ignored(), Texts{"a.y: no statement of source \"a\" takes it"});
}

TEST_F(RunReportTest, IgnoredFilterThatAManagerPassesToNobody) {
  auto const askingManager = [](auto const& context, std::string const& target) {
    context->getDataSourceFilters("gerente");
    return context->registerDataMatrix(target, matrix({}));
  };
  context_->keepRunReport();
  context_->setDataSourceFilters("gerente", {filterOn("x")});
  run({entry("a", std::make_shared<FakeSqlExecution>(askingManager))});
  EXPECT_EQ(ignored(), Texts{"gerente.x: filter manager \"gerente\" passes it to no statement"});
}

TEST_F(RunReportTest, IgnoredFilterWithTheExecutionsOwnReason) {
  auto const telling = [](auto const& context, std::string const& target) {
    for (auto const& filter : context->getDataSourceFilters(target)) {
      recorderOf(*context)->filterIgnored(filter, "source \"f\" answers it");
      recorderOf(*context)->filterIgnored(filter, "a later reason");
    }
    return context->registerDataMatrix(target, matrix({}));
  };
  context_->keepRunReport();
  context_->setDataSourceFilters("a", {filterOn("x")});
  run({entry("a", std::make_shared<FakeSqlExecution>(telling))});
  EXPECT_EQ(ignored(), Texts{"a.x: source \"f\" answers it"});
}

TEST_F(RunReportTest, UsersIgnoredFiltersComeBeforeTheFixedOnes) {
  context_->keepRunReport();
  context_->addDataSourceFixedFilter("t", filterOn("fixed"));
  context_->setDataSourceFilters("t", {filterOn("user")});
  run({});
  EXPECT_EQ(ignored(),
            (Texts{"t.user: the run has no source \"t\"", "t.fixed: the run has no source \"t\""}));
}

// Groups.

class GroupReportTest : public RunReportTest {
 protected:
  /// A group that runs one member in a context of its own.
  static std::shared_ptr<FakeExecution> group(
      std::shared_ptr<moxDataSourceExecution> const& member) {
    return std::make_shared<FakeExecution>([member](auto const& context, auto const& target) {
      auto const child = std::make_shared<DataSourceExecutionContext>();
      dynamic_cast<DataSourceExecutionContext&>(*context).appendContext(child, "membro", target, "",
                                                                        {});
      child->processDataSources(nullptr, {entry("membro", member)}, {99}, 98);
      return context->registerDataMatrix(target, child->getDataMatrix("membro"));
    });
  }
};

TEST_F(GroupReportTest, MembersArePartOfTheReport) {
  context_->keepRunReport();
  context_->setDataSourceFilters("grupo", {filterOn("x")});
  run({entry("grupo", group(sqlSource("select 1"))), entry("z")}, {3}, 1);
  EXPECT_EQ(sources(), (Texts{"grupo executed 3", "membro executed 3", "z executed 2"}));
  EXPECT_EQ(report().sources[1].statements.size(), 1u);
  EXPECT_TRUE(report().sources[0].statements.empty());
  EXPECT_EQ(report().units, std::vector<int>{3});
  EXPECT_EQ(report().headOffice, 1);
  EXPECT_EQ(ignored(), Texts{});
}

TEST_F(GroupReportTest, FilterThatNoMemberTakes) {
  context_->keepRunReport();
  context_->setDataSourceFilters("grupo", {filterOn("x")});
  run({entry("grupo", group(std::make_shared<FakeExecution>()))});
  EXPECT_EQ(ignored(), Texts{"grupo.x: no statement of source \"grupo\" takes it"});
}

TEST_F(GroupReportTest, MembersOfAGroupThatIsNeededAreExecuted) {
  context_->composeOnly();
  run({entry("grupo", group(sqlSource("select 1"))), entry("z", sqlSourceFilteredBy("grupo"))});
  EXPECT_EQ(sources(), (Texts{"grupo executed 3", "membro executed 3", "z composed 0"}));
}

// Runs that only put statements together.

using ComposeOnlyTest = GroupReportTest;

TEST_F(ComposeOnlyTest, StatementsWithoutRows) {
  context_->composeOnly();
  run({entry("a", sqlSource("select 1")), entry("b", sqlSource("select 2"))});
  EXPECT_EQ(sources(), (Texts{"a composed 0", "b composed 0"}));
  EXPECT_EQ(report().sources[1].statements.at(0).sql, "select 2");
  EXPECT_TRUE(context_->dataSourcesProcessed());
}

TEST_F(ComposeOnlyTest, SourceWithoutAStatementIsSkippedAndLeavesAnEmptyMatrix) {
  auto const other = std::make_shared<FakeExecution>();
  auto const notifier = std::make_shared<ScriptedNotifier>();
  context_->composeOnly();
  context_->setDataSourceFilters("a", {filterOn("x")});
  context_->processDataSources(notifier, {entry("a", other)}, {}, 0);
  EXPECT_TRUE(other->targets.empty());
  EXPECT_EQ(sources(), Texts{"a composed 0"});
  EXPECT_THAT(context_->getDataMatrix("a"), isMatrix(matrix({})));
  EXPECT_EQ(notifier->told, (Texts{"step 0", "total 1", "step 0", "step 1"}));
  EXPECT_EQ(ignored(), Texts{"a.x: source \"a\" was not executed"});
}

TEST_F(ComposeOnlyTest, SourceWhoseRowsALaterStatementNeedsIsExecuted) {
  context_->composeOnly();
  run({entry("a", sqlSource("select 1")), entry("b", sqlSource("select 2")),
       entry("c", sqlSourceFilteredBy("a"))});
  EXPECT_EQ(sources(), (Texts{"a executed 3", "b composed 0", "c composed 0"}));
}

TEST_F(ComposeOnlyTest, NeedsGoOnToTheSourcesBefore) {
  context_->composeOnly();
  run({entry("a", sqlSource("select 1")), entry("b", sqlSourceFilteredBy("a")),
       entry("c", sqlSourceFilteredBy("b"))});
  EXPECT_EQ(sources(), (Texts{"a executed 3", "b executed 3", "c composed 0"}));
}

TEST_F(ComposeOnlyTest, NeededSourceWithoutAStatementNeedsAllBeforeIt) {
  context_->composeOnly();
  run({entry("a", sqlSource("select 1")), entry("b"), entry("c"),
       entry("d", sqlSourceFilteredBy("b"))});
  EXPECT_EQ(sources(), (Texts{"a executed 3", "b executed 2", "c composed 0", "d composed 0"}));
}

TEST_F(ComposeOnlyTest, SourceWithoutANameMayBeTheOneThatIsNeeded) {
  auto const ownName = [](auto const& context, std::string const&) {
    return context->registerDataMatrix("alunos", matrix({{"a", ints(1)}}));
  };
  context_->composeOnly();
  run({entry("", std::make_shared<FakeExecution>(ownName)),
       entry("b", sqlSourceFilteredBy("alunos"))});
  EXPECT_EQ(sources(), (Texts{"alunos executed 1", "b composed 0"}));
}

TEST_F(ComposeOnlyTest, SourceBehindTheOneThatNeedsItIsNotExecuted) {
  context_->composeOnly();
  run({entry("b", sqlSourceFilteredBy("a")), entry("a", sqlSource("select 1"))});
  EXPECT_EQ(sources(), (Texts{"b composed 0", "a composed 0"}));
}

}  // namespace

}  // namespace mox_test
