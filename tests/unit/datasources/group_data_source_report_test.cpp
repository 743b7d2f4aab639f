#include "mox/zyn/matrix/data_matrix.h"
#include "unit/datasources/group_fixture.h"

namespace mox_test {

namespace {

class GroupReportOfRunTest : public GroupSourceTest {
 protected:
  moxRunReport report() { return reporter().runReport(); }

  /// A run as "G" of which a report is kept.
  void runReported(std::shared_ptr<moxDataSourceExecution> const& execution) {
    reporter().keepRunReport();
    process(execution);
  }
  void runReported(std::string const& text) { runReported(readGroup(text)->createExecution()); }

  void compose(std::string const& text) {
    reporter().composeOnly();
    process(readGroup(text)->createExecution());
  }

  /// "depth name rows", with "composed" for rows that nobody asked for.
  Strings sources() {
    Strings told;
    for (auto const& source : report().sources) {
      told.push_back(std::to_string(source.depth) + " " + source.name + " " +
                     (source.executed ? std::to_string(source.rows) : "composed"));
    }
    return told;
  }

  /// The sentences of the first source of that name.
  Strings wiringOf(std::string const& name) {
    for (auto const& source : report().sources) {
      if (source.name == name) {
        return source.wiring;
      }
    }
    ADD_FAILURE() << name;
    return {};
  }

  Strings ignored() {
    Strings told;
    for (auto const& filter : report().ignoredFilters) {
      told.push_back(filter.source + "." + filter.column + ": " + filter.reason);
    }
    return told;
  }

