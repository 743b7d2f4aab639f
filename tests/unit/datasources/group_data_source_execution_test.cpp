#include "zyn/datasources/group_data_source_execution.h"

#include <stdexcept>

#include "mox/zyn/matrix/data_matrix.h"
#include "unit/datasources/context_fixture.h"
#include "unit/datasources/group_fixture.h"

namespace mox_test {

namespace {

using Ints = std::vector<int>;
using ManageFilterData = moxManageFilterDataSource::ManageFilterData;

class GroupDataSourceExecutionTest : public GroupTest {
 protected:
  /// A filter source from outside the group, whose source bears that name.
  std::shared_ptr<moxFilterDataSource const> filterOn(std::string const& source,
                                                      std::string const& condition) {
    return read<moxFilterDataSource>(filterSource("De fora", source, where(condition)));
  }

  ConstMember memberOf(std::string const& name, std::string const& source) {
    auto made = host_.get<moxDadoDataSource>("moxDadoDataSource");
    made->setName(name);
    made->setDataSource(read(source));
    return made;
  }

  /// The failure of a run of the group as "G".
  std::string failureOfRun(std::string const& groupText) {
    auto const held = readGroup(groupText);
    return failureOf([&] { process(held->createExecution()); });
  }
};

/// Hands everything on to a context of the module.
class ForeignContext final : public virtual moxDataSourceExecutionContext {
 public:
  explicit ForeignContext(std::shared_ptr<moxDataSourceExecutionContext> own)
      : own_(std::move(own)) {}
  std::string name() const override { return "estrangeiro"; }
  bool setDataSourceFilters(
      std::string const& source,
      std::vector<std::shared_ptr<moxDataMatrixSQLFilter>> const& filters) override {
    return own_->setDataSourceFilters(source, filters);
  }
  std::vector<std::shared_ptr<moxDataMatrixSQLFilter const>> getDataSourceFilters(
      std::string const& source) const override {
    return own_->getDataSourceFilters(source);
  }
  void addDataSourceFixedFilter(std::string const& source,
                                std::shared_ptr<moxDataMatrixSQLFilter const> filter) override {
    own_->addDataSourceFixedFilter(source, std::move(filter));
  }
  std::shared_ptr<moxDataMatrix> getDataMatrix(std::string const& name) const override {
    return own_->getDataMatrix(name);
  }
  bool registerDataMatrix(std::string const& name, std::shared_ptr<moxDataMatrix> matrix) override {
    return own_->registerDataMatrix(name, std::move(matrix));
  }
  bool processDataSources(std::shared_ptr<moxDataSourceExecutionProgressNotifier>,
                          std::vector<moxDataSourceToProcess> const&, std::vector<int>,
                          int) override {
    return false;
  }
  std::shared_ptr<moxDataMatrixRow> getDataSourceRow(std::string const&,
                                                     std::string const&) override {
    return {};
  }
  std::string getDataMatrixName(std::shared_ptr<moxDataMatrix const> const&) const override {
    return {};
  }
  bool setDataSourceOptions(std::string const&,
                            std::vector<std::shared_ptr<moxDataSourceOptionData>> const&) override {
    return false;
  }
  std::vector<std::shared_ptr<moxDataSourceOptionData const>> getDataSourceOptions(
      std::string const&) const override {
    return {};
  }
  bool dataSourcesProcessed() const override { return false; }
  void setReportContext(std::shared_ptr<moxReportExecutionContext>) override {}
  std::shared_ptr<moxReportExecutionContext> getReportContext() const override { return {}; }
  void resetRows() override {}
  std::vector<int> getIdUnidadeNegocio() const override { return {}; }
  int getIdUnidadeMatriz() const override { return 0; }

 private:
  std::shared_ptr<moxDataSourceExecutionContext> own_;
};
/// Keeps what it is told of its inputs' names.
class ToldExecution final : public FakeExecution {
 public:
  void setDataSourceExternalRelation(Pairs const& relations) const override { told = relations; }

  mutable Pairs told;
};

/// A source whose only run is at hand.
class ToldSource final : public moxDataSource {
 public:
  std::shared_ptr<ToldExecution> const made = std::make_shared<ToldExecution>();

