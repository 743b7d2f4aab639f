// What a user reads when a chain of sources cannot work: which source failed, why, and which
// definition he asked for. The runs take the road of every host.

#include <string>
#include <vector>

#include "core/run/definition_run.h"
#include "mox/core/database_connection.h"
#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"

using namespace mox_test;
using mox::core::DefinitionRun;

namespace {

using Strings = std::vector<std::string>;

constexpr char const* kNotes =
    "<moxSQLDataSource name=\"Notas\"><Command>select n.turma, n.nota from notas n</Command>"
    "<Columns><Column tableName=\"n\" columnName=\"turma\" columnNameOrigin=\"turma\" Type=\"1\"/>"
    "<Column tableName=\"n\" columnName=\"nota\" columnNameOrigin=\"nota\" Type=\"4\"/></Columns>"
    "</moxSQLDataSource>";

std::string aggregation(std::string const& name, std::string const& source) {
  return "<moxAggregationDataSource name=\"" + name + "\" dataSource=\"" + source +
         "\"><moxDataMatrixAggregator><Indexes><Index name=\"turma\"/></Indexes><Functions>"
         "<moxDoubleAvg source=\"nota\" target=\"nota\"/></Functions></moxDataMatrixAggregator>"
         "</moxAggregationDataSource>";
}

std::string sorter(std::string const& name, std::string const& source) {
  return "<moxSorterDataSource name=\"" + name + "\" source=\"" + source +
         "\"><column name=\"turma\"/></moxSorterDataSource>";
}

std::string expression(std::string const& name, std::string const& source,
                       std::string const& text) {
  return "<moxExpressionDataSource name=\"" + name + "\" source=\"" + source +
         "\"><expressions><moxColumnExpression name=\"x\" type=\"1\">" + text +
         "</moxColumnExpression></expressions></moxExpressionDataSource>";
}

std::string pivot(std::string const& name, std::string const& source, std::string const& row) {
  return "<moxDataSourcePivoting name=\"" + name + "\" source=\"" + source +
         "\"><columns><column source=\"turma\"/></columns><rows><row source=\"" + row +
         "\"/></rows><cells><cell source=\"nota\" aggregation=\"moxDoubleAvg\"/></cells>"
         "</moxDataSourcePivoting>";
}

std::string unionOf(std::string const& name, std::string const& first, std::string const& second,
                    std::string const& column = "turma") {
  auto const columns = "<moxDataMatrixTextColumn name=\"" + column + "\"/></source>";
  return "<moxUnionDataSource name=\"" + name + "\"><sources><source name=\"" + first + "\">" +
         columns + "<source name=\"" + second + "\">" + columns + "</sources></moxUnionDataSource>";
}

std::string join(std::string const& name, std::string const& other, std::string const& key) {
  return "<moxJoinDataSource name=\"" + name +
         "\"><sources><source name=\"Notas\"><columns><moxDataMatrixTextColumn "
         "columnName=\"turma\" acolumnAlias=\"turma\"/></columns><joins/></source><source name=\"" +
         other +
         "\"><columns><moxDataMatrixDoubleColumn columnName=\"nota\" acolumnAlias=\"outra\"/>"
         "</columns><joins><join columnNameOrigin=\"" +
         key +
         "\" sourceNameRelac=\"Notas\" columnNameRelac=\"turma\" columnNameJoin=\"turma\"/></joins>"
         "</source></sources></moxJoinDataSource>";
}

class DerivedFailuresTest : public DefinitionTest {
 protected:
  DerivedFailuresTest() {
    host_.database().execute("create table notas (turma varchar(10), nota double)");
    host_.database().execute("insert into notas values ('A', 5), ('B', 9)");
    enter(kNotes);
  }

  std::shared_ptr<moxDataMatrix> run(std::string const& name) {
    return DefinitionRun(host_.application(), host_.application().sessions(), name).run();
  }

  /// Runs a sorter that reads the middle one, and gives the message and the details.
  Strings failureBehind(std::string const& middle) {
    enter(middle + sorter("Fim", "Meio"));
    return failureOfRun("Fim");
  }

  Strings failureOfRun(std::string const& name) {
    try {
      run(name);
    } catch (moxError const& error) {
      Strings told{error.errorMessage()};
      auto const details = error.errorDetails();
      told.insert(told.end(), details.begin(), details.end());
      return told;
    }
    return {};
  }

