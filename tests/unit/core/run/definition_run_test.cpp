#include "core/run/definition_run.h"

#include <stdexcept>

#include "core/run/explanation.h"
#include "mox/core/progress_notifier.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/format/generic_formatter.h"
#include "unit/core/error_message.h"
#include "unit/core/run/run_fixture.h"

namespace mox::core::run_test {
namespace {

using DefinitionRunTest = RunTest;

std::string const kUnitFilters =
    "<moxIntegralUniqueFilter tableName=\"a\" columnName=\"id_unidade\"/>"
    "<moxIntegralRangeFilter tableName=\"a\" columnName=\"id_unidade\"/>"
    "<moxIntegralInFilter tableName=\"a\" columnName=\"id_unidade\"/>";

TEST_F(DefinitionRunTest, GivesTheMatrixOfTheDefinition) {
  defineStudents("");
  auto run = newRun();
  auto const matrix = run.run();
  EXPECT_EQ(namesOf(*matrix), "Ana Bia Caio Davi");
  EXPECT_EQ(run.context().getDataMatrix("Alunos"), matrix);
  EXPECT_EQ(run.sources().size(), 1U);
}

TEST_F(DefinitionRunTest, FiltersNarrowTheResult) {
  defineStudents("", filter("moxDoubleRangeFilter", "nota") + filter("moxTextInFilter", "nome"));
  EXPECT_EQ(names({"nota=6.."}), "Ana Bia");
  EXPECT_EQ(names({"nota=6..", "nome=Bia,Caio"}), "Bia");
}

TEST_F(DefinitionRunTest, UnknownDefinitionIsNamed) {
  EXPECT_EQ(test::errorMessageOf([&] { newRun("Nada"); }), "there is no definition 'Nada'");
}

TEST_F(DefinitionRunTest, WhatGivesNoDataIsNamedWithItsClass) {
  define("<moxFormatterZYNItem name=\"Dinheiro\"><moxDecimalFormatter/></moxFormatterZYNItem>");
  auto const cache = host_.get<moxZYNCache>("moxZYNCache");
  std::string name = "Dinheiro";
  if (!cache->getCollection(name)) {
    name = "";  // an item is found by the description of its formatter
  }
  EXPECT_EQ(test::errorMessageOf([&] { newRun(name); }),
            "the definition '" + name + "' gives no data: it is a moxFormatterZYNItem");
}

TEST_F(DefinitionRunTest, SessionOfTheThreadBringsItsUnits) {
  defineStudents();
  logIn({3, 4});
  EXPECT_EQ(names({}), "Ana Caio");
  EXPECT_EQ(names({}, {4}), "Bia");
  EXPECT_EQ(names({}, {3, 4}), "Ana Bia Caio");
}

TEST_F(DefinitionRunTest, FiltersOnTheUnitColumnNeverWidenTheResult) {
  defineStudents("id_unidade", kUnitFilters);
  logIn({3, 4});
  for (auto const* const filter :
       {"id_unidade=6", "id_unidade=4", "id_unidade=4..", "id_unidade=..2", "id_unidade=4,6"}) {
    EXPECT_EQ(names({filter}), "") << filter;
  }
  for (auto const* const filter :
       {"id_unidade=3", "id_unidade=1..", "id_unidade=..9", "id_unidade=3,4,6"}) {
    EXPECT_EQ(names({filter}), "Ana Caio") << filter;
  }
  EXPECT_EQ(names({"a.id_unidade=4..9"}, {3, 4}), "Bia");
}

TEST_F(DefinitionRunTest, AllFiltersOnTheUnitColumnTogetherNeverWidenTheResult) {
  defineStudents("id_unidade", kUnitFilters);
  logIn({3});
  EXPECT_EQ(names({"id_unidade=3", "id_unidade=1..9", "id_unidade=3,6"}), "Ana Caio");
  EXPECT_EQ(names({"id_unidade=3", "id_unidade=6..9"}), "");
}

TEST_F(DefinitionRunTest, UnitsWithoutARightAreRefused) {
  defineStudents();
  logIn({3, 4});
  EXPECT_EQ(test::errorMessageOf([&] {
              names({}, {3, 6});
            }),
            "the user has no right to the unit 6");
}

TEST_F(DefinitionRunTest, HeadOfficeColumnIsHeldToTheHeadOffice) {
  defineStudents("id_unidadematriz",
                 "<moxIntegralUniqueFilter tableName=\"a\" columnName=\"id_unidadematriz\"/>");
  logIn({3});
  EXPECT_EQ(names({}), "Ana Bia Caio");
  EXPECT_EQ(names({"id_unidadematriz=1"}), "Ana Bia Caio");
  EXPECT_EQ(names({"id_unidadematriz=2"}), "");
}

TEST_F(DefinitionRunTest, UserWithoutUnitsGetsTheModulesRefusal) {
  defineStudents();
  logIn({});
  EXPECT_EQ(test::errorMessageOf([&] { names({}); }),
            "Não foi identificado a unidade matriz para processamento");
}

TEST_F(DefinitionRunTest, WithoutAUserAndUnitsNoRowOfAUnitIsShown) {
  defineStudents("id_unidade", kUnitFilters);
  EXPECT_TRUE(newRun().keepsToUnits());
  EXPECT_EQ(names({}), "");
  EXPECT_EQ(names({"id_unidade=1..9"}), "");
  EXPECT_EQ(names({}, {6}), "Davi");
}

TEST_F(DefinitionRunTest, RequiredFiltersAreAskedForAlsoWhenNobodySetAny) {
  defineStudents("", filter("moxIntegralUniqueFilter", "id", "require=\"1\""));
  EXPECT_EQ(test::errorMessageOf([&] { newRun().run(); }),
            "a required filter is missing: id=NUMBER");
  EXPECT_EQ(names({"id=2"}), "Bia");
}

TEST_F(DefinitionRunTest, FailuresKeepTheirMessageAndNameTheDefinition) {
  define(
      "<moxSQLDataSource name=\"Quebrada\"><Command type=\"0\">select * from alunos where id = "
      "{{nada}}</Command></moxSQLDataSource>");
  try {
    newRun("Quebrada").run();
    FAIL() << "it must not run";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "Filtro com token nada não localizado");
    ASSERT_FALSE(error.errorDetails().empty());
    EXPECT_EQ(error.errorDetails().back(), "in the definition 'Quebrada'");
  }
}

TEST_F(DefinitionRunTest, FiltersAreSetOnceAndAfterTheUnits) {
  defineStudents();
  auto run = newRun();
  run.setFilters({});
  EXPECT_THROW(run.setFilters({}), std::logic_error);
  EXPECT_THROW(run.setUnits({3}), std::logic_error);
}

/// Asks a run to stop at once.
class Stop final : public moxDataSourceExecutionProgressNotifier {
 public:
  std::string name() const override { return "testStop"; }
  void setTotal(int /*count*/) override {}
  bool step(int /*done*/) override { return false; }
};

TEST_F(DefinitionRunTest, StoppedRunGivesNothing) {
  defineStudents("");
  EXPECT_EQ(newRun().run(std::make_shared<Stop>()), nullptr);
}

TEST_F(DefinitionRunTest, ReportTellsWhatWasSentAndWhy) {
  defineStudents("id_unidade", filter("moxDoubleRangeFilter", "nota") + kUnitFilters);
  logIn({3});
  auto run = newRun();
  run.setFilters({"nota=6..", "id_unidade=3,6"});
  run.keepReport(DefinitionRun::Report::kKept);
  run.run();
  auto const report = run.report();
  ASSERT_EQ(report.sources.size(), 1U);
  EXPECT_TRUE(report.sources[0].executed);
  EXPECT_EQ(report.sources[0].rows, 1);
  ASSERT_EQ(report.sources[0].statements.size(), 1U);
  auto const& conditions = report.sources[0].statements[0].conditions;
  ASSERT_EQ(conditions.size(), 2U);
  EXPECT_EQ(conditions[0].origin, moxRunOrigin::kUserFilter);
  ASSERT_EQ(conditions[1].values.size(), 1U);
  EXPECT_EQ(conditions[1].values[0].text, "3");
  EXPECT_TRUE(report.unitsFromSession);
}

TEST_F(DefinitionRunTest, ComposedOnlyRunAsksTheDatabaseNothing) {
  define(
      "<moxSQLDataSource name=\"Sem tabela\"><Command type=\"0\">select * from nada</Command>"
      "</moxSQLDataSource>");
  auto run = newRun("Sem tabela");
  run.keepReport(DefinitionRun::Report::kComposeOnly);
  EXPECT_NO_THROW(run.run());
  ASSERT_EQ(run.report().sources.size(), 1U);
  EXPECT_FALSE(run.report().sources[0].executed);
  EXPECT_EQ(run.report().sources[0].statements.at(0).sql.substr(0, 18), "select * from nada");
}

TEST_F(DefinitionRunTest, ReportIsEmptyWhereNoneWasAskedFor) {
  defineStudents("");
  auto run = newRun();
  run.run();
  EXPECT_TRUE(run.report().sources.empty());
}

}  // namespace
}  // namespace mox::core::run_test