  moxRunStatement statementOf(std::string const& name) {
    for (auto const& source : report().sources) {
      if (source.name == name) {
        return source.statements.at(0);
      }
    }
    ADD_FAILURE() << name;
    return {};
  }
};

std::string const kLinked =
    group("Turma", "b", "a",
          member("a", query("Alunos", "alunos a", {"a.id"})) +
              member("f", filterSource("F", "a", where("a.curso = 10"))) +
              member("b", query("Notas", "notas n", {"n.aluno"}) + relation("n.aluno", "a", "id")));

}  // namespace

TEST_F(GroupReportOfRunTest, MembersFollowTheirGroupOneLevelDeeper) {
  runReported(group("Fora", "h", "",
                    member("n", kMarks) +
                        member("h", group("H", "a", "a", member("a", kStudents))) +
                        member("z", kMarks)));
  EXPECT_EQ(sources(), (Strings{"0 G 6", "1 n 6", "1 h 6", "2 a 6", "1 z 6"}));
}

TEST_F(GroupReportOfRunTest, TellsWhichFilterSourceChangesWhichMember) {
  runReported(group("G", "a", "a",
                    member("a", kStudents) + member("f", filterSource("F", "a", "")) +
                        member("g", filterSource("G", "f", ""))));
  EXPECT_EQ(wiringOf("G"),
            (Strings{"filter source \"f\" changes \"a\"", "filter source \"g\" changes \"a\""}));
}

TEST_F(GroupReportOfRunTest, TellsWhichManagerRulesWhichMember) {
  runReported(
      group("G", "a", "m",
            member("a", kStudents) + member("m", manager("M", ruled("a", "quem", "a", "id") +
                                                                  ruled("x", "quem", "a", "id")))));
  EXPECT_EQ(wiringOf("G"),
            (Strings{"filter manager \"m\" rules \"a\"",
                     "filter manager \"m\" does not rule \"x\": no query of that name is ahead of "
                     "it"}));
}

TEST_F(GroupReportOfRunTest, TellsWhatComesFromOutside) {
  auto const execution = executionOf(*readGroup(group(
      "G", "a", "f",
      member("a", kStudents) + member("f", filterSource("F", "a", "")) + member("n", kMarks))));
  for (auto const* const name : {"x", "G->n", "G->z"}) {
    execution->addFiltersDataSource(read<moxFilterDataSource>(filterSource("De fora", name, "")));
  }
  runReported(execution);
  EXPECT_EQ(wiringOf("G"),
            (Strings{"filter source \"f\" changes \"a\"", "filter source \"De fora\" changes \"a\"",
                     "filter source \"De fora\" changes \"n\"",
                     "filter source \"De fora\" changes nothing: no query and no filter source is "
                     "called \"z\""}));
}

TEST_F(GroupReportOfRunTest, TellsWhichManagerOfTheGroupRulesItsMember) {
  auto const execution = executionOf(*readGroup(group("G", "a", "a", member("a", kStudents))));
  execution->addManageFiltersData({"Fora", {}, {{"", "", "a", "id", "quem"}}});
  runReported(execution);
  EXPECT_EQ(wiringOf("G"), Strings{"filter manager \"Fora\" of the group rules \"a\""});
}

TEST_F(GroupReportOfRunTest, TellsByWhoseValuesAMemberIsRestricted) {
  runReported(kLinked);
  EXPECT_EQ(wiringOf("b"), Strings{"restricted by the values of column \"id\" of \"a\", which its "
                                   "column \"n.aluno\" must be among"});
  auto const statement = statementOf("b");
  ASSERT_EQ(statement.conditions.size(), 1u);
  EXPECT_EQ(statement.conditions[0].origin, moxRunOrigin::kRelation);
  EXPECT_EQ(statement.conditions[0].originName, "a");
  EXPECT_EQ(statement.conditions[0].sql, "n.aluno in (?, ?, ?)");
}

TEST_F(GroupReportOfRunTest, AnEmptyTableHasItsReason) {
  runReported(group("G", "b", "a",
                    member("a", kStudents) +
                        member("f", filterSource("F", "a", where("a.curso = 99"))) +
                        member("b", kMarks + relation("n.aluno", "a", "id"))));
  auto const statement = statementOf("b");
  ASSERT_EQ(statement.conditions.size(), 1u);
  EXPECT_EQ(statement.conditions[0].sql, "0=1");
  EXPECT_EQ(statement.conditions[0].originName, "a");
}

TEST_F(GroupReportOfRunTest, TellsWhyALinkRestrictsNothing) {
  struct Case {
    std::string link;
    std::string member;
    std::string sentence;
  };
  for (auto const& [link, told, sentence] : std::vector<Case>{
           {relation("n.aluno", "x", "id"), "b",
            "not restricted by \"x\": there is no matrix of that name ahead of it"},
           {relation("n.aluno", "a", "x"), "b", "not restricted by \"a\": it has no column \"x\""},
           {relation("n.aluno", "a", ""), "G",
            "\"b\" is not restricted by \"a\": the relation does not name a column on either "
            "side"},
           {relation("n.", "a", "id"), "G",
            "\"b\" is not restricted by \"a\": the relation does not name a column on either "
            "side"}}) {
    context_ = newContext();
    runReported(group("G", "b", "", member("a", kStudents) + member("b", kMarks + link)));
    EXPECT_EQ(wiringOf(told), Strings{sentence}) << link;
  }
}

TEST_F(GroupReportOfRunTest, TellsThatDatesRestrictNothing) {
  auto const execution = executionOf(
      *readGroup(group("G", "b", "", member("b", kMarks + relation("n.aluno", "dada", "x")))));
  execution->setDataMatrixComposicao({{"dada", matrix({{"x", dates("2024-03-05")}})}});
  runReported(execution);
  EXPECT_EQ(wiringOf("b"),
            Strings{"not restricted by \"dada\": column \"x\" holds dates or blobs"});
}

TEST_F(GroupReportOfRunTest, TellsThatAMemberWithALinkIsNoQuery) {
  runReported(group("G", "h", "",
                    member("a", kStudents) + member("h", group("H", "b", "b", member("b", kMarks)) +
                                                             relation("n.aluno", "a", "id"))));
  EXPECT_EQ(wiringOf("G"), Strings{"\"h\" is not restricted by \"a\": it is no query"});
}

TEST_F(GroupReportOfRunTest, TellsWhyAGroupHasNoRows) {
  auto const text = group("G", "x", "", member("a", kStudents));
  EXPECT_EQ(failureOf([&] { runReported(text); }), "Falha: G");
  EXPECT_EQ(wiringOf("G"), Strings{"gives no rows: no member is called \"x\""});
}

TEST_F(GroupReportOfRunTest, AFilterOfTheGroupIsUsedByItsMember) {
  context_->setDataSourceFilters("Turma", {among("a", "id", {1, 2})});
  context_->setDataSourceFilters("G->b", {among("n", "aluno", {2})});
  runReported(kLinked);
  EXPECT_EQ(ignored(), Strings{});
  EXPECT_EQ(sources(), (Strings{"0 G 1", "1 a 2", "1 f 2", "1 b 1"}));
}

TEST_F(GroupReportOfRunTest, AFilterForAMemberThatIsNotThereIsTold) {
  context_->setDataSourceFilters("G->x", {among("a", "id", {1})});
  runReported(kLinked);
  EXPECT_EQ(ignored(), Strings{"G->x.id: the run has no source \"x\""});
}

// Runs that only put statements together.

TEST_F(GroupReportOfRunTest, StatementsOfMembersWithoutTheirRows) {
  compose(group("G", "n", "a",
                member("a", kStudents) +
                    member("f", filterSource("F", "a", where("a.curso = 10"))) +
                    member("n", kMarks)));
  EXPECT_EQ(sources(), (Strings{"0 G composed", "1 a composed", "1 f composed", "1 n composed"}));
  EXPECT_EQ(statementOf("a").sql,
            "select a.id,a.curso from alunos a where a.curso = 10 order by a.id asc ");
  EXPECT_EQ(context_->getDataMatrix("G")->rowCount(), 0);
}

TEST_F(GroupReportOfRunTest, AMemberRunsWhenAnothersStatementNeedsItsRows) {
  compose(kLinked);
  EXPECT_EQ(sources(), (Strings{"0 G composed", "1 a 3", "1 f composed", "1 b composed"}));
  EXPECT_EQ(statementOf("b").sql, "select n.aluno from notas n  where n.aluno in (?, ?, ?)");
}

TEST_F(GroupReportOfRunTest, AGroupRunsWholeWhenAnothersStatementNeedsItsRows) {
  compose(
      group("G", "b", "",
            member("z", kMarks) +
                member("h", group("H", "a", "a", member("a", kStudents) + member("c", kMarks))) +
                member("b", kMarks + relation("n.aluno", "h", "id"))));
  EXPECT_EQ(sources(),
            (Strings{"0 G composed", "1 z composed", "1 h 6", "2 a 6", "2 c 6", "1 b composed"}));
}

TEST_F(GroupReportOfRunTest, StatementsTwoGroupsDeep) {
  compose(group("G", "h", "h", member("h", group("H", "a", "a", member("a", kStudents)))));
  EXPECT_EQ(sources(), (Strings{"0 G composed", "1 h composed", "2 a composed"}));
  EXPECT_EQ(statementOf("a").sql, "select a.id,a.curso from alunos a order by a.id asc ");
}

}  // namespace mox_test
