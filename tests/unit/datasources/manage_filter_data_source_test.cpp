#include "zyn/datasources/manage_filter_data_source.h"

#include "mox/core/registry.h"
#include "mox/zyn/datasources/sql_data_source_execution.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "support/matrix_builder.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/data_source_label.h"

using namespace mox_test;

namespace {

using Strings = std::vector<std::string>;
using Records = std::vector<moxManageFilterDataSource::ManageFilterData>;

std::string const kStudents =
    "<moxSQLDataSource name=\"Alunos\" whereand=\"and\"><Command>select id, id_curso from alunos a "
    "where id&gt;={{minimo}}</Command><Columns>"
    "<Column tableName=\"a\" columnName=\"id\" columnNameOrigin=\"id\" Type=\"2\"/>"
    "<Column tableName=\"a\" columnName=\"id_curso\" columnNameOrigin=\"id_curso\" Type=\"2\"/>"
    "</Columns><Order><By tableName=\"a\" columnName=\"id\"/></Order><Filters><column>"
    "<moxIntegralUniqueFilter tableName=\"a\" columnName=\"id_curso\"/></column><custom>"
    "<moxIntegralUniqueFilter columnName=\"{{minimo}}\"/></custom></Filters></moxSQLDataSource>";

std::string const kWhole =
    "<moxManageFilterDataSource name=\"Tela\"><sources><source name=\"Alunos\"><avaliable>"
    "<filter filterName=\"id_curso\"/><filter filterName=\"{{minimo}}\"/></avaliable><related>"
    "<filter tableNameOrigin=\"cursos\" columnNameOrigin=\"id_curso\" tableName=\"a\" "
    "columnName=\"curso\" filterNameRelac=\"Curso\"/></related></source><source name=\"Notas\"/>"
    "</sources><Filters><moxIntegralUniqueFilter tableName=\"\" columnName=\"Curso\" ";

class ManageFilterDataSourceTest : public DefinitionTest {
 protected:
  using Filter = std::shared_ptr<moxDataMatrixSQLIntegerUniqueFilter>;

  ManageFilterDataSourceTest() {
    host_.database().execute("create table alunos (id int, id_curso int)");
    host_.database().execute("insert into alunos values (1, 10), (2, 20), (3, 10), (4, 20)");
  }

  std::shared_ptr<moxManageFilterDataSource> newManager() {
    return host_.get<moxManageFilterDataSource>("moxManageFilterDataSource");
  }

  std::shared_ptr<moxManageFilterDataSource> manager(std::string const& content) {
    return read<moxManageFilterDataSource>("<moxManageFilterDataSource name=\"Tela\">" + content +
                                           "</moxManageFilterDataSource>");
  }

  /// One that governs "Alunos" with that content of its record.
  std::shared_ptr<moxManageFilterDataSource> managerOfStudents(std::string const& record) {
    return manager("<sources><source name=\"Alunos\">" + record + "</source></sources>");
  }

  Filter equals(std::string const& column, int value) {
    auto made =
        host_.get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
    made->setColumnName("", column);
    made->setValue(value);
    return made;
  }

  /// An execution of the students that the manager governs.
  std::shared_ptr<moxSQLDataSourceExecution> governed(moxManageFilterDataSource const& manager) {
    auto execution =
        std::dynamic_pointer_cast<moxSQLDataSourceExecution>(read(kStudents)->createExecution());
    for (auto record : manager.getSources()) {
      record.name = manager.getName();
      execution->addManageFiltersData(record);
    }
    return execution;
  }

  /// The students of a run in which filters were given for the manager.
  std::shared_ptr<moxDataMatrix> run(std::shared_ptr<moxManageFilterDataSource> const& manager,
                                     std::vector<Filter> const& filters) {
    auto const context = newContext();
    context->setDataSourceFilters("Tela", {filters.begin(), filters.end()});
    context->processDataSources(
        {},
        {{"Tela", {false, manager->createExecution()}}, {"Alunos", {false, governed(*manager)}}},
        {}, 0);
    return context->getDataMatrix("Alunos");
  }
};

std::string const kMinimum = "<avaliable><filter filterName=\"{{minimo}}\"/></avaliable>";

std::string related(std::string const& attributes) {
  return "<related><filter " + attributes + "/></related>";
}

}  // namespace

