#include "core/run/wiring.h"

#include "core/run/definition_lookup.h"
#include "mox/zyn/datasources/data_source.h"
#include "unit/core/run/group_fixture.h"

namespace mox::core::run_test {
namespace {

using Texts = std::vector<std::string>;

class WiringTest : public GroupTest {
 protected:
  Wiring wiringOf(std::string const& name) {
    return readWiring(*findDefinition(host_.application(), name).source);
  }

  Texts problemsOf(std::string const& members, std::string const& output = "A",
                   std::string const& filterSource = "") {
    define(group("Turma", output, filterSource, members));
    return wiringOf("Turma").problems;
  }

  static std::string filterSource(std::string const& name, std::string const& changed,
                                  std::string const& pieces = "") {
    return member(name, "<moxFilterDataSource name=\"" + name + "\" dataSource=\"" + changed +
                            "\">" + pieces + "</moxFilterDataSource>");
  }

  std::string const a_ = member("A", students("A", ""));
};

TEST_F(WiringTest, SoundGroupHasNoProblems) {
  EXPECT_EQ(problemsOf(a_ + filterSource("F", "A") + filterSource("H", "F") +
                           member("G", manager("A", "quem", "nome")) +
                           member("B", students("B", ""), "", relation("A", "id", "id")),
                       "B", "G"),
            Texts{});
}

TEST_F(WiringTest, QueriesHaveNoWiring) {
  define(students("Alunos"));
  auto const wiring = wiringOf("Alunos");
  EXPECT_TRUE(wiring.problems.empty() && wiring.changes.empty());
}

TEST_F(WiringTest, OutputAndFilterSourceMustBeMembers) {
  EXPECT_EQ(problemsOf(a_, "X", "Y"),
            (Texts{"the group 'Turma' gives the rows of its member 'X', which it does not have",
                   "the filters of the group 'Turma' go to its member 'Y', which it does not "
                   "have"}));
}

TEST_F(WiringTest, OutputMustBeNamed) {
  EXPECT_EQ(problemsOf(a_, ""), Texts{"the group 'Turma' names no member whose rows it gives"});
}

TEST_F(WiringTest, MembersHaveDifferentNames) {
  EXPECT_EQ(problemsOf(a_ + a_), Texts{"the group 'Turma' has two members called 'A'"});
}

TEST_F(WiringTest, ExternalSourceMustBeThere) {
  EXPECT_EQ(problemsOf(a_ + external("E", "Nada")),
            Texts{"the member 'E' of the group 'Turma' names 'Nada', which is no source that this "
                  "session finds"});
}

TEST_F(WiringTest, RelationNeedsAMemberAheadAndItsColumn) {
  EXPECT_EQ(
      problemsOf(member("A", students("A", ""), "", relation("Nada", "id", "id")) +
                 member("B", students("B", ""), "", relation("C", "id", "id")) +
                 member("C", students("C", ""), "", relation("A", "nada", "id"))),
      (Texts{"the member 'A' of the group 'Turma' is restricted by the values of the member "
             "'Nada', which the group does not have",
             "the member 'B' of the group 'Turma' is restricted by the values of the member 'C', "
             "which stands behind it",
             "the member 'C' of the group 'Turma' is restricted by the column 'nada' of the "
             "member 'A', which has no such column"}));
}

TEST_F(WiringTest, OnlyQueriesAreRestricted) {
  EXPECT_EQ(problemsOf(a_ + member("F", "<moxFilterDataSource name=\"F\" dataSource=\"A\"/>", "",
                                   relation("A", "id", "id"))),
            Texts{"the member 'F' of the group 'Turma' is restricted by the values of the member "
                  "'A', but is no query"});
}

TEST_F(WiringTest, MembersReadTheRowsOfMembersAhead) {
  auto const sorter = [](std::string const& name, std::string const& source) {
    return member(name, "<moxSorterDataSource name=\"" + name + "\" source=\"" + source + "\"/>");
  };
  EXPECT_EQ(
      problemsOf(
          sorter("B", "A") + a_ + sorter("C", "A") + sorter("D", "") + sorter("E", "E") +
          sorter("F", "Alunos") +
          member("G", "<moxObjectDataSource name=\"G\"><Sql/><Binds/></moxObjectDataSource>") +
          member("H", manager("A", "quem", "nome")) + sorter("I", "G") + sorter("J", "H")),
      (Texts{"the member 'B' of the group 'Turma' reads the member 'A', which stands behind it",
             "the member 'D' of the group 'Turma' names no source whose rows it reads",
             "the member 'E' of the group 'Turma' reads itself",
             "the member 'F' of the group 'Turma' reads the member 'Alunos', which the group does "
             "not have",
             "the member 'I' of the group 'Turma' reads the member 'G', which gives no rows",
             "the member 'J' of the group 'Turma' reads the member 'H', which gives no rows"}));
}

TEST_F(WiringTest, ExternalMembersReadThroughTheirRelations) {
  define("<moxSorterDataSource name=\"Ordem\" source=\"Alunos\"/>");
  auto const related =
      "<sourcesExternalRelation><relation external=\"Alunos\" internal=\"A\"/>"
      "</sourcesExternalRelation>";
  EXPECT_EQ(problemsOf(a_ + external("O", "Ordem", "", related)), Texts{});
}

TEST_F(WiringTest, FilterSourcesNeedAQueryAhead) {
  EXPECT_EQ(
      problemsOf(filterSource("F", "A") + a_ + filterSource("H", "Nada") + filterSource("I", "I") +
                 member("G", manager("A", "quem", "nome")) + filterSource("J", "G")),
      (Texts{"the member 'F' of the group 'Turma' changes the member 'A', which stands "
             "behind it",
             "the member 'H' of the group 'Turma' changes the member 'Nada', which the "
             "group does not have",
             "the member 'I' of the group 'Turma' changes itself",
             "the member 'J' of the group 'Turma' changes the member 'G', which is no "
             "query"}));
}

TEST_F(WiringTest, RingOfFilterSourcesEnds) {
  EXPECT_EQ(problemsOf(a_ + filterSource("F", "H") + filterSource("H", "F")).size(), 2U);
}

TEST_F(WiringTest, ManagersNeedQueriesAhead) {
  EXPECT_EQ(problemsOf(member("G", manager("A", "quem", "nome")) + a_ + filterSource("F", "A") +
                       member("H", manager("F", "quem", "nome"))),
            (Texts{"the member 'G' of the group 'Turma' rules the member 'A', which stands behind "
                   "it",
                   "the member 'H' of the group 'Turma' rules the member 'F', which is no query"}));
}

TEST_F(WiringTest, ConditionsThatReplaceTheRuleOnUnitsAreTold) {
  std::string const fixed =
      "<Filters><Valor plugin=\"\" tableNameOrigin=\"alunos\" columnNameOrigin=\"id_unidade\" "
      "tableName=\"a\" columnName=\"id_unidade\"><value>3</value></Valor></Filters>";
  std::string const other =
      "<Filters><Valor plugin=\"\" tableNameOrigin=\"alunos\" columnNameOrigin=\"id\" "
      "tableName=\"a\" columnName=\"id\"><value>3</value></Valor></Filters>";
  EXPECT_EQ(problemsOf(member("A", students("A")) + filterSource("F", "A", fixed) +
                       filterSource("H", "A", other)),
            Texts{"the member 'F' of the group 'Turma' puts a condition on the unit column of the "
                  "member 'A', which takes the place of the rule on units"});
}

TEST_F(WiringTest, GroupsInsideAreLookedIntoOnce) {
  define(group("Dentro", "X", "", a_));
  EXPECT_EQ(problemsOf(external("A", "Dentro") + external("B", "Dentro")),
            Texts{"the group 'Dentro' gives the rows of its member 'X', which it does not have"});
}

TEST_F(WiringTest, RingOfGroupsEnds) {
  define(group("Um", "A", "", external("A", "Dois")));
  define(group("Dois", "A", "", external("A", "Um")));
  EXPECT_NO_THROW(wiringOf("Um"));
}

TEST_F(WiringTest, ChangesAreToldWithTheirTexts) {
  define(group("Turma", "A", "",
               a_ +
                   filterSource("F", "A",
                                "<join>join x on 1</join><where>w</where><group>g</group>"
                                "<order>o</order>") +
                   filterSource("H", "F",
                                "<selectColumns tipo=\"1\"><column tableName=\"a\" "
                                "columnName=\"nome\" Type=\"1\"><sql alias=\"n\" index=\"0\">"
                                "a.nome</sql></column></selectColumns>")));
  auto const changes = wiringOf("Turma").changes;
  ASSERT_EQ(changes.size(), 2U);
  EXPECT_EQ(changes[0].member, "F");
  EXPECT_EQ(changes[0].query, "A");
  std::string told;
  for (auto const& text : changes[0].texts) {
    told += text.piece + "=" + text.text + ";";
  }
  EXPECT_EQ(told, "join=join x on 1;where=w;group=g;order=o;");
  EXPECT_EQ(changes[1].query, "A") << "by way of F";
  ASSERT_EQ(changes[1].texts.size(), 1U);
  EXPECT_EQ(changes[1].texts[0].piece, "select");
}

TEST_F(WiringTest, ExternalFilterSourcesAreFollowedThroughTheirRelations) {
  define(
      "<moxFilterDataSource name=\"Bons\" dataSource=\"Alunos\"><where>1 = 1</where>"
      "</moxFilterDataSource>");
  define(group("Turma", "A", "",
               a_ + external("F", "Bons", "",
                             "<sourcesExternalRelation><relation external=\"Alunos\" "
                             "internal=\"A\"/></sourcesExternalRelation>")));
  auto const wiring = wiringOf("Turma");
  EXPECT_EQ(wiring.problems, Texts{});
  ASSERT_EQ(wiring.changes.size(), 1U);
  EXPECT_EQ(wiring.changes[0].query, "A");
}

}  // namespace
}  // namespace mox::core::run_test
