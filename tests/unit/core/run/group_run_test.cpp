#include <algorithm>

#include "core/run/definition_run.h"
#include "core/run/explanation.h"
#include "mox/zyn/datasources/data_source.h"
#include "unit/core/error_message.h"
#include "unit/core/run/group_fixture.h"

namespace mox::core::run_test {
namespace {

using GroupRunTest = GroupTest;

std::vector<std::string> aimsOf(DefinitionRun const& run) {
  std::vector<std::string> aims;
  for (auto const& offer : run.offers()) {
    aims.push_back(offer.source + ":" + filterLabel(*offer.specification));
  }
  return aims;
}

using Texts = std::vector<std::string>;

TEST_F(GroupRunTest, GivesTheRowsOfItsOutput) {
  define(group("Turma", "Bons", "Bons",
               member("Todos", students("T")) +
                   member("Bons", students("B", "id_unidade", "", "a.nota &gt; 6"))));
  EXPECT_EQ(namesIn("Turma", {}, {3, 4}), "Ana Bia");
}

TEST_F(GroupRunTest, FiltersOfTheGroupGoToItsFilterSource) {
  define(group("Turma", "Notas", "Notas",
               member("Notas", students("N", "", filter("moxDoubleRangeFilter", "nota")))));
  auto run = newRun("Turma");
  EXPECT_EQ(aimsOf(run), Texts{"Turma:nota"});
  EXPECT_EQ(namesIn("Turma", {"nota=6.."}), "Ana Bia");
  EXPECT_EQ(namesIn("Turma", {"Turma:nota=..6"}), "Caio");
}

TEST_F(GroupRunTest, MembersThatJoinTheScreenAreAimedAtOneByOne) {
  auto const filters = filter("moxTextUniqueFilter", "nome");
  define(group("Turma", "B", "A",
               member("A", students("A", "", filters)) +
                   member("B", students("B", "", filters), "unificarTelaFiltro=\"1\"") +
                   member("C", students("C", "", filters))));
  auto run = newRun("Turma");
  EXPECT_EQ(aimsOf(run), (Texts{"Turma:nome", "Turma->B:nome"}));
  EXPECT_EQ(namesIn("Turma", {"B:nome=Bia"}), "Bia");
  EXPECT_EQ(namesIn("Turma", {"Turma->B:nome=Caio"}), "Caio");
  EXPECT_EQ(namesIn("Turma", {"Turma:nome=Bia"}), "Ana Bia Caio Davi") << "A is not the output";
}

TEST_F(GroupRunTest, ANameThatSeveralMembersHaveIsToldWithTheWayOut) {
  auto const filters = filter("moxTextUniqueFilter", "nome");
  define(group("Turma", "B", "A",
               member("A", students("A", "", filters)) +
                   member("B", students("B", "", filters), "unificarTelaFiltro=\"1\"")));
  EXPECT_EQ(test::errorMessageOf([&] { namesIn("Turma", {"nome=Bia"}); }),
            "filter 'nome=Bia': 'nome' can be any of Turma->B: a.nome, Turma: a.nome; write "
            "SOURCE:COLUMN");
}

TEST_F(GroupRunTest, ExternalMembersUsedTwiceAreOfferedTwice) {
  define(students("Alunos", "", filter("moxTextUniqueFilter", "nome")));
  define(group("Turma", "B", "",
               external("A", "Alunos", "unificarTelaFiltro=\"1\"") +
                   external("B", "Alunos", "unificarTelaFiltro=\"1\"")));
  auto run = newRun("Turma");
  EXPECT_EQ(aimsOf(run), (Texts{"Turma->A:nome", "Turma->B:nome"}));
  EXPECT_EQ(namesIn("Turma", {"A:nome=Ana", "B:nome=Bia"}), "Bia");
}

TEST_F(GroupRunTest, GroupsInsideGroupsAreReachedMemberByMember) {
  auto const inner =
      group("Dentro", "X", "X",
            member("X", students("X", "", filter("moxTextUniqueFilter", "nome"))) +
                member("Y", students("Y", "", filter("moxIntegralUniqueFilter", "id")),
                       "unificarTelaFiltro=\"1\""));
  define(group("Fora", "D", "D", member("D", inner)));
  auto run = newRun("Fora");
  EXPECT_EQ(aimsOf(run), (Texts{"Fora:nome", "Fora->D->Y:id"}));
  run.setFilters({"nome=Bia", "id=2"});
  run.keepReport(DefinitionRun::Report::kKept);
  EXPECT_EQ(namesOf(*run.run()), "Bia");
  auto const report = run.report();
  ASSERT_EQ(report.sources.size(), 4U);
  EXPECT_EQ(report.sources[3].name, "Y");
  EXPECT_EQ(report.sources[3].depth, 2);
  EXPECT_EQ(report.sources[3].rows, 1);
  EXPECT_TRUE(report.ignoredFilters.empty());
}

TEST_F(GroupRunTest, OneFilterOfAManagerRulesTwoQueries) {
  std::string const ruled =
      "<moxManageFilterDataSource name=\"P\"><sources>"
      "<source name=\"A\"><avaliable/><related><filter tableName=\"a\" columnName=\"nome\" "
      "filterNameRelac=\"quem\"/></related></source>"
      "<source name=\"B\"><avaliable/><related><filter tableName=\"a\" columnName=\"nome\" "
      "filterNameRelac=\"quem\"/></related></source>"
      "</sources><Filters><moxTextUniqueFilter columnName=\"quem\" tableName=\"\"/></Filters>"
      "</moxManageFilterDataSource>";
  define(
      group("Turma", "B", "P",
            member("A", students("A", "")) + member("B", students("B", "")) + member("P", ruled)));
  auto run = newRun("Turma");
  EXPECT_EQ(aimsOf(run), Texts{"Turma:quem"});
  run.setFilters({"quem=Caio"});
  run.keepReport(DefinitionRun::Report::kKept);
  EXPECT_EQ(namesOf(*run.run()), "Caio");
  auto const report = run.report();
  ASSERT_EQ(report.sources.size(), 4U);
  EXPECT_EQ(report.sources[1].rows, 1);
  EXPECT_EQ(report.sources[2].statements.at(0).conditions.at(0).origin, moxRunOrigin::kManager);
}

TEST_F(GroupRunTest, RelationRestrictsAMemberByTheValuesOfAnother) {
  define(group("Turma", "Todos", "",
               member("Bons", students("B", "", "", "a.nota &gt; 6")) +
                   member("Todos", students("T", ""), "", relation("Bons", "id", "id"))));
  EXPECT_EQ(namesIn("Turma"), "Ana Bia");
}

TEST_F(GroupRunTest, DryRunPutsTheStatementsOfMembersTogether) {
  define(group("Turma", "Todos", "",
               member("Livre", students("L", "")) + member("Todos", students("T", ""))));
  auto run = newRun("Turma");
  run.keepReport(DefinitionRun::Report::kComposeOnly);
  run.run();
  auto const report = run.report();
  ASSERT_EQ(report.sources.size(), 3U);
  for (auto const& source : report.sources) {
    EXPECT_FALSE(source.executed) << source.name;
  }
  EXPECT_EQ(report.sources[2].statements.size(), 1U);
}

TEST_F(GroupRunTest, FilterSourceByItselfGivesTheRowsAsTheyAreAndSaysSo) {
  define(students("Alunos", ""));
  define(
      "<moxFilterDataSource name=\"Bons\" dataSource=\"Alunos\"><where>a.nota &gt; 6</where>"
      "</moxFilterDataSource>");
  auto run = newRun("Bons");
  EXPECT_EQ(namesOf(*run.run()), "Ana Bia Caio Davi");
  EXPECT_EQ(explain(run, DefinitionRun::Report::kNone, "").wiring.problems,
            Texts{"a filter source changes a statement only as a member of a group; by itself it "
                  "gives the rows of 'Alunos' as they are"});
}

TEST_F(GroupRunTest, ManagerByItselfGivesNoData) {
  define(manager("A", "quem", "nome"));
  EXPECT_EQ(test::errorMessageOf([&] { newRun("G"); }),
            "the definition 'G' gives no data: it says in a group which filters there are");
}

// Wirings that cannot work are told by name.

/// The details of the failure, ahead of the definition's name.
Texts detailsOf(auto const& action) {
  try {
    action();
  } catch (moxError const& error) {
    return error.errorDetails();
  }
  return {"nothing failed"};
}

bool holds(Texts const& texts, std::string const& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

TEST_F(GroupRunTest, UnknownExternalSourceIsNamed) {
  define(group("Turma", "A", "A", external("A", "Nada")));
  EXPECT_EQ(test::errorMessageOf([&] { newRun("Turma"); }), "Fonte de dados externa inválida");
  EXPECT_TRUE(holds(detailsOf([&] { newRun("Turma"); }),
                    "the member 'A' of the group 'Turma' names 'Nada', which is no source that "
                    "this session finds"));
}

TEST_F(GroupRunTest, GroupThatHoldsItselfIsNamed) {
  define(group("Turma", "A", "A", external("A", "Turma")));
  EXPECT_EQ(test::errorMessageOf([&] { newRun("Turma"); }), "Fonte de dados externa inválida");
  EXPECT_TRUE(holds(detailsOf([&] { newRun("Turma"); }), "the group 'Turma' holds itself"));
}

TEST_F(GroupRunTest, RingOfTwoGroupsIsNamed) {
  define(group("Um", "A", "A", external("A", "Dois", "unificarTelaFiltro=\"1\"")));
  define(group("Dois", "A", "A", external("A", "Um", "unificarTelaFiltro=\"1\"")));
  EXPECT_EQ(test::errorMessageOf([&] { newRun("Um"); }), "Fonte de dados externa inválida");
}

TEST_F(GroupRunTest, MissingOutputIsNamed) {
  define(group("Turma", "Nada", "", member("A", students("A", ""))));
  EXPECT_EQ(test::errorMessageOf([&] { namesIn("Turma"); }), "Falha: Turma");
  EXPECT_TRUE(
      holds(detailsOf([&] { namesIn("Turma"); }),
            "the group 'Turma' gives the rows of its member 'Nada', which it does not have"));
}

}  // namespace
}  // namespace mox::core::run_test