TEST_F(ManageFilterDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const made = newManager();
  EXPECT_EQ(made->name(), "moxManageFilterDataSource");
  EXPECT_EQ(made->getTipo(), 3);
  made->setName("Tela");
  EXPECT_EQ(made->description(), "Tela");
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
  made->setParentLibraryName("ESCOLA");
  EXPECT_EQ(made->getParentLibName(), "ESCOLA");
}

TEST_F(ManageFilterDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions =
      moxInternalPluginContainer<ManageFilterDataSource>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Gerenciador de Filtro");
}

TEST_F(ManageFilterDataSourceTest, HasNoColumnsAndNoOptions) {
  auto const made = managerOfStudents("");
  EXPECT_TRUE(made->getColumns().empty());
  EXPECT_TRUE(made->options().empty());
  EXPECT_TRUE(made->getRelatedColumns({{"Alunos", read(kStudents)}}).empty());
}

TEST_F(ManageFilterDataSourceTest, AFilterIsKeptOnceAndRemovedByTheObject) {
  auto const made = newManager();
  auto const filter = host_.get<moxFilterSpecification>("moxIntegralUniqueFilter");
  made->addFilter(filter);
  made->addFilter(filter);
  made->addFilter(nullptr);
  ASSERT_EQ(made->getFilters().size(), 1u);
  EXPECT_EQ(std::as_const(*made).getFilters().at(0), filter);
  made->removeFilter(host_.get<moxFilterSpecification>("moxIntegralUniqueFilter"));
  EXPECT_EQ(made->getFilters().size(), 1u);
  made->removeFilter(filter);
  EXPECT_TRUE(made->getFilters().empty());
}

TEST_F(ManageFilterDataSourceTest, GetSourcesGivesACopy) {
  auto const made = managerOfStudents("");
  auto sources = made->getSources();
  sources.at(0).name = "Outra";
  sources.at(0).avaliable.push_back({"x"});
  EXPECT_EQ(made->getSources().at(0).name, "Alunos");
  EXPECT_TRUE(made->getSources().at(0).avaliable.empty());
  made->setSources(sources);
  EXPECT_EQ(made->getSources().at(0).name, "Outra");
}

TEST_F(ManageFilterDataSourceTest, RelatedSourcesAreThoseOfItsRecordsThatAreFound) {
  enter(kStudents +
        "<moxFilterDataSource name=\"f\" dataSource=\"Alunos\"/>"
        "<moxFormatterZYNItem description=\"Moeda\"/>");
  auto const made = manager(
      "<sources><source name=\"f\"/><source name=\"Nada\"/>"
      "<source name=\"Moeda\"/><source/><source name=\"Alunos\"/></sources>");
  EXPECT_EQ(namesOf(made->getRelatedDataSources(false)), (Strings{"f", "Alunos"}));
  EXPECT_EQ(namesOf(made->getRelatedDataSources(true)), (Strings{"Alunos", "f", "Alunos"}));
}

TEST_F(ManageFilterDataSourceTest, ManagersInARingAreRefused) {
  auto const governing = [](std::string const& name, std::string const& governed) {
    return "<moxManageFilterDataSource name=\"" + name + "\"><sources><source name=\"" + governed +
           "\"/></sources></moxManageFilterDataSource>";
  };
  enter(governing("m1", "m2") + governing("m2", "m1"));
  EXPECT_EQ(failureOf([&] { (void)entered("m1")->getRelatedDataSources(true); }),
            "Fonte de dados externa inválida");
  EXPECT_EQ(namesOf(entered("m1")->getRelatedDataSources(false)), Strings{"m2"});
}

TEST_F(ManageFilterDataSourceTest, ManagersThatFanOutAtEveryLevelAreRefusedInTime) {
  std::string levels;
  for (int i = 0; i < 40; ++i) {
    auto const below = "<source name=\"m" + std::to_string(i + 1) + "\"/>";
    levels += "<moxManageFilterDataSource name=\"m" + std::to_string(i) + "\"><sources>" + below +
              below + "</sources></moxManageFilterDataSource>";
  }
  enter(levels);
  EXPECT_EQ(failureOf([&] { (void)entered("m0")->getRelatedDataSources(true); }),
            "Fonte de dados externa inválida");
}