  static Strings lostInput(std::string const& message, std::string const& executionClass) {
    return {message, "in the source 'Meio', a " + executionClass,
            "the source 'Meio' reads 'Perdida', which is no source that this session finds",
            "in the definition 'Fim'"};
  }

  static Strings wrong(std::string const& message, std::string const& executionClass,
                       Strings const& details = {}) {
    Strings told{message};
    told.insert(told.end(), details.begin(), details.end());
    told.push_back("in the source 'Meio', a " + executionClass);
    told.push_back("in the definition 'Fim'");
    return told;
  }

  /// `count` sources of which each reads the one ahead; the first reads the query.
  template <class Make>
  void enterLevels(int count, Make const& make) {
    std::string items;
    for (int level = 1; level <= count; ++level) {
      auto const ahead = level == 1 ? std::string("Notas") : "F" + std::to_string(level - 1);
      items += make("F" + std::to_string(level), ahead);
    }
    enter(items);
  }
};

}  // namespace

TEST_F(DerivedFailuresTest, AnAggregationWithoutItsInputIsNamed) {
  EXPECT_EQ(failureBehind(aggregation("Meio", "Perdida")),
            lostInput("Falha: Meio", "moxAggregationDataSource"));
}

TEST_F(DerivedFailuresTest, ASorterWithoutItsInputIsNamed) {
  EXPECT_EQ(failureBehind(sorter("Meio", "Perdida")),
            lostInput("Falha: Meio", "moxSorterDataSource"));
}

TEST_F(DerivedFailuresTest, AUnionThatLacksOneOfItsInputsIsNamed) {
  EXPECT_EQ(failureBehind(unionOf("Meio", "Notas", "Perdida")),
            lostInput("Falha: Meio", "moxUnionDataSource"));
}

TEST_F(DerivedFailuresTest, AJoinThatLacksOneOfItsInputsIsNamed) {
  EXPECT_EQ(failureBehind(join("Meio", "Perdida", "turma")),
            lostInput("Falha: Meio", "moxJoinDataSource"));
}

TEST_F(DerivedFailuresTest, AnExpressionWithoutItsInputIsNamed) {
  EXPECT_EQ(failureBehind(expression("Meio", "Perdida", "nota(0)")),
            lostInput("Fonte de dados não localizada.", "moxExpressionDataSource"));
}

TEST_F(DerivedFailuresTest, ACrossTableWithoutItsInputIsNamed) {
  EXPECT_EQ(failureBehind(pivot("Meio", "Perdida", "turma")),
            lostInput("Fonte de dados Perdida não localizada.", "moxDataSourcePivoting"));
}

TEST_F(DerivedFailuresTest, AnExpressionOverAMissingColumnIsNamed) {
  EXPECT_EQ(failureBehind(expression("Meio", "Notas", "nada(0)")),
            wrong("Coluna não encontrada nada", "moxExpressionDataSource",
                  {"Coluna: x", "Expressão: nada(0)", "there are: turma, nota, x"}));
}

TEST_F(DerivedFailuresTest, AUnionOfAMissingColumnIsNamed) {
  EXPECT_EQ(failureBehind(unionOf("Meio", "Notas", "Notas", "nada")),
            wrong("Coluna nada não localizada.", "moxUnionDataSource", {"there are: turma, nota"}));
}

TEST_F(DerivedFailuresTest, ACrossTableOfAMissingColumnIsNamed) {
  EXPECT_EQ(
      failureBehind(pivot("Meio", "Notas", "nada")),
      wrong("Coluna nada não localizada.", "moxDataSourcePivoting", {"there are: turma, nota"}));
}

TEST_F(DerivedFailuresTest, AJoinByAMissingColumnIsNamed) {
  EXPECT_EQ(failureBehind(join("Meio", "Notas", "nada")),
            wrong("JoinDataSource: coluna nada do source Notas não localizada.",
                  "moxJoinDataSource", {"in the rows of Notas there are: turma, nota"}));
}

