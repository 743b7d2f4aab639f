#include "zyn/datasources/group_wiring.h"

#include <stdexcept>

#include "unit/datasources/group_fixture.h"

namespace mox_test {

namespace {

using Ints = std::vector<int>;
using ManageFilterData = moxManageFilterDataSource::ManageFilterData;
using GroupWiringTest = GroupSourceTest;

}  // namespace

// Filter sources among the members.

TEST_F(GroupWiringTest, AFilterSourceChangesTheQueryBehindIt) {
  EXPECT_EQ(run(students(member("f", filterSource("F", "a", onCourse(10))))), (Ints{1, 2, 3}));
}

TEST_F(GroupWiringTest, TheMatrixOfAFilterSourceIsThatOfTheQuery) {
  EXPECT_EQ(run(group("G", "f", "f",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(20))))),
            (Ints{4, 5, 6}));
}

TEST_F(GroupWiringTest, AFilterOfAFilterLandsOnTheQueryAtTheEndOfTheChain) {
  EXPECT_EQ(run(students(member("f", filterSource("F", "a", onCourse(10))) +
                         member("g", filterSource("G", "f", where("a.id > 1"))) +
                         member("h", filterSource("H", "g", where("a.id < 3"))))),
            (Ints{2}));
}

TEST_F(GroupWiringTest, AnExternalFilterFindsItsQueryUnderTheGroupsName) {
  enter(filterSource("F", "Alunos", onCourse(20)));
  EXPECT_EQ(run(students(externalMember("f", "F", {{"Notas", "n"}, {"Alunos", "a"}}))),
            (Ints{4, 5, 6}));
}

TEST_F(GroupWiringTest, AnExternalChainTakesEachMembersOwnNames) {
  enter(filterSource("F", "Alunos", onCourse(20)) +
        filterSource("H", "Primeiro", where("a.id < 6")));
  EXPECT_EQ(run(students(externalMember("f", "F", {{"Alunos", "a"}}) +
                         externalMember("h", "H", {{"Alunos", "x"}, {"Primeiro", "f"}}))),
            (Ints{4, 5}));
}

TEST_F(GroupWiringTest, NamesAreMappedForExternalMembersOnly) {
  auto const mapped = "<moxDadoDataSource name=\"f\">" + filterSource("F", "a", onCourse(20)) +
                      "<sourcesExternalRelation><relation external=\"a\" internal=\"x\"/>"
                      "</sourcesExternalRelation></moxDadoDataSource>";
  EXPECT_EQ(run(students(mapped)), (Ints{4, 5, 6}));
}

TEST_F(GroupWiringTest, AFilterAheadOfItsQueryFails) {
  EXPECT_EQ(failureOfRun(group("G", "a", "a",
                               member("f", filterSource("F", "a", "")) + member("a", kStudents))),
            "Não localizado source origem do filtro");
}

TEST_F(GroupWiringTest, AFilterOnNobodyFails) {
  EXPECT_EQ(failureOfRun(students(member("f", filterSource("F", "x", "")))),
            "Não localizado source origem do filtro");
  EXPECT_EQ(failureOfRun(students(member("f", filterSource("F", "", "")))),
            "Não localizado source origem do filtro");
}

TEST_F(GroupWiringTest, AFilterOnASourceThatIsNeitherQueryNorFilterFails) {
  auto const onManager =
      students(member("m", manager("M", "")) + member("f", filterSource("F", "m", "")));
  EXPECT_EQ(failureOfRun(onManager), "Não localizado source origem do filtro");
  auto const onGroup = students(member("h", group("H", "b", "b", member("b", kMarks))) +
                                member("f", filterSource("F", "h", "")));
  EXPECT_EQ(failureOfRun(onGroup), "Não localizado source origem do filtro");
}

TEST_F(GroupWiringTest, AFilterThatNamesItselfFails) {
  EXPECT_EQ(failureOfRun(students(member("f", filterSource("F", "f", "")))),
            "Não localizado source origem do filtro");
}

TEST_F(GroupWiringTest, FiltersThatNameEachOtherFail) {
  EXPECT_EQ(failureOfRun(students(member("f", filterSource("F", "g", "")) +
                                  member("g", filterSource("G", "f", "")))),
            "Não localizado source origem do filtro");
}

TEST_F(GroupWiringTest, FailuresOfWiringNameTheFilterAndTheGroup) {
  auto const held = readGroup(students(member("f", filterSource("F", "x", ""))));
  try {
    process(held->createExecution());
    FAIL() << "no failure";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorDetails(), Strings{"the filter source \"f\" of the group \"G\" changes "
                                            "\"x\", which is no member ahead of it"});
  }
}

// Managers.