  std::string name() const override { return "fakeSource"; }
  bool load(std::shared_ptr<moxXMLNode>) override { return false; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return false; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const&) override {}
  std::string getParentLibName() const override { return {}; }
  std::vector<moxDataSourceColumnType> getColumns() const override { return {}; }
  void setName(std::string const&) override {}
  std::string getName() const override { return "contada"; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSourceOption const>> options() const override { return {}; }
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool) const override {
    return {};
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override { return made; }
};

/// The students, and nothing else.
std::string students(std::string const& more = "") {
  return group("G", "a", "a",
               member("a", query("Alunos", "alunos a", {"a.id", "a.curso", "a.unidade"},
                                 "<Order><By tableName=\"a\" columnName=\"id\"/></Order>")) +
                   more);
}

std::string onCourse(int course) {
  return where("a.curso = " + std::to_string(course));
}

}  // namespace

// The result.

TEST_F(GroupDataSourceExecutionTest, TheOutputMembersMatrixIsTheGroups) {
  EXPECT_EQ(run(students(member("n", kMarks))), (Ints{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(context_->getDataMatrix("a"), nullptr);
  EXPECT_EQ(context_->getDataMatrix("n"), nullptr);
}

TEST_F(GroupDataSourceExecutionTest, WithoutATargetTheResultIsNamedLikeTheGroup) {
  process(readGroup(students())->createExecution(), "");
  EXPECT_EQ(integers(context_->getDataMatrix("G"), "id").size(), 6u);
}

TEST_F(GroupDataSourceExecutionTest, AnOutputThatIsNoMemberFailsWithTheGroupsName) {
  EXPECT_EQ(failureOfRun(group("Boletim", "x", "", member("a", kStudents))), "Falha: G");
  context_ = newContext();
  auto const held = readGroup(group("Boletim", "", "", member("a", kStudents)));
  EXPECT_FALSE(held->createExecution()->generateDataMatrix(context_, ""));
}

TEST_F(GroupDataSourceExecutionTest, TwoMembersWithOneNameFailWithTheirName) {
  EXPECT_EQ(failureOfRun(group("G", "a", "", member("a", kStudents) + member("a", kMarks))),
            "Falha: a");
}

TEST_F(GroupDataSourceExecutionTest, AFailureOfAMembersQueryPassesAsItIs) {
  EXPECT_EQ(failureOfRun(group("G", "a", "",
                               member("a",
                                      "<moxSQLDataSource name=\"Q\"><Command type=\"1\"><from>"
                                      "alunos a</from><where>a.id = {{falta}}</where>"
                                      "</Command></moxSQLDataSource>"))),
            "Filtro com token falta não localizado");
}

TEST_F(GroupDataSourceExecutionTest, ARunLeavesTheDefinitionAsItWas) {
  auto const held = readGroup(students(member("f", filterSource("F", "a", onCourse(10)))));
  auto const before = textOf(*held);
  EXPECT_EQ(run(held->createExecution()), (Ints{1, 2, 3}));
  context_ = newContext();
  EXPECT_EQ(run(held->createExecution()), (Ints{1, 2, 3}));
  EXPECT_EQ(textOf(*held), before);
}

TEST_F(GroupDataSourceExecutionTest, MatricesOfMembersLiveAsLongAsTheOuterContext) {
  std::weak_ptr<moxDataMatrix> given;
  auto const execution = executionOf(*readGroup(students()));
  {
    auto const rows = matrix({{"x", ints(1)}});
    given = rows;
    execution->setDataMatrixComposicao({{"dada", rows}});
  }
  run(execution);
  execution->setDataMatrixComposicao({});
  EXPECT_FALSE(given.expired());
  context_.reset();
  EXPECT_TRUE(given.expired());
}

TEST_F(GroupDataSourceExecutionTest, AContextOfForeignMakeRunsAGroupToo) {
  auto const foreign = std::make_shared<ForeignContext>(context_);
  EXPECT_TRUE(readGroup(students())->createExecution()->generateDataMatrix(foreign, "G"));
  EXPECT_EQ(integers(context_->getDataMatrix("G"), "id").size(), 6u);
}

// Units and progress.

TEST_F(GroupDataSourceExecutionTest, MembersRunWithTheUnitsOfTheOuterContext) {
  auto const restricted =
      query("Alunos", "alunos a", {"a.id", "a.unidade"},
            "<unidadeColumn tableName=\"a\" columnName=\"unidade\" allownull=\"0\"/>");
  host_.logIn({.id = 7, .defaultUnit = 1, .units = {{1, 1}, {2, 1}}, .worksByUnits = true});
  process(readGroup(group("G", "h", "", member("h", group("H", "a", "", member("a", restricted)))))
              ->createExecution(),
          "G", {2}, 1);
  EXPECT_EQ(integers(context_->getDataMatrix("G"), "id"), (Ints{3, 6}));
}

TEST_F(GroupDataSourceExecutionTest, MembersReportNoProgress) {
  auto const notifier = std::make_shared<ScriptedNotifier>();
  auto const execution = readGroup(students(member("n", kMarks)))->createExecution();
  context_->processDataSources(notifier, {{"G", {false, execution}}}, {}, 0);
  EXPECT_EQ(notifier->told, (Strings{"step 0", "total 1", "step 0", "step 1"}));
}

// Filters that are aimed at the group.

TEST_F(GroupDataSourceExecutionTest, FiltersReachTheFilterMemberUnderEachNameOfTheGroup) {
  for (auto const* const name : {"Turma", "G", "a", "G->a", "Turma->a"}) {
    for (bool const fixed : {false, true}) {
      context_ = newContext();
      if (fixed) {
        context_->addDataSourceFixedFilter(name, among("a", "curso", {20}));
      } else {
        context_->setDataSourceFilters(name, {among("a", "curso", {20})});
      }
      auto const held =
          readGroup(group("Turma", "a", "a", member("a", kStudents) + member("n", kMarks)));
      EXPECT_EQ(run(held->createExecution()), (Ints{4, 5, 6})) << name << fixed;
    }
  }
}

TEST_F(GroupDataSourceExecutionTest, FiltersAimedAtAMemberReachItAlone) {
  context_->setDataSourceFilters("G->n", {among("n", "aluno", {2, 5})});
  auto const held = group("G", "n", "a", member("a", kStudents) + member("n", kMarks));
  EXPECT_EQ(run(held, "aluno"), (Ints{2, 5}));
}

TEST_F(GroupDataSourceExecutionTest, FiltersReachAMemberTwoGroupsDeep) {
  auto const held = group(
      "Fora", "h", "h",
      member("h",
             group("H", "b", "a",
                   member("a", kStudents) + member("b", kMarks + relation("n.aluno", "a", "id")))));
  context_->setDataSourceFilters("Fora", {among("a", "curso", {20})});
  EXPECT_EQ(run(held, "aluno"), (Ints{4, 5, 6}));
  context_ = newContext();
  context_->setDataSourceFilters("G->h->b", {among("n", "nota", {8, 9})});
  context_->addDataSourceFixedFilter("G->h", among("a", "curso", {20}));
  EXPECT_EQ(run(held, "aluno"), (Ints{4}));
}

// Filter sources among the members.

TEST_F(GroupDataSourceExecutionTest, AFilterSourceChangesTheQueryBehindIt) {
  EXPECT_EQ(run(students(member("f", filterSource("F", "a", onCourse(10))))), (Ints{1, 2, 3}));
}

TEST_F(GroupDataSourceExecutionTest, TheMatrixOfAFilterSourceIsThatOfTheQuery) {
  EXPECT_EQ(run(group("G", "f", "f",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(20))))),
            (Ints{4, 5, 6}));
}

TEST_F(GroupDataSourceExecutionTest, AFilterOfAFilterLandsOnTheQueryAtTheEndOfTheChain) {
  EXPECT_EQ(run(students(member("f", filterSource("F", "a", onCourse(10))) +
                         member("g", filterSource("G", "f", where("a.id > 1"))) +
                         member("h", filterSource("H", "g", where("a.id < 3"))))),
            (Ints{2}));
}

TEST_F(GroupDataSourceExecutionTest, AnExternalFilterFindsItsQueryUnderTheGroupsName) {
  enter(filterSource("F", "Alunos", onCourse(20)));
  EXPECT_EQ(run(students(externalMember("f", "F", {{"Notas", "n"}, {"Alunos", "a"}}))),
            (Ints{4, 5, 6}));
}

TEST_F(GroupDataSourceExecutionTest, AnExternalChainTakesEachMembersOwnNames) {
  enter(filterSource("F", "Alunos", onCourse(20)) +
        filterSource("H", "Primeiro", where("a.id < 6")));
  EXPECT_EQ(run(students(externalMember("f", "F", {{"Alunos", "a"}}) +
                         externalMember("h", "H", {{"Alunos", "x"}, {"Primeiro", "f"}}))),
            (Ints{4, 5}));
}

TEST_F(GroupDataSourceExecutionTest, NamesAreMappedForExternalMembersOnly) {
  auto const mapped = "<moxDadoDataSource name=\"f\">" + filterSource("F", "a", onCourse(20)) +
                      "<sourcesExternalRelation><relation external=\"a\" internal=\"x\"/>"
                      "</sourcesExternalRelation></moxDadoDataSource>";
  EXPECT_EQ(run(students(mapped)), (Ints{4, 5, 6}));
}

TEST_F(GroupDataSourceExecutionTest, AFilterAheadOfItsQueryFails) {
  EXPECT_EQ(failureOfRun(group("G", "a", "a",
                               member("f", filterSource("F", "a", "")) + member("a", kStudents))),
            "Não localizado source origem do filtro");
}

TEST_F(GroupDataSourceExecutionTest, AFilterOnNobodyFails) {
  EXPECT_EQ(failureOfRun(students(member("f", filterSource("F", "x", "")))),
            "Não localizado source origem do filtro");
  EXPECT_EQ(failureOfRun(students(member("f", filterSource("F", "", "")))),
            "Não localizado source origem do filtro");
}

TEST_F(GroupDataSourceExecutionTest, AFilterOnASourceThatIsNeitherQueryNorFilterFails) {
  auto const onManager =
      students(member("m", manager("M", "")) + member("f", filterSource("F", "m", "")));
  EXPECT_EQ(failureOfRun(onManager), "Não localizado source origem do filtro");
  auto const onGroup = students(member("h", group("H", "b", "b", member("b", kMarks))) +
                                member("f", filterSource("F", "h", "")));
  EXPECT_EQ(failureOfRun(onGroup), "Não localizado source origem do filtro");
}

TEST_F(GroupDataSourceExecutionTest, AFilterThatNamesItselfFails) {
  EXPECT_EQ(failureOfRun(students(member("f", filterSource("F", "f", "")))),
            "Não localizado source origem do filtro");
}

TEST_F(GroupDataSourceExecutionTest, FiltersThatNameEachOtherFail) {
  EXPECT_EQ(failureOfRun(students(member("f", filterSource("F", "g", "")) +
                                  member("g", filterSource("G", "f", "")))),
            "Não localizado source origem do filtro");
}

TEST_F(GroupDataSourceExecutionTest, FailuresOfWiringNameTheFilterAndTheGroup) {
  auto const held = readGroup(students(member("f", filterSource("F", "x", ""))));
  try {
    process(held->createExecution());
    FAIL() << "no failure";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorDetails(), Strings{"the filter source \"f\" of the group \"G\" changes "
                                            "\"x\", which is no member ahead of it"});
  }
}

// Members.

TEST_F(GroupDataSourceExecutionTest, AMemberWithoutASourceFails) {
  EXPECT_EQ(failureOfRun(students(member("vazio", ""))), "Fonte de dados externa inválida");
}

TEST_F(GroupDataSourceExecutionTest, AnExternalMemberThatIsGoneFails) {
  EXPECT_EQ(failureOfRun(students(externalMember("x", "Alunos"))),
            "Fonte de dados externa inválida");
}

TEST_F(GroupDataSourceExecutionTest, AnExternalQueryRunsUnderItsMembersName) {
  enter(kStudents);
  EXPECT_EQ(run(group("G", "b", "b", externalMember("b", "Alunos"))), (Ints{1, 2, 3, 4, 5, 6}));
}

TEST_F(GroupDataSourceExecutionTest, EveryExternalMemberLearnsItsInputsNames) {
  enter(kStudents);
  auto const source = std::make_shared<ToldSource>();
  auto const added = host_.get<moxDadoDataSource>("moxDadoDataSource");
  added->setName("x");
  added->setDataSourceExternalRelation({{"Alunos", "a"}});
  added->setDataSourceExterno("Alunos");
  added->setDataSource(std::shared_ptr<moxDataSource const>(source));
  auto const held = readGroup(students());
  held->dataSources().add(added);
  run(held->createExecution());
  EXPECT_EQ(source->made->told, (Pairs{{"Alunos", "a"}}));
}

TEST_F(GroupDataSourceExecutionTest, AGroupMayHoldAGroupThatIsElsewhere) {
  enter(group("H", "a", "a", externalMember("a", "Alunos")) + kStudents);
  EXPECT_EQ(run(group("G", "h", "h", externalMember("h", "H"))), (Ints{1, 2, 3, 4, 5, 6}));
}

TEST_F(GroupDataSourceExecutionTest, AGroupThatHoldsItselfFails) {
  enter(group("R", "m", "m", externalMember("m", "R")));
  EXPECT_EQ(failureOf([&] { process(entered("R")->createExecution()); }),
            "Fonte de dados externa inválida");
}

TEST_F(GroupDataSourceExecutionTest, GroupsThatHoldEachOtherTwiceFail) {
  enter(group("R", "m", "m", externalMember("m", "S") + externalMember("n", "S")) +
        group("S", "m", "m", externalMember("m", "R") + externalMember("n", "R")));
  EXPECT_EQ(failureOf([&] { process(entered("R")->createExecution()); }),
            "Fonte de dados externa inválida");
}

// Managers.

TEST_F(GroupDataSourceExecutionTest, AManagersFilterAnswersForTheQueriesThatItRules) {
  auto const held = group("G", "n", "m",
                          member("a", kStudents) + member("n", kMarks) +
                              member("m", manager("M", ruled("n", "quem", "n", "aluno") +
                                                           ruled("a", "quem", "a", "id"))));
  context_->setDataSourceFilters("G", {among("", "quem", {1, 4})});
  EXPECT_EQ(run(held, "aluno"), (Ints{1, 4}));
}

TEST_F(GroupDataSourceExecutionTest, AnExternalManagerRulesUnderTheGroupsNames) {
  enter(manager("M", ruled("Alunos", "quem", "a", "id")));
  auto const held =
      group("G", "a", "m", member("a", kStudents) + externalMember("m", "M", {{"Alunos", "a"}}));
  context_->setDataSourceFilters("G", {among("", "quem", {1, 4})});
  EXPECT_EQ(run(held), (Ints{1, 4}));
}

TEST_F(GroupDataSourceExecutionTest, AManagerAheadOfAQueryDoesNotRuleIt) {
  auto const held =
      group("G", "a", "m",
            member("m", manager("M", ruled("a", "quem", "a", "id"))) + member("a", kStudents));
  context_->setDataSourceFilters("G", {among("", "quem", {1, 4})});
  EXPECT_EQ(run(held).size(), 6u);
}

TEST_F(GroupDataSourceExecutionTest, AManagerOfTheGroupRulesTheMemberOfItsFilters) {
  auto const execution = executionOf(*readGroup(students()));
  ManageFilterData const outer{"Fora", {}, {{"", "", "a", "id", "quem"}}};
  execution->setManageFiltersData({outer});
  context_->setDataSourceFilters("Fora", {among("", "quem", {2, 6}), among("", "outro", {9})});
  EXPECT_EQ(run(execution), (Ints{2, 6}));
}

TEST_F(GroupDataSourceExecutionTest, ManagersOfTheGroupAreAddedBehindThoseThatWereSet) {
  auto const execution = executionOf(*readGroup(students()));
  execution->setManageFiltersData({{"A", {}, {{"", "", "a", "id", "quem"}}}});
  execution->addManageFiltersData({"B", {}, {{"", "", "a", "curso", "onde"}}});
  context_->setDataSourceFilters("A", {among("", "quem", {2, 6})});
  context_->setDataSourceFilters("B", {among("", "onde", {20})});
  EXPECT_EQ(run(execution), (Ints{6}));
}

// Filter sources from outside.

TEST_F(GroupDataSourceExecutionTest, AFilterFromOutsideGoesWhereTheGroupsFiltersGo) {
  auto const execution = executionOf(*readGroup(students(member("n", kMarks))));
  execution->setFiltersDataSource({filterOn("Alunos", "a.curso = 10")});
  execution->addFiltersDataSource(filterOn("", "a.id > 1"));
  EXPECT_EQ(run(execution), (Ints{2, 3}));
}

TEST_F(GroupDataSourceExecutionTest, AFilterFromOutsideIsRedirectedByAnAim) {
  auto const execution =
      executionOf(*readGroup(group("G", "n", "a", member("a", kStudents) + member("n", kMarks))));
  execution->addFiltersDataSource(filterOn("G->n", "n.nota > 7"));
  EXPECT_EQ(run(execution, "aluno"), (Ints{1, 4}));
}

TEST_F(GroupDataSourceExecutionTest, AnyDashIsTakenForAnAim) {
  auto const execution = executionOf(
      *readGroup(group("G", "024", "a", member("a", kStudents) + member("024", kMarks))));
  execution->addFiltersDataSource(filterOn("Vendas-2024", "n.nota > 7"));
  EXPECT_EQ(run(execution, "aluno"), (Ints{1, 4}));
}

TEST_F(GroupDataSourceExecutionTest, ADashAtTheEndAimsAtNobody) {
  for (auto const* const name : {"Vendas-", "Vendas->", "-", "->"}) {
    context_ = newContext();
    auto const execution = executionOf(*readGroup(students()));
    execution->addFiltersDataSource(filterOn(name, "a.curso = 10"));
    EXPECT_EQ(run(execution), (Ints{1, 2, 3})) << name;
  }
}

TEST_F(GroupDataSourceExecutionTest, OnlyTheFirstDashCounts) {
  auto const execution = executionOf(
      *readGroup(group("G", "b->c", "a", member("a", kStudents) + member("b->c", kMarks))));
  execution->addFiltersDataSource(filterOn("G->b->c", "n.nota > 7"));
  EXPECT_EQ(run(execution, "aluno"), (Ints{1, 4}));
}

TEST_F(GroupDataSourceExecutionTest, AFilterOnAFilterMemberLandsOnTheQueryBehindIt) {
  auto const execution = executionOf(
      *readGroup(group("G", "f", "f",
                       member("a", kStudents) + member("e", filterSource("E", "a", onCourse(20))) +
                           member("f", filterSource("F", "e", where("a.id > 4"))))));
  execution->addFiltersDataSource(filterOn("x", "a.id < 6"));
  EXPECT_EQ(run(execution), (Ints{5}));
}

TEST_F(GroupDataSourceExecutionTest, AFilterThatAimsAtNoMemberChangesNothing) {
  auto const execution = executionOf(*readGroup(students()));
  execution->addFiltersDataSource(filterOn("G->x", "a.id < 0"));
  EXPECT_EQ(run(execution).size(), 6u);
}

TEST_F(GroupDataSourceExecutionTest, AnEmptyFilterFromOutsideIsRefused) {
  auto const execution = executionOf(*readGroup(students()));
  EXPECT_THROW(execution->addFiltersDataSource({}), std::invalid_argument);
  EXPECT_THROW(execution->setFiltersDataSource({nullptr}), std::invalid_argument);
}

// What the caller brings along.

TEST_F(GroupDataSourceExecutionTest, AddedMembersRunAheadOfTheDefinitions) {
  auto const execution = executionOf(
      *readGroup(group("G", "b", "b", member("b", kMarks + relation("n.aluno", "a", "id")))));
  execution->setDataSourcesComposicao(
      {memberOf("a", kStudents), memberOf("f", filterSource("F", "a", onCourse(20)))});
  EXPECT_EQ(run(execution, "aluno"), (Ints{4, 5, 6}));
}

TEST_F(GroupDataSourceExecutionTest, AnAddedMemberMayGiveTheResult) {
  auto const execution = executionOf(*readGroup(group("G", "a", "a", "")));
  execution->setDataSourcesComposicao({memberOf("a", kStudents)});
  EXPECT_EQ(run(execution).size(), 6u);
}

TEST_F(GroupDataSourceExecutionTest, MembersReadTheMatricesThatAreGiven) {
  auto const execution = executionOf(
      *readGroup(group("G", "b", "b", member("b", kMarks + relation("n.aluno", "dada", "x")))));
  execution->setDataMatrixComposicao(
      {{"dada", matrix({{"x", ints(2, 6)}})}, {"dada", matrix({{"x", ints(3)}})}});
  EXPECT_EQ(run(execution, "aluno"), (Ints{2, 6}));
}

TEST_F(GroupDataSourceExecutionTest, AGivenMatrixMayBeTheResult) {
  auto const rows = matrix({{"x", ints(2, 6)}});
  auto const execution = executionOf(*readGroup(group("G", "dada", "", "")));
  execution->setDataMatrixComposicao({{"dada", rows}});
  process(execution);
  EXPECT_EQ(context_->getDataMatrix("G"), rows);
}

TEST_F(GroupDataSourceExecutionTest, AMemberCannotTakeAGivenMatrixsName) {
  auto const execution = executionOf(*readGroup(students()));
  execution->setDataMatrixComposicao({{"a", matrix({{"x", ints(1)}})}});
  EXPECT_EQ(failureOf([&] { process(execution); }), "Falha: a");
}

TEST_F(GroupDataSourceExecutionTest, EmptyMembersAndMatricesAreRefused) {
  auto const execution = executionOf(*readGroup(students()));
  EXPECT_THROW(execution->setDataSourcesComposicao({nullptr}), std::invalid_argument);
  EXPECT_THROW(execution->setDataMatrixComposicao({{"x", nullptr}}), std::invalid_argument);
}

// Links between members.

TEST_F(GroupDataSourceExecutionTest, ALinkKeepsAMemberToTheValuesOfAnother) {
  EXPECT_EQ(run(group("G", "b", "a",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(10))) +
                          member("b", kMarks + relation("n.aluno", "a", "id"))),
                "aluno"),
            (Ints{1, 2, 3}));
}