TEST_F(ManageFilterDataSourceTest, AnExecutionNeedsADefinitionHeldBySharedPointers) {
  ManageFilterDataSource onTheStack;
  EXPECT_THROW((void)onTheStack.createExecution(), std::bad_weak_ptr);
}

TEST_F(ManageFilterDataSourceTest, AnExecutionOffersTheDefinitionsFilters) {
  auto const made = manager("<Filters><moxIntegralUniqueFilter/><moxTextInFilter/></Filters>");
  auto const execution = made->createExecution();
  EXPECT_EQ(execution->name(), "moxManageFilterDataSourceExecution");
  EXPECT_EQ(execution->getFilters(), std::as_const(*made).getFilters());
  EXPECT_EQ(execution->getFilters().size(), 2u);
}

TEST_F(ManageFilterDataSourceTest, ARunGivesTrueAndLeavesTheContextAsItWas) {
  auto const execution = managerOfStudents("")->createExecution();
  execution->setDataSourceExternalRelation({{"Alunos", "a"}});
  auto const context = newContext();
  EXPECT_TRUE(execution->generateDataMatrix(context, "x"));
  EXPECT_TRUE(execution->generateDataMatrix(context, "x"));
  EXPECT_TRUE(execution->generateDataMatrix(context, ""));
  EXPECT_TRUE(execution->generateDataMatrix(nullptr, ""));
  EXPECT_EQ(context->getDataMatrix("x"), nullptr);
  EXPECT_EQ(context->getDataMatrix("Tela"), nullptr);
}

TEST_F(ManageFilterDataSourceTest, AnEmptyNodeGivesFalseAndChangesNothing) {
  auto const made = managerOfStudents("");
  auto const before = textOf(*made);
  EXPECT_FALSE(made->load({}));
  EXPECT_FALSE(made->save({}));
  EXPECT_EQ(textOf(*made), before);
}

TEST_F(ManageFilterDataSourceTest, TheLeastManagerIsWrittenWithEmptyLists) {
  EXPECT_EQ(
      textOf(*newManager()),
      "<moxManageFilterDataSource name=\"\"><sources/><Filters/></moxManageFilterDataSource>");
}

TEST_F(ManageFilterDataSourceTest, WhatIsWrittenIsReadAndWrittenTheSame) {
  auto const written = textOf(*read(kWhole + "/></Filters></moxManageFilterDataSource>"));
  EXPECT_EQ(written.substr(0, kWhole.size()), kWhole);
  EXPECT_EQ(textOf(*read(written)), written);
}

TEST_F(ManageFilterDataSourceTest, EveryFieldOfARecordIsRead) {
  auto const made =
      read<moxManageFilterDataSource>(kWhole + "/></Filters></moxManageFilterDataSource>");
  auto const sources = made->getSources();
  ASSERT_EQ(sources.size(), 2u);
  EXPECT_EQ(sources[0].name, "Alunos");
  ASSERT_EQ(sources[0].avaliable.size(), 2u);
  EXPECT_EQ(sources[0].avaliable[0].filterName, "id_curso");
  EXPECT_EQ(sources[0].avaliable[1].filterName, "{{minimo}}");
  ASSERT_EQ(sources[0].related.size(), 1u);
  EXPECT_EQ(sources[0].related[0].tableNameOrigin, "cursos");
  EXPECT_EQ(sources[0].related[0].columnNameOrigin, "id_curso");
  EXPECT_EQ(sources[0].related[0].tableName, "a");
  EXPECT_EQ(sources[0].related[0].columnName, "curso");
  EXPECT_EQ(sources[0].related[0].filterNameRelac, "Curso");
  EXPECT_EQ(sources[1].name, "Notas");
  EXPECT_TRUE(sources[1].avaliable.empty());
  EXPECT_TRUE(sources[1].related.empty());
}