TEST_F(GroupWiringTest, AManagersFilterAnswersForTheQueriesThatItRules) {
  auto const held = group("G", "n", "m",
                          member("a", kStudents) + member("n", kMarks) +
                              member("m", manager("M", ruled("n", "quem", "n", "aluno") +
                                                           ruled("a", "quem", "a", "id"))));
  context_->setDataSourceFilters("G", {among("", "quem", {1, 4})});
  EXPECT_EQ(run(held, "aluno"), (Ints{1, 4}));
}

TEST_F(GroupWiringTest, AnExternalManagerRulesUnderTheGroupsNames) {
  enter(manager("M", ruled("Alunos", "quem", "a", "id")));
  auto const held =
      group("G", "a", "m", member("a", kStudents) + externalMember("m", "M", {{"Alunos", "a"}}));
  context_->setDataSourceFilters("G", {among("", "quem", {1, 4})});
  EXPECT_EQ(run(held), (Ints{1, 4}));
}

TEST_F(GroupWiringTest, AManagerAheadOfAQueryDoesNotRuleIt) {
  auto const held =
      group("G", "a", "m",
            member("m", manager("M", ruled("a", "quem", "a", "id"))) + member("a", kStudents));
  context_->setDataSourceFilters("G", {among("", "quem", {1, 4})});
  EXPECT_EQ(run(held).size(), 6u);
}

TEST_F(GroupWiringTest, AManagerOfTheGroupRulesTheMemberOfItsFilters) {
  auto const execution = executionOf(*readGroup(students()));
  ManageFilterData const outer{"Fora", {}, {{"", "", "a", "id", "quem"}}};
  execution->setManageFiltersData({outer});
  context_->setDataSourceFilters("Fora", {among("", "quem", {2, 6}), among("", "outro", {9})});
  EXPECT_EQ(run(execution), (Ints{2, 6}));
}

TEST_F(GroupWiringTest, ManagersOfTheGroupAreAddedBehindThoseThatWereSet) {
  auto const execution = executionOf(*readGroup(students()));
  execution->setManageFiltersData({{"A", {}, {{"", "", "a", "id", "quem"}}}});
  execution->addManageFiltersData({"B", {}, {{"", "", "a", "curso", "onde"}}});
  context_->setDataSourceFilters("A", {among("", "quem", {2, 6})});
  context_->setDataSourceFilters("B", {among("", "onde", {20})});
  EXPECT_EQ(run(execution), (Ints{6}));
}

// Filter sources from outside.

TEST_F(GroupWiringTest, AFilterFromOutsideGoesWhereTheGroupsFiltersGo) {
  auto const execution = executionOf(*readGroup(students(member("n", kMarks))));
  execution->setFiltersDataSource({filterOn("Alunos", "a.curso = 10")});
  execution->addFiltersDataSource(filterOn("", "a.id > 1"));
  EXPECT_EQ(run(execution), (Ints{2, 3}));
}

TEST_F(GroupWiringTest, AFilterFromOutsideIsRedirectedByAnAim) {
  auto const execution =
      executionOf(*readGroup(group("G", "n", "a", member("a", kStudents) + member("n", kMarks))));
  execution->addFiltersDataSource(filterOn("G->n", "n.nota > 7"));
  EXPECT_EQ(run(execution, "aluno"), (Ints{1, 4}));
}

TEST_F(GroupWiringTest, AnyDashIsTakenForAnAim) {
  auto const execution = executionOf(
      *readGroup(group("G", "024", "a", member("a", kStudents) + member("024", kMarks))));
  execution->addFiltersDataSource(filterOn("Vendas-2024", "n.nota > 7"));
  EXPECT_EQ(run(execution, "aluno"), (Ints{1, 4}));
}

TEST_F(GroupWiringTest, ADashAtTheEndAimsAtNobody) {
  for (auto const* const name : {"Vendas-", "Vendas->", "-", "->"}) {
    context_ = newContext();
    auto const execution = executionOf(*readGroup(students()));
    execution->addFiltersDataSource(filterOn(name, "a.curso = 10"));
    EXPECT_EQ(run(execution), (Ints{1, 2, 3})) << name;
  }
}

TEST_F(GroupWiringTest, OnlyTheFirstDashCounts) {
  auto const execution = executionOf(
      *readGroup(group("G", "b->c", "a", member("a", kStudents) + member("b->c", kMarks))));
  execution->addFiltersDataSource(filterOn("G->b->c", "n.nota > 7"));
  EXPECT_EQ(run(execution, "aluno"), (Ints{1, 4}));
}

TEST_F(GroupWiringTest, AFilterOnAFilterMemberLandsOnTheQueryBehindIt) {
  auto const execution = executionOf(
      *readGroup(group("G", "f", "f",
                       member("a", kStudents) + member("e", filterSource("E", "a", onCourse(20))) +
                           member("f", filterSource("F", "e", where("a.id > 4"))))));
  execution->addFiltersDataSource(filterOn("x", "a.id < 6"));
  EXPECT_EQ(run(execution), (Ints{5}));
}