TEST_F(GroupDataSourceExecutionTest, ALinkMayGoThroughAFilterSourcesName) {
  EXPECT_EQ(run(group("G", "b", "a",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(20))) +
                          member("b", kMarks + relation("n.aluno", "f", "id"))),
                "aluno"),
            (Ints{4, 5, 6}));
}

TEST_F(GroupDataSourceExecutionTest, LinksMayFollowEachOther) {
  EXPECT_EQ(
      run(group(
              "G", "c", "a",
              member("a", kMarks) + member("f", filterSource("F", "a", where("n.nota < 5"))) +
                  member("b", kStudents + relation("a.id", "a", "aluno")) +
                  member("c", query("C", "notas n", {"n.aluno"}) + relation("n.aluno", "b", "id"))),
          "aluno"),
      (Ints{3, 6}));
}

TEST_F(GroupDataSourceExecutionTest, ALinkToAMemberWithoutRowsLetsNothingPass) {
  EXPECT_EQ(run(group("G", "b", "a",
                      member("a", kStudents) + member("f", filterSource("F", "a", onCourse(99))) +
                          member("b", kMarks + relation("n.aluno", "a", "id"))),
                "aluno"),
            Ints{});
}

TEST_F(GroupDataSourceExecutionTest, ALinksConditionBearsTheNameInTheDatabase) {
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

TEST_F(GroupDataSourceExecutionTest, ALinkToNothingRestrictsNothing) {
  for (auto const& link : {relation("n.aluno", "x", "id"), relation("n.aluno", "a", "x"),
                           relation("n.aluno", "a", "")}) {
    context_ = newContext();
    EXPECT_EQ(
        run(group("G", "b", "a", member("a", kStudents) + member("b", kMarks + link)), "aluno")
            .size(),
        6u);
  }
}

TEST_F(GroupDataSourceExecutionTest, ALinkOfAMemberThatIsNoQueryRestrictsNothing) {
  auto const inner = group("H", "b", "b", member("b", kMarks));
  EXPECT_EQ(run(group("G", "h", "a",
                      member("a", kStudents) + member("h", inner + relation("n.aluno", "x", "id"))),
                "aluno")
                .size(),
            6u);
}

// What a user can be asked for.

TEST_F(GroupDataSourceExecutionTest, OffersTheGroupsFiltersAsManagersAndFilterSourcesLeaveThem) {
  auto const execution = executionOf(*readGroup(group("G", "a", "a", member("a", kStudents))));
  EXPECT_EQ(columnsOf(execution->getFilters()), Strings{"curso"});
  execution->setManageFiltersData({{"m", {{"outro"}}, {}}});
  EXPECT_EQ(columnsOf(execution->getFilters()), Strings{});
  execution->setManageFiltersData({{"m", {{"curso"}}, {}}, {"n", {{"curso"}}, {}}});
  EXPECT_EQ(columnsOf(execution->getFilters()), (Strings{"curso", "curso"}));
  execution->addFiltersDataSource(filterOn("", ""));
  EXPECT_EQ(columnsOf(execution->getFilters()), (Strings{"curso", "curso"}));
  execution->setFiltersDataSource({read<moxFilterDataSource>(filterSource(
      "F", "", "<Filters><SemFiltro tableName=\"a\" columnName=\"curso\"/></Filters>"))});
  EXPECT_EQ(columnsOf(execution->getFilters()), Strings{});
}

}  // namespace mox_test