TEST_F(ManageFilterDataSourceTest, ListsOfARecordMayStandInSeveralElements) {
  auto const made = managerOfStudents(
      "<avaliable><filter filterName=\"a\"/></avaliable><related><filter columnName=\"x\"/>"
      "</related><avaliable><filter filterName=\"b\"/><other filterName=\"c\"/></avaliable>"
      "<related><filter columnName=\"y\"/></related>");
  auto const record = made->getSources().at(0);
  ASSERT_EQ(record.avaliable.size(), 2u);
  EXPECT_EQ(record.avaliable[1].filterName, "b");
  ASSERT_EQ(record.related.size(), 2u);
  EXPECT_EQ(record.related[1].columnName, "y");
}

TEST_F(ManageFilterDataSourceTest, InOldFilesTheFiltersNameStandsForTheColumn) {
  auto const made = managerOfStudents(related("filterName=\"{{minimo}}\" filterNameRelac=\"M\""));
  EXPECT_EQ(made->getSources().at(0).related.at(0).columnName, "{{minimo}}");
  EXPECT_NE(textOf(*made).find("columnName=\"{{minimo}}\" filterNameRelac=\"M\"/>"),
            std::string::npos);
  EXPECT_EQ(textOf(*made).find("filterName=\""), std::string::npos);
  auto const both = managerOfStudents(related("columnName=\"c\" filterName=\"f\""));
  EXPECT_EQ(both->getSources().at(0).related.at(0).columnName, "c");
}

TEST_F(ManageFilterDataSourceTest, AFilterThatIsNoneIsRefusedAndOneThatNobodyRegisteredIsTold) {
  EXPECT_EQ(failureOf([&] { manager("<Filters><moxTextFormatter/></Filters>"); }),
            "Filtro inválido: moxTextFormatter");
  EXPECT_THROW(manager("<Filters><moxNada/></Filters>"), moxPluginNotFound);
}

TEST_F(ManageFilterDataSourceTest, ARecordWithoutAvaliableEntriesGivesAUserNoFilters) {
  EXPECT_TRUE(governed(*managerOfStudents(related("columnName=\"id\" filterNameRelac=\"Id\"")))
                  ->getFilters()
                  .empty());
  auto const made = managerOfStudents("<avaliable><filter filterName=\"id_curso\"/></avaliable>");
  auto const offered = governed(*made)->getFilters();
  ASSERT_EQ(offered.size(), 1u);
  EXPECT_EQ(offered[0]->getColumn(), "id_curso");
}

TEST_F(ManageFilterDataSourceTest, AFilterOfTheScreenAnswersForTheColumnOfTheSource) {
  auto const made = managerOfStudents(
      kMinimum + related("columnNameOrigin=\"id_curso\" tableName=\"a\" columnName=\"curso\" "
                         "filterNameRelac=\"Curso\""));
  auto const course = equals("Curso", 10);
  EXPECT_THAT(run(made, {course, equals("{{minimo}}", 2)}),
              isMatrix({{"id", ints(3)}, {"id_curso", ints(10)}}));
  EXPECT_EQ(course->getColumnName(), "Curso");
}

TEST_F(ManageFilterDataSourceTest, ARelatedFilterWithoutAColumnIsAConditionOnTheOneOfTheOrigin) {
  auto const made = managerOfStudents(
      kMinimum + related("columnNameOrigin=\"id_curso\" filterNameRelac=\"Curso\""));
  EXPECT_EQ(made->getSources().at(0).related.at(0).columnName, "");
  EXPECT_THAT(run(made, {equals("Curso", 20), equals("{{minimo}}", 1)}),
              isMatrix({{"id", ints(2, 4)}, {"id_curso", ints(20, 20)}}));
}

TEST_F(ManageFilterDataSourceTest, AFilterOfTheScreenAnswersForATokenOfTheSource) {
  auto const made =
      managerOfStudents(related("columnName=\"{{minimo}}\" filterNameRelac=\"Desde\""));
  EXPECT_THAT(run(made, {equals("Desde", 3), equals("Outro", 0)}),
              isMatrix({{"id", ints(3, 4)}, {"id_curso", ints(10, 20)}}));
}