TEST_F(GroupWiringTest, AFilterThatAimsAtNoMemberChangesNothing) {
  auto const execution = executionOf(*readGroup(students()));
  execution->addFiltersDataSource(filterOn("G->x", "a.id < 0"));
  EXPECT_EQ(run(execution).size(), 6u);
}

TEST_F(GroupWiringTest, AnEmptyFilterFromOutsideIsRefused) {
  auto const execution = executionOf(*readGroup(students()));
  EXPECT_THROW(execution->addFiltersDataSource({}), std::invalid_argument);
  EXPECT_THROW(execution->setFiltersDataSource({nullptr}), std::invalid_argument);
}

// Links between members.

TEST_F(GroupWiringTest, ALinkKeepsAMemberToTheValuesOfAnother) {
  EXPECT_EQ(run(group("G", "b", "a",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(10))) +
                          member("b", kMarks + relation("n.aluno", "a", "id"))),
                "aluno"),
            (Ints{1, 2, 3}));
}

TEST_F(GroupWiringTest, ALinkMayGoThroughAFilterSourcesName) {
  EXPECT_EQ(run(group("G", "b", "a",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(20))) +
                          member("b", kMarks + relation("n.aluno", "f", "id"))),
                "aluno"),
            (Ints{4, 5, 6}));
}

TEST_F(GroupWiringTest, LinksMayFollowEachOther) {
  EXPECT_EQ(
      run(group(
              "G", "c", "a",
              member("a", kMarks) + member("f", filterSource("F", "a", where("n.nota < 5"))) +
                  member("b", kStudents + relation("a.id", "a", "aluno")) +
                  member("c", query("C", "notas n", {"n.aluno"}) + relation("n.aluno", "b", "id"))),
          "aluno"),
      (Ints{3, 6}));
}

TEST_F(GroupWiringTest, ALinkToAMemberWithoutRowsLetsNothingPass) {
  EXPECT_EQ(run(group("G", "b", "a",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(99))) +
                          member("b", kMarks + relation("n.aluno", "a", "id"))),
                "aluno"),
            Ints{});
}

TEST_F(GroupWiringTest, ALinksConditionBearsTheNameInTheDatabase) {
  auto const own =
      "<Relation columnNameOrigin=\"aluno\" tableNameOrigin=\"notas\" columnName=\"quem\" "
      "tableName=\"n\"><DataSourceOrigin dataSource=\"a\" columnName=\"id\"/></Relation>";
  std::string const renamed =
      "<moxSQLDataSource name=\"Q\"><Command type=\"1\"><from>notas n</from></Command><Columns>"
      "<Column tableName=\"n\" columnName=\"quem\" columnNameOrigin=\"aluno\" Type=\"2\">"
      "<sql index=\"0\" alias=\"quem\">n.aluno</sql></Column></Columns></moxSQLDataSource>";
  EXPECT_EQ(run(group("G", "b", "a",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(10))) +
                          member("b", renamed + own)),
                "quem"),
            (Ints{1, 2, 3}));
}

TEST_F(GroupWiringTest, ALinkOnTheUnitColumnLeavesTheRestrictionToUnits) {
  auto const restricted =
      query("Alunos", "alunos a", {"a.id", "a.unidade"},
            "<unidadeColumn tableName=\"a\" columnName=\"unidade\" allownull=\"0\"/>");
  host_.database().execute("create table unidades (id int)");
  host_.database().execute("insert into unidades values (1), (2)");
  host_.logIn({.id = 7, .defaultUnit = 2, .units = {{2, 1}}, .worksByUnits = true});
  process(readGroup(group("G", "b", "b",
                          member("u", query("Unidades", "unidades u", {"u.id"})) +
                              member("b", restricted + relation("a.unidade", "u", "id"))))
              ->createExecution(),
          "G", {2}, 1);
  EXPECT_EQ(integers(context_->getDataMatrix("G"), "id"), (Ints{3, 6}));
}

TEST_F(GroupWiringTest, ALinkToNothingRestrictsNothing) {
  for (auto const& link : {relation("n.aluno", "x", "id"), relation("n.aluno", "a", "x"),
                           relation("n.aluno", "a", "")}) {
    context_ = newContext();
    EXPECT_EQ(
        run(group("G", "b", "a", member("a", kStudents) + member("b", kMarks + link)), "aluno")
            .size(),
        6u);
  }
}

TEST_F(GroupWiringTest, ALinkOfAMemberThatIsNoQueryRestrictsNothing) {
  auto const inner = group("H", "b", "b", member("b", kMarks));
  EXPECT_EQ(run(group("G", "h", "a",
                      member("a", kStudents) + member("h", inner + relation("n.aluno", "x", "id"))),
                "aluno")
                .size(),
            6u);
}

}  // namespace mox_test