TEST_F(DerivedFailuresTest, AJoinByColumnsOfTwoKindsIsNamed) {
  EXPECT_EQ(failureBehind(join("Meio", "Notas", "nota")),
            wrong("JoinDataSource: coluna nota do source Notas não pode ser comparada com a coluna "
                  "turma: os tipos são diferentes.",
                  "moxJoinDataSource"));
}

TEST_F(DerivedFailuresTest, AnExpressionThatCannotBeReadIsNamedWithItsText) {
  EXPECT_EQ(
      failureBehind(expression("Meio", "Notas", "((")),
      (Strings{"Erro ao processar expressão para coluna 'x': Erro na contagem de parênteses.",
               "Coluna: x", "Expressão: ((", "in the source 'Meio', a moxExpressionDataSource",
               "in the definition 'Fim'"}));
}

TEST_F(DerivedFailuresTest, AJoinOnAColumnThatTheResultLacksTellsThoseOfTheResult) {
  auto const text = join("Meio", "Notas", "turma");
  auto const at = text.rfind("columnNameJoin=\"turma\"");
  EXPECT_EQ(failureBehind(text.substr(0, at) + "columnNameJoin=\"\"" + text.substr(at + 22)),
            wrong("JoinDataSource: coluna  do source Notas não localizada.", "moxJoinDataSource",
                  {"in the result there are: turma, outra"}));
}

TEST_F(DerivedFailuresTest, AnExpressionWithoutATextIsToldAsSuch) {
  EXPECT_EQ(failureBehind(expression("Meio", "Notas", "")),
            wrong("Erro ao processar expressão para coluna 'x': ", "moxExpressionDataSource",
                  {"Coluna: x", "Expressão: ", "the expression has no value"}));
}

TEST_F(DerivedFailuresTest, ADivisionByZeroIsToldWithColumnAndExpression) {
  EXPECT_EQ(failureBehind(expression("Meio", "Notas", "nota(0)/(nota(0)-9)")),
            wrong("Divisão por zero.", "moxExpressionDataSource",
                  {"Coluna: x", "Expressão: nota(0)/(nota(0)-9)"}));
}

TEST_F(DerivedFailuresTest, ACellWithoutItsFunctionIsToldByItsColumn) {
  auto text = pivot("Meio", "Notas", "turma");
  text.replace(text.find("moxDoubleAvg"), 12, "moxNenhuma");
  auto const told = failureBehind(text);
  ASSERT_EQ(told.size(), 4U);
  EXPECT_NE(told[0].find("moxNenhuma"), std::string::npos) << told[0];
  EXPECT_EQ(told[1], "as the function for the cells of nota");
}

TEST_F(DerivedFailuresTest, ATextCountsAsNothingInAnExpression) {
  enter(expression("Soma", "Notas", "turma(0)+1"));
  EXPECT_THAT(run("Soma"), isMatrix({{"turma", texts("A", "B")},
                                     {"nota", doubles(5.0, 9.0)},
                                     {"x", doubles(1.0, 1.0)}}));
}

TEST_F(DerivedFailuresTest, ARingThroughDifferentKindsIsToldAllTheWayRound) {
  enter(sorter("a", "b") + aggregation("b", "c") + sorter("c", "a"));
  EXPECT_EQ(failureOfRun("a"),
            (Strings{"Fonte de dados externa inválida",
                     "a source of data reads itself: b -> c -> a -> b", "in the definition 'a'"}));
}

TEST_F(DerivedFailuresTest, ASourceThatReadsARingIsNoPartOfIt) {
  enter(sorter("a", "b") + aggregation("b", "a") + unionOf("Fora", "Notas", "a"));
  EXPECT_EQ(failureOfRun("Fora"),
            (Strings{"Fonte de dados externa inválida",
                     "a source of data reads itself: a -> b -> a", "in the definition 'Fora'"}));
}

TEST_F(DerivedFailuresTest, AUnionThatReadsItselfIsARing) {
  enter(unionOf("Eu", "Notas", "Eu"));
  EXPECT_EQ(failureOfRun("Eu"),
            (Strings{"Fonte de dados externa inválida", "a source of data reads itself: Eu -> Eu",
                     "in the definition 'Eu'"}));
}

