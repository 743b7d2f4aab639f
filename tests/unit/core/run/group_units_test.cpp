#include "core/run/definition_run.h"
#include "core/run/filter_choices.h"
#include "mox/zyn/datasources/data_source.h"
#include "unit/core/error_message.h"
#include "unit/core/run/group_fixture.h"

namespace mox::core::run_test {
namespace {

using Texts = std::vector<std::string>;

std::string const kUnitFilters =
    "<moxIntegralUniqueFilter tableName=\"a\" columnName=\"id_unidade\"/>"
    "<moxIntegralRangeFilter tableName=\"a\" columnName=\"id_unidade\"/>"
    "<moxIntegralInFilter tableName=\"a\" columnName=\"id_unidade\"/>";

/// What users write who try to see the unit 6, of which they have no right to a row.
Texts const kWider = {"6", "..2147483647", "3..6", "-5..", "1,2,3,4,5,6,7", "6,3"};

/// A user works in the unit 3, and may choose 4 as well.
class GroupUnitsTest : public GroupTest {
 protected:
  GroupUnitsTest() { logIn({3, 4}); }

  /// Runs the definition with each value for each name that a filter is given under. Nobody of a
  /// unit but 3 may be seen, and what is refused is refused in words for users.
  void tryToWiden(std::string const& definition, Texts const& names) {
    for (auto const& name : names) {
      int runs = 0;
      for (auto const& value : kWider) {
        std::string seen;
        try {
          seen = namesIn(definition, {name + "=" + value});
        } catch (FilterArgumentError const&) {
          continue;
        }
        ++runs;
        EXPECT_EQ(seen.find("Bia"), seen.npos) << definition << " " << name << "=" << value;
        EXPECT_EQ(seen.find("Davi"), seen.npos) << definition << " " << name << "=" << value;
      }
      EXPECT_GT(runs, 0) << "no value was tried for " << name;
    }
  }
};

TEST_F(GroupUnitsTest, MembersRunForTheUnitsOfTheRun) {
  define(group("Turma", "A", "A", member("A", students("A"))));
  EXPECT_TRUE(newRun("Turma").keepsToUnits());
  EXPECT_EQ(namesIn("Turma"), "Ana Caio");
  EXPECT_EQ(namesIn("Turma", {}, {4}), "Bia");
  EXPECT_EQ(namesIn("Turma", {}, {3, 4}), "Ana Bia Caio");
}

TEST_F(GroupUnitsTest, GroupsWithoutUnitColumnsKeepToNone) {
  define(group("Turma", "A", "A", member("A", students("A", ""))));
  EXPECT_FALSE(newRun("Turma").keepsToUnits());
}

TEST_F(GroupUnitsTest, FiltersOnAMembersUnitColumnNeverWiden) {
  define(group("Turma", "A", "A", member("A", students("A", "id_unidade", kUnitFilters))));
  tryToWiden("Turma", {"id_unidade", "a.id_unidade", "Turma:id_unidade"});
  EXPECT_EQ(namesIn("Turma", {"id_unidade=3,6"}), "Ana Caio");
  EXPECT_EQ(namesIn("Turma", {"id_unidade=4,6"}, {3, 4}), "Bia");
}

TEST_F(GroupUnitsTest, ExternalAndNestedMembersAreKeptAsWell) {
  define(students("Alunos", "id_unidade", kUnitFilters));
  define(group("Dentro", "X", "X", external("X", "Alunos")));
  define(group("Fora", "D", "D",
               external("D", "Dentro") + external("E", "Alunos", "unificarTelaFiltro=\"1\"")));
  define(group("Longe", "E", "", external("E", "Fora", "unificarTelaFiltro=\"1\"")));
  for (auto const* const name : {"Dentro", "Fora"}) {
    EXPECT_EQ(namesIn(name), "Ana Caio");
    tryToWiden(name, {std::string(name) + ":id_unidade"});
  }
  tryToWiden("Fora", {"E:id_unidade"});
  tryToWiden("Longe", {"Longe->E:id_unidade", "Longe->E->E:id_unidade"});
}

TEST_F(GroupUnitsTest, ManagersThatPutAFilterOnTheUnitColumnAreKeptToUnits) {
  Texts const classes = {"moxIntegralUniqueFilter", "moxIntegralRangeFilter",
                         "moxIntegralInFilter"};
  for (auto const& filterClass : classes) {
    define(group(
        filterClass, "A", "G",
        member("A", students("A")) + member("G", manager("A", "onde", "id_unidade", filterClass))));
  }
  for (auto const& filterClass : classes) {
    tryToWiden(filterClass, {"onde"});
  }
  EXPECT_EQ(namesIn("moxIntegralInFilter", {"onde=3,6"}), "Ana Caio");
  EXPECT_EQ(namesIn("moxIntegralInFilter", {"onde=4,6"}, {3, 4}), "Bia");
  auto run = newRun("moxIntegralInFilter");
  run.setFilters({"onde=3,6"});
  EXPECT_TRUE(run.filters().at(0).keptToUnits);
}

TEST_F(GroupUnitsTest, ManagersThatAreNoFilterSourceAreKeptToo) {
  define(group("Turma", "A", "A",
               member("A", students("A")) +
                   member("G", manager("A", "onde", "id_unidade"), "unificarTelaFiltro=\"1\"")));
  tryToWiden("Turma", {"onde", "G:onde"});
}

TEST_F(GroupUnitsTest, ExternalManagersUnderAnotherNameAreKeptToo) {
  define(students("Alunos"));
  define(manager("Alunos", "onde", "id_unidade"));
  define(group(
      "Turma", "A", "M",
      external("A", "Alunos") + external("M", "G", "",
                                         "<sourcesExternalRelation><relation external=\"Alunos\" "
                                         "internal=\"A\"/></sourcesExternalRelation>")));
  EXPECT_EQ(namesIn("Turma", {"onde=3"}), "Ana Caio");
  tryToWiden("Turma", {"onde"});
}

TEST_F(GroupUnitsTest, NamesOfTheOriginCountInManagersToo) {
  std::string const byOrigin =
      "<moxManageFilterDataSource name=\"G\"><sources><source name=\"A\"><avaliable/><related>"
      "<filter tableNameOrigin=\"alunos\" columnNameOrigin=\"id_unidade\" tableName=\"a\" "
      "columnName=\"qualquer\" filterNameRelac=\"onde\"/></related></source></sources><Filters>"
      "<moxIntegralInFilter columnName=\"onde\" tableName=\"\"/></Filters>"
      "</moxManageFilterDataSource>";
  define(group("Turma", "A", "G", member("A", students("A")) + member("G", byOrigin)));
  tryToWiden("Turma", {"onde"});
}

TEST_F(GroupUnitsTest, FiltersThatAreNoWholeNumbersAreRefusedOnTheirWayToAUnitColumn) {
  define(group("Turma", "A", "G",
               member("A", students("A")) +
                   member("G", manager("A", "onde", "id_unidade", "moxTextUniqueFilter"))));
  EXPECT_EQ(test::errorMessageOf([&] { namesIn("Turma", {"onde=%"}); }),
            "filter 'onde=%': 'onde' is a business unit, and takes no filter but one of whole "
            "numbers");
}

TEST_F(GroupUnitsTest, HeadOfficesAreHeldToTheHeadOfficeThroughManagers) {
  define(group("Turma", "A", "G",
               member("A", students("A", "id_unidadematriz")) +
                   member("G", manager("A", "matriz", "id_unidadematriz"))));
  EXPECT_EQ(namesIn("Turma"), "Ana Bia Caio");
  EXPECT_EQ(namesIn("Turma", {"matriz=1,2"}), "Ana Bia Caio");
  EXPECT_EQ(namesIn("Turma", {"matriz=2"}), "");
  EXPECT_EQ(namesIn("Turma", {"matriz=3"}), "") << "a unit of the user, but no head office";
}

TEST_F(GroupUnitsTest, ANameForBothKindsOfColumnMustBeRightForEither) {
  std::string const both =
      "<moxManageFilterDataSource name=\"G\"><sources>"
      "<source name=\"A\"><avaliable/><related><filter tableName=\"a\" columnName=\"id_unidade\" "
      "filterNameRelac=\"onde\"/></related></source>"
      "<source name=\"B\"><avaliable/><related><filter tableName=\"a\" "
      "columnName=\"id_unidadematriz\" filterNameRelac=\"onde\"/></related></source>"
      "</sources><Filters><moxIntegralInFilter columnName=\"onde\" tableName=\"\"/></Filters>"
      "</moxManageFilterDataSource>";
  host_.database().execute("insert into alunos values (9, 'Iara', 9, null, 1, 1)");
  define(group("Turma", "A", "G",
               member("A", students("A")) + member("B", students("B", "id_unidadematriz")) +
                   member("G", both)));
  EXPECT_EQ(namesIn("Turma", {"onde=1,3"}), "") << "1 is the head office, and no unit of the run";
}

TEST_F(GroupUnitsTest, WhatTheSessionSaysIsNotForManagersToBind) {
  Texts const tokens = {"{{p_idUnidadeNegocioPadrao}}", "{{p_idUnidadeNegocioMatriz}}",
                        "{{p_idUsuario}}"};
  for (auto const& token : tokens) {
    define(group("Turma " + token, "A", "G",
                 member("A", students("A", "", "", "a.id_unidade = " + token)) +
                     member("G", manager("A", "onde", token, "moxIntegralUniqueFilter"))));
  }
  for (auto const& token : tokens) {
    EXPECT_EQ(test::errorMessageOf([&] { namesIn("Turma " + token, {"onde=6"}); }),
              "filter 'onde=6': the session alone says what " + token + " stands for");
  }
  EXPECT_EQ(namesIn("Turma {{p_idUnidadeNegocioPadrao}}"), "Ana Caio");
}

TEST_F(GroupUnitsTest, TextsOfFilterSourcesCannotLoosenTheUnitRule) {
  std::string const loose =
      "<moxFilterDataSource name=\"F\" dataSource=\"A\"><where>a.id = 1 or a.id &gt; 0</where>"
      "</moxFilterDataSource>";
  define(group("Turma", "A", "A",
               member("A", students("A", "id_unidade", kUnitFilters)) + member("F", loose)));
  EXPECT_EQ(namesIn("Turma"), "Ana Caio");
  tryToWiden("Turma", {"id_unidade"});
}

TEST_F(GroupUnitsTest, ColumnsOfFilterSourcesKeepTheRestriction) {
  std::string const replaced =
      "<moxFilterDataSource name=\"F\" dataSource=\"A\"><selectColumns tipo=\"1\">"
      "<column tableName=\"a\" columnName=\"nome\" Type=\"1\"><sql alias=\"nome\" index=\"0\">"
      "a.nome</sql></column></selectColumns></moxFilterDataSource>";
  define(group("Turma", "A", "A", member("A", students("A")) + member("F", replaced)));
  EXPECT_EQ(namesIn("Turma"), "Ana Caio");
}

TEST_F(GroupUnitsTest, RelationsDoNotReplaceTheUnitRule) {
  define(group("Turma", "B", "A",
               member("A", students("A", "", filter("moxIntegralInFilter", "id"))) +
                   member("B", students("B"), "", relation("A", "id_unidade", "id_unidade"))));
  EXPECT_EQ(namesIn("Turma"), "Ana Caio");
  EXPECT_EQ(namesIn("Turma", {"id=4"}), "");
}

TEST_F(GroupUnitsTest, UserWithoutUnitsSeesNothing) {
  logIn({});
  define(group("Turma", "A", "A", member("A", students("A", "id_unidade", kUnitFilters))));
  EXPECT_EQ(test::errorMessageOf([&] { namesIn("Turma"); }),
            "Não foi identificado a unidade matriz para processamento");
  host_.logOut();
  EXPECT_EQ(namesIn("Turma"), "");
  EXPECT_EQ(namesIn("Turma", {"id_unidade=1..9"}), "");
}

TEST_F(GroupUnitsTest, UnitsWithoutARightAreRefused) {
  define(group("Turma", "A", "A", member("A", students("A"))));
  EXPECT_EQ(test::errorMessageOf([&] { namesIn("Turma", {}, {6}); }),
            "the user has no right to the unit 6");
}

TEST_F(GroupUnitsTest, ChoicesForAFilterAreOfTheUsersUnits) {
  define(students("Alunos"));
  define(
      "<moxSQLDataSource name=\"Escolha\"><Command type=\"1\"><from>alunos a</from></Command>"
      "<Columns>" +
      column("id", 2) + column("nome", 1) +
      "</Columns><Relations><Rel dataSource=\"Alunos\" columnName=\"nome\"><DataSourceOrigin "
      "columnNameOrigin=\"nome\" tableNameOrigin=\"alunos\" columnName=\"nome\" tableName=\"a\"/>"
      "</Rel></Relations><Filters><column>" +
      filter("moxTextInFilter", "nome") + filter("moxIntegralUniqueFilter", "id") +
      "</column></Filters></moxSQLDataSource>");
  auto run = newRun("Escolha");
  auto const choices = [&](std::size_t offer, std::vector<int> units, std::size_t most) {
    return readFilterChoices(host_.application(), host_.application().sessions(),
                             run.offers().at(offer), {run.sources(), std::move(units), most});
  };
  auto const own = choices(0, {}, 10);
  ASSERT_TRUE(own);
  EXPECT_EQ(own->source, "Alunos");
  EXPECT_EQ(own->total, 2U);
  ASSERT_EQ(own->choices.size(), 2U);
  EXPECT_EQ(own->choices[0].value, "Ana");
  EXPECT_EQ(own->choices[1].label, "Caio");
  EXPECT_EQ(choices(0, {3, 4}, 1)->total, 3U);
  EXPECT_EQ(choices(0, {3, 4}, 1)->choices.size(), 1U);
  EXPECT_EQ(choices(0, {6}, 10)->problem, "the user has no right to the unit 6");
  EXPECT_FALSE(choices(1, {}, 10)) << "the definition relates the column to nothing";
}

}  // namespace
}  // namespace mox::core::run_test
