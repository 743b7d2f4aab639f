#include "core/run/search_run.h"

#include <stdexcept>

#include "core/run/explanation.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/sql_data_source_column.h"
#include "unit/core/error_message.h"
#include "unit/core/run/group_fixture.h"

namespace mox::core::run_test {
namespace {

using Texts = std::vector<std::string>;

class SearchRunTest : public GroupTest {
 protected:
  static std::string search(std::string const& name, std::string const& source,
                            std::string const& general = "", std::string const& inside = "") {
    return "<moxSearch VisibleName=\"Os alunos\" InternalName=\"" + name +
           "\"><General dataSource=\"" + source + "\" " + general +
           "><AutoFill atStartup=\"1\"/><Allowing Reorder=\"0\"/>" + inside +
           "</General></moxSearch>";
  }

  static std::string order(std::string const& column, std::string const& direction) {
    return "<InitialOrdering columnName=\"" + column + "\" columnNameOrigin=\"" + column +
           "\" tableName=\"a\" tableNameOrigin=\"alunos\" direction=\"" + direction + "\"/>";
  }

  SearchRun newSearch(std::string const& name = "Busca") {
    return SearchRun(host_.application(), host_.application().sessions(), name);
  }

  static std::string shown(SearchRun const& run) { return namesOf(*run.runner().getDataMatrix()); }

