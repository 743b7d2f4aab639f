#include "zyn/datasources/group_data_source_execution.h"

#include <stdexcept>

#include "mox/zyn/matrix/data_matrix.h"
#include "unit/datasources/context_fixture.h"
#include "unit/datasources/group_fixture.h"

namespace mox_test {

namespace {

using Ints = std::vector<int>;

using GroupDataSourceExecutionTest = GroupSourceTest;

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