TEST_F(DerivedFailuresTest, AStatementThatTheDatabaseRefusesIsNamedWithItsQuery) {
  enter(
      "<moxSQLDataSource name=\"Sem tabela\"><Command>select turma from nenhuma</Command>"
      "</moxSQLDataSource>" +
      sorter("Meio", "Sem tabela") + unionOf("Fim", "Notas", "Meio"));
  auto const told = failureOfRun("Fim");
  ASSERT_GE(told.size(), 3U);
  EXPECT_NE(told[0].find("nenhuma"), std::string::npos) << told[0];
  EXPECT_EQ(told[told.size() - 2], "in the source 'Sem tabela', a moxSQLDataSource");
  EXPECT_EQ(told[told.size() - 1], "in the definition 'Fim'");
}

TEST_F(DerivedFailuresTest, AMemberThatFailsIsNamedWithItsGroup) {
  enter(
      "<moxGroupDataSource name=\"Grupo\" outputSource=\"c\" filterSource=\"n\"><DataSources>"
      "<moxDadoDataSource name=\"n\" dataSource=\"Notas\"/><moxDadoDataSource name=\"c\">" +
      expression("Soma", "n", "nada(0)") +
      "</moxDadoDataSource></DataSources></moxGroupDataSource>" + sorter("Fim", "Grupo"));
  EXPECT_EQ(failureOfRun("Grupo"),
            (Strings{"Coluna não encontrada nada", "Coluna: x", "Expressão: nada(0)",
                     "there are: turma, nota, x", "in the member 'c' of the group 'Grupo'",
                     "in the definition 'Grupo'"}));
  EXPECT_EQ(failureOfRun("Fim"),
            (Strings{"Coluna não encontrada nada", "Coluna: x", "Expressão: nada(0)",
                     "there are: turma, nota, x", "in the member 'c' of the group 'Grupo'",
                     "in the source 'Grupo', a moxGroupDataSource", "in the definition 'Fim'"}));
}

TEST_F(DerivedFailuresTest, AMemberThatLacksItsInputIsNamedWithIt) {
  enter(
      "<moxGroupDataSource name=\"Grupo\" outputSource=\"m\" filterSource=\"n\"><DataSources>"
      "<moxDadoDataSource name=\"n\" dataSource=\"Notas\"/><moxDadoDataSource name=\"m\">" +
      aggregation("Soma", "Notas") + "</moxDadoDataSource></DataSources></moxGroupDataSource>");
  EXPECT_EQ(failureOfRun("Grupo"),
            (Strings{"Falha: m", "in the member 'm' of the group 'Grupo'",
                     "the member 'm' of the group 'Grupo' reads the member 'Notas', which the "
                     "group does not have",
                     "in the definition 'Grupo'"}));
}

TEST_F(DerivedFailuresTest, SixtyFiveSourcesInAChainAreRunAndMoreAreRefused) {
  enterLevels(66, sorter);
  EXPECT_EQ(
      DefinitionRun(host_.application(), host_.application().sessions(), "F64").sources().size(),
      65U);
  EXPECT_THAT(run("F64"), isMatrix({{"turma", texts("A", "B")}, {"nota", doubles(5.0, 9.0)}}));
  for (auto const* name : {"F65", "F66"}) {
    auto const met = std::string(name) == "F65" ? "F1" : "F2";
    EXPECT_EQ(
        failureOfRun(name),
        (Strings{"Fonte de dados externa inválida",
                 "sources of data name each other more than 64 deep, met at: " + std::string(met),
                 "in the definition '" + std::string(name) + "'"}));
  }
}

TEST_F(DerivedFailuresTest, AFanOfEightLevelsIsRunWithEachSourceOnce) {
  enterLevels(8, [](auto const& name, auto const& ahead) { return unionOf(name, ahead, ahead); });
  EXPECT_EQ(
      DefinitionRun(host_.application(), host_.application().sessions(), "F8").sources().size(),
      9U);
  EXPECT_EQ(run("F8")->rowCount(), 512U);
}

TEST_F(DerivedFailuresTest, AFanOfFortyLevelsIsRefusedInsteadOfWalked) {
  enterLevels(40, [](auto const& name, auto const& ahead) { return unionOf(name, ahead, ahead); });
  EXPECT_EQ(failureOfRun("F40"),
            (Strings{"Fonte de dados externa inválida",
                     "sources of data read each other in more than 200000 ways, met at: F16",
                     "in the definition 'F40'"}));
}