  std::string found(std::vector<std::string> const& filters, std::vector<int> units = {},
                    std::string const& name = "Busca") {
    auto run = newSearch(name);
    run.setUnits(std::move(units));
    run.setFilters(filters);
    run.run();
    return shown(run);
  }
};

TEST_F(SearchRunTest, RowsStandInTheInitialOrderAndAreReadCellByCell) {
  define(students("Alunos", ""));
  define(search("Busca", "Alunos", "", order("nome", "desc")));
  auto run = newSearch();
  run.run();
  EXPECT_EQ(shown(run), "Davi Caio Bia Ana");
  auto const column = static_cast<unsigned int>(run.runner().columnIndex("nome"));
  EXPECT_EQ(run.runner().getVisibleValue(0, column), "Davi");
  EXPECT_EQ(run.runner().rowCount(), 4U);
  EXPECT_EQ(run.search().getHeaderName(), "Os alunos");
}

Texts toldBy(SearchRun run) {
  try {
    run.run();
  } catch (moxError const& error) {
    auto told = error.errorDetails();
    told.insert(told.begin(), error.errorMessage());
    return told;
  }
  return {};
}

TEST_F(SearchRunTest, AFailureNamesTheMemberOfTheSearchedGroup) {
  define(group("Turma", "C", "A",
               member("A", students("A", "")) +
                   member("C",
                          "<moxExpressionDataSource name=\"C\" source=\"A\"><expressions>"
                          "<moxColumnExpression name=\"x\">nada(0)</moxColumnExpression>"
                          "</expressions></moxExpressionDataSource>")));
  define(search("Busca", "Turma"));
  EXPECT_EQ(toldBy(newSearch()),
            (Texts{"Coluna não encontrada nada", "Coluna: x", "Expressão: nada(0)",
                   "there are: id, nome, nota, nascimento, id_unidade, id_unidadematriz, x",
                   "in the member 'C' of the group 'Turma'", "in the definition 'Busca'"}));
}

TEST_F(SearchRunTest, OfAChainTheSourceIsNamedAndWhatItLacks) {
  define(students("Alunos", ""));
  define("<moxSorterDataSource name=\"Ordem\" source=\"Alunos\"/>");
  define(search("Busca", "Ordem"));
  EXPECT_EQ(toldBy(newSearch()),
            (Texts{"Falha: Ordem",
                   "a search runs its source alone, and not those that it reads (Alunos): a group "
                   "with all of them as members can be searched",
                   "in the source 'Ordem', a moxSorterDataSource", "in the definition 'Busca'"}));
}

TEST_F(SearchRunTest, FiltersNarrowAndSortingFollows) {
  define(students("Alunos", "", filter("moxDoubleRangeFilter", "nota")));
  define(search("Busca", "Alunos"));
  auto run = newSearch();
  ASSERT_EQ(run.offers().size(), 1U);
  run.setFilters({"nota=1.."});
  run.run();
  EXPECT_EQ(shown(run), "Ana Bia Caio");
  run.sort({{"nota", false}});
  EXPECT_EQ(shown(run), "Caio Bia Ana");
  EXPECT_EQ(run.runner().getVisibleValue(0, 1), "Caio") << "the cells follow the rows";
  run.sort({{"id_unidade", false}, {"nome", true}});
  EXPECT_EQ(shown(run), "Caio Ana Bia");
}

TEST_F(SearchRunTest, UnknownSortColumnIsNamedWithThoseThatThereAre) {
  define(students("Alunos", ""));
  define(search("Busca", "Alunos"));
  auto run = newSearch();
  EXPECT_THROW(run.sort({}), std::logic_error);
  run.run();
  EXPECT_EQ(test::errorMessageOf([&] {
              run.sort({{"nada", false}});
            }),
            "there is no column 'nada' to sort by; there are: id, nome, nota, nascimento, "
            "id_unidade, id_unidadematriz");
}

TEST_F(SearchRunTest, RunsForTheUnitsOfTheSessionOrOfTheCaller) {
  define(students("Alunos", "id_unidade", filter("moxIntegralInFilter", "id_unidade")));
  define(search("Busca", "Alunos"));
  logIn({3, 4});
  EXPECT_TRUE(newSearch().keepsToUnits());
  EXPECT_EQ(found({}), "Ana Caio");
  EXPECT_EQ(found({}, {3, 4}), "Ana Bia Caio");
  EXPECT_EQ(found({"id_unidade=3,4,6"}), "Ana Caio");
  EXPECT_EQ(found({"id_unidade=4,6"}, {3, 4}), "Bia");
  EXPECT_EQ(test::errorMessageOf([&] { found({}, {6}); }), "the user has no right to the unit 6");
}

TEST_F(SearchRunTest, SearchOfTheUnitsIsForAllThatTheUserMayChoose) {
  define(students("Alunos", "id_unidade", filter("moxIntegralInFilter", "id_unidade")));
  define(search("moxPesqUnidades", "Alunos"));
  logIn({3, 4});
  EXPECT_EQ(found({}, {}, "moxPesqUnidades"), "Ana Bia Caio");
  EXPECT_EQ(found({}, {3}, "moxPesqUnidades"), "Ana Bia Caio");
  EXPECT_EQ(found({"id_unidade=4,6"}, {}, "moxPesqUnidades"), "Bia");
}

TEST_F(SearchRunTest, FiltersOfAGroupGoToItsFilterSource) {
  define(group("Turma", "B", "A",
               member("A", students("A", "", filter("moxIntegralInFilter", "id"))) +
                   member("B", students("B", ""), "", relation("A", "id", "id"))));
  define(search("Busca", "Turma", "", order("nome", "desc")));
  EXPECT_EQ(found({"id=1,2"}), "Bia Ana");
  EXPECT_EQ(found({}), "Davi Caio Bia Ana");
}

TEST_F(SearchRunTest, ReportIsThatOfTheRun) {
  define(students("Alunos", "", filter("moxIntegralUniqueFilter", "id")));
  define(search("Busca", "Alunos"));
  auto run = newSearch();
  run.setFilters({"id=2"});
  run.keepReport(SearchRun::Report::kKept);
  run.run();
  auto const report = run.report();
  ASSERT_EQ(report.sources.size(), 1U);
  EXPECT_EQ(report.sources[0].statements.at(0).conditions.at(0).origin, moxRunOrigin::kUserFilter);
  EXPECT_TRUE(report.ignoredFilters.empty());
}

TEST_F(SearchRunTest, DryRunLeavesNoRows) {
  define(
      "<moxSQLDataSource name=\"Sem tabela\"><Command type=\"0\">select * from nada</Command>"
      "</moxSQLDataSource>");
  define(search("Busca", "Sem tabela"));
  auto run = newSearch();
  run.keepReport(SearchRun::Report::kComposeOnly);
  run.run();
  EXPECT_EQ(run.report().sources.at(0).statements.size(), 1U);
  EXPECT_EQ(run.runner().rowCount(), 0U);
}

TEST_F(SearchRunTest, SearchThatRequiresAFilterIsNotRunWithoutOne) {
  define(students("Alunos", "", filter("moxIntegralUniqueFilter", "id")));
  define(search("Busca", "Alunos", "requireFilter=\"1\""));
  EXPECT_EQ(test::errorMessageOf([&] { newSearch().run(); }),
            "the search 'Busca' runs only with a filter");
  EXPECT_EQ(found({"id=1"}), "Ana");
}

TEST_F(SearchRunTest, WhatIsNoSearchIsNamed) {
  define(students("Alunos", ""));
  EXPECT_EQ(test::errorMessageOf([&] { newSearch("Alunos"); }),
            "the definition 'Alunos' is no search: it is a moxSQLDataSource");
  EXPECT_EQ(test::errorMessageOf([&] { newSearch("Nada"); }), "there is no definition 'Nada'");
}

TEST_F(SearchRunTest, SourceThatIsNotThereIsNamed) {
  define(search("Busca", "Nada"));
  EXPECT_EQ(test::errorMessageOf([&] { newSearch(); }), "Fonte de dados externa inválida");
  try {
    newSearch();
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorDetails().back(), "the search 'Busca' names the source 'Nada'");
  }
}

TEST_F(SearchRunTest, SearchThatAQueryOwnsIsFoundByItsName) {
  auto const query = students("Alunos", "");
  define(query.substr(0, query.size() - std::string("</moxSQLDataSource>").size()) +
         "<moxSearch VisibleName=\"V\" InternalName=\"Busca\"><General "
         "dataSource=\"Alunos\"><AutoFill atStartup=\"0\"/><Allowing Reorder=\"0\"/></General>"
         "</moxSearch></moxSQLDataSource>");
  EXPECT_EQ(found({}), "Ana Bia Caio Davi");
}

TEST_F(SearchRunTest, RunAndExplanationOfASearchAreThoseOfItsSource) {
  define(students("Alunos", ""));
  define(search("Busca", "Alunos", "", order("nome", "desc")));
  auto run = newRun("Busca");
  EXPECT_EQ(namesOf(*run.run()), "Ana Bia Caio Davi");
  auto const explanation = explain(run, DefinitionRun::Report::kNone, "");
  EXPECT_EQ(explanation.definition, "Alunos");
  ASSERT_TRUE(explanation.search);
  EXPECT_EQ(explanation.search->name, "Busca");
  EXPECT_EQ(explanation.search->columns.size(), 6U);
  EXPECT_EQ(explanation.search->sortColumn, "nome");
  EXPECT_TRUE(explanation.search->sortDescending);
}

TEST_F(SearchRunTest, FailuresKeepTheirMessageAndNameTheSearch) {
  define(
      "<moxSQLDataSource name=\"Quebrada\"><Command type=\"0\">select * from alunos where id = "
      "{{nada}}</Command></moxSQLDataSource>");
  define(search("Busca", "Quebrada"));
  try {
    newSearch().run();
    FAIL() << "it must not run";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "Filtro com token nada não localizado");
    EXPECT_EQ(error.errorDetails().back(), "in the definition 'Busca'");
  }
}

}  // namespace
}  // namespace mox::core::run_test
