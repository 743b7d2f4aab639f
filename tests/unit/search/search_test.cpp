#include "mox/zyn/search/search.h"

#include "core/session/session.h"
#include "mox/zyn/items/zyn_cache.h"
#include "unit/search/fake_sources.h"
#include "unit/search/search_fixture.h"
#include "zyn/search/search.h"

namespace {

using search_test::failureOf;
using search_test::FakeGroup;
using search_test::FakeMember;
using search_test::FakeSource;

class Search : public search_test::SearchTest {
 protected:
  /// A query with the columns t.id, t.nome and u.apelido, of which the last is called otherwise in
  /// its table.
  std::shared_ptr<moxSQLDataSource> query(std::string const& name = "alunos") {
    auto made = host_.get<moxSQLDataSource>("moxSQLDataSource");
    EXPECT_TRUE(made->load(
        document("<moxSQLDataSource name=\"" + name +
                 "\"><Command>select 1</Command><Columns>"
                 "<Column tableName=\"t\" columnName=\"id\"/>"
                 "<Column tableName=\"t\" columnName=\"nome\" columnNameOrigin=\"nome\"/>"
                 "<Column tableName=\"u\" columnName=\"apelido\" columnNameOrigin=\"alcunha\" "
                 "tableNameOrigin=\"usuarios\"/></Columns></moxSQLDataSource>")
            ->root()));
    return made;
  }

  /// A search on such a query, sorted as the element says.
  std::shared_ptr<moxSearch> sorted(std::string const& attributes) {
    auto made = searchOf("<General><InitialOrdering " + attributes + "/></General>");
    made->setDataSource(query());
    return made;
  }

  std::shared_ptr<FakeGroup> group(std::string const& output) {
    auto made = std::make_shared<FakeGroup>("grupo");
    made->setOutputSource(output);
    return made;
  }

  std::shared_ptr<moxSearch> on(std::shared_ptr<moxDataSource> source) {
    auto made = newSearch();
    made->setInternalName("pesq");
    made->setDataSource(std::move(source));
    return made;
  }
};

}  // namespace

TEST_F(Search, IsASearchOfTheRegistry) {
  auto const made = newSearch();
  EXPECT_EQ(made->name(), "moxSearch");
  EXPECT_EQ(made->getTipo(), 0);
  EXPECT_NE(dynamic_cast<moxSE_Search*>(made.get()), nullptr);
  EXPECT_NE(newSearch(), made);
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
}

TEST_F(Search, KeepsWhatItIsTold) {
  auto const made = newSearch();
  made->setInternalName("pesq");
  made->setHeaderName("Pesquisa");
  made->setAllowReorder(true);
  made->setAutoFill(true);
  made->setInitialSize(10, 20);
  made->setRequireFilter(true);
  made->setRequirePermission(false);
  made->setParentLibraryName("L");
  EXPECT_EQ(made->description(), "pesq");
  EXPECT_EQ(made->getHeaderName(), "Pesquisa");
  EXPECT_TRUE(made->allowReorder());
  EXPECT_TRUE(made->autoFill());
  EXPECT_EQ(made->getInitialWidth(), 10u);
  EXPECT_EQ(made->getInitialHeight(), 20u);
  EXPECT_TRUE(made->requireFilter());
  EXPECT_FALSE(made->requirePermission());
  EXPECT_EQ(made->getParentLibName(), "L");
}

TEST_F(Search, OwnsTheSourceThatItIsGiven) {
  auto const source = query();
  auto const made = on(source);
  EXPECT_EQ(made->getDataSource(), source);
  EXPECT_EQ(sourceOf(*made), source);
  EXPECT_EQ(made->getSqlDataSource(), source);
}

TEST_F(Search, AnOwnedSourceTakesThePlaceOfANamedOne) {
  auto const made = newSearch();
  made->setDataSourceExterno("nenhuma", {});
  auto const source = query();
  made->setDataSource(source);
  EXPECT_EQ(sourceOf(*made), source);
  EXPECT_NE(textOf(*made).find("<dataSource><moxSQLDataSource"), std::string::npos);
}

TEST_F(Search, AnExternalNameIsLookedUpInTheCache) {
  cached("<moxSQLDataSource name=\"fora\"><Command>select 1</Command></moxSQLDataSource>");
  auto const made = newSearch();
  made->setDataSourceExterno("fora", {});
  EXPECT_EQ(sourceOf(*made), host_.get<moxZYNCache>("moxZYNCache")->getCollection("fora"));
  EXPECT_EQ(made->getDataSource(), nullptr);
}

TEST_F(Search, AGivenSourceGoesBeforeTheCache) {
  cached("<moxSQLDataSource name=\"fora\"><Command>select 1</Command></moxSQLDataSource>");
  auto given = query("fora");
  auto const made = newSearch();
  made->setDataSourceExterno("fora", given);
  EXPECT_EQ(sourceOf(*made), given);
  given.reset();  // nobody else held it
  EXPECT_EQ(sourceOf(*made), host_.get<moxZYNCache>("moxZYNCache")->getCollection("fora"));
}

TEST_F(Search, ANameGivenWithoutASourceEndsTheGivenOne) {
  auto const given = query("fora");
  auto const made = newSearch();
  made->setDataSourceExterno("fora", given);
  made->setDataSourceExterno("fora", {});
  EXPECT_EQ(failureOf([&] { sourceOf(*made); }).message, "Fonte de dados externa inválida");
}

TEST_F(Search, AnEmptyExternalNameIsNotDefined) {
  auto const made = newSearch();
  made->setInternalName("pesq");
  made->setDataSourceExterno("", {});
  auto const failure = failureOf([&] { sourceOf(*made); });
  EXPECT_EQ(failure.message, "Fonte de dados externa não definida");
  EXPECT_EQ(failure.details.at(0), "search: \"pesq\"");
  EXPECT_EQ(failureOf([&] { made->getSqlDataSource(); }).message,
            "Fonte de dados externa não definida");
}

TEST_F(Search, AnExternalNameOfNoSourceIsInvalid) {
  cached("<moxSearch InternalName=\"fora\"/>");
  auto const made = newSearch();
  made->setInternalName("pesq");
  made->setDataSourceExterno("fora", {});
  auto const failure = failureOf([&] { sourceOf(*made); });
  EXPECT_EQ(failure.message, "Fonte de dados externa inválida");
  EXPECT_EQ(failure.details,
            (std::vector<std::string>{"search: \"pesq\"", "no data source is called \"fora\""}));
}

TEST_F(Search, EachSessionSeesItsOwnSource) {
  cached("<moxSQLDataSource name=\"fora\"><Command>select 1</Command></moxSQLDataSource>");
  auto const made = newSearch();
  made->setDataSourceExterno("fora", {});
  host_.logIn({.id = 1});
  auto const own = host_.get<moxZYNCollection>("moxZYNCollection");
  own->unserialize(document("<moxZYNCollection><moxSQLDataSource name=\"fora\"><Command>select 2"
                            "</Command></moxSQLDataSource></moxZYNCollection>")
                       ->root());
  host_.get<moxZYNCache>("moxZYNSessionCache")->appendCollection(own);
  EXPECT_EQ(made->getSqlDataSource()->getSQL(), "select 2");
  host_.logIn({.id = 2});
  EXPECT_EQ(made->getSqlDataSource()->getSQL(), "select 1");
}

TEST_F(Search, TheQueryBehindAGroupIsItsOutput) {
  auto const first = query("a");
  auto const second = query("b");
  auto const made = group("saida");
  made->dataSources().add(std::make_shared<FakeMember>("entrada", first));
  made->dataSources().add(std::make_shared<FakeMember>("saida", second));
  EXPECT_EQ(on(made)->getSqlDataSource(), second);
}

TEST_F(Search, AGroupWithoutItsOutputHasNoQuery) {
  auto const made = group("saida");
  made->dataSources().add(std::make_shared<FakeMember>("entrada", query()));
  EXPECT_EQ(on(made)->getSqlDataSource(), nullptr);
  EXPECT_EQ(on(made)->getInitialOrderColumn(), nullptr);
}

TEST_F(Search, AGroupWhoseOutputIsDerivedHasNoQuery) {
  auto const made = group("saida");
  made->dataSources().add(
      std::make_shared<FakeMember>("saida", std::make_shared<FakeSource>("soma")));
  made->dataSources().add(std::make_shared<FakeMember>("saida", nullptr));
  EXPECT_EQ(on(made)->getSqlDataSource(), nullptr);
}

TEST_F(Search, AnyOtherSourceHasNoQuery) {
  auto const made = on(std::make_shared<FakeSource>("soma"));
  auto const failure = failureOf([&] { made->getSqlDataSource(); });
  EXPECT_EQ(failure.message, "Não localizado fonte de dados do tipo SQL.");
  EXPECT_EQ(failure.details, (std::vector<std::string>{
                                 "search: \"pesq\"", "its data source \"soma\" is a fakeSource"}));
  EXPECT_EQ(failureOf([&] { made->getInitialOrderColumn(); }).message,
            "Não localizado fonte de dados do tipo SQL.");
}

TEST_F(Search, TheInitialOrderIsFoundByTheNameInTheTable) {
  auto const made =
      sorted("tableName=\"t\" columnName=\"outra\" columnNameOrigin=\"nome\" direction=\"asc\"");
  ASSERT_NE(made->getInitialOrderColumn(), nullptr);
  EXPECT_EQ(made->getInitialOrderColumn()->getColumnName(), "nome");
  EXPECT_TRUE(made->getInitialOrderAscending());
}

TEST_F(Search, WithoutANameInTheTableTheInitialOrderIsFoundByThatOfTheResult) {
  auto const made = sorted("tableName=\"u\" columnName=\"apelido\"");
  ASSERT_NE(made->getInitialOrderColumn(), nullptr);
  EXPECT_EQ(made->getInitialOrderColumn()->getColumnName(), "apelido");
}

// The names of the result are searched, whichever name is asked for.
TEST_F(Search, AnInitialOrderThatIsCalledOtherwiseInItsTableIsNotFound) {
  EXPECT_EQ(sorted("tableName=\"u\" columnName=\"apelido\" columnNameOrigin=\"alcunha\"")
                ->getInitialOrderColumn(),
            nullptr);
  EXPECT_EQ(sorted("columnName=\"nome\"")->getInitialOrderColumn(), nullptr);
}

TEST_F(Search, TheInitialOrderIsAskedOfTheSourceInForce) {
  auto const made = sorted("tableName=\"t\" columnName=\"nome\"");
  EXPECT_NE(made->getInitialOrderColumn(), nullptr);
  made->setDataSource(host_.get<moxSQLDataSource>("moxSQLDataSource"));
  EXPECT_EQ(made->getInitialOrderColumn(), nullptr);
}

TEST_F(Search, AGivenInitialOrderIsKeptAndItsNamesAreSaved) {
  auto const source = query();
  auto const made = newSearch();
  auto const column = source->columnAt(2);
  made->setInitialOrderColumn(column, true);
  EXPECT_EQ(made->getInitialOrderColumn(), column);
  EXPECT_TRUE(made->getInitialOrderAscending());
  EXPECT_NE(textOf(*made).find("<InitialOrdering columnName=\"apelido\" "
                               "tableNameOrigin=\"usuarios\" columnNameOrigin=\"alcunha\" "
                               "tableName=\"u\" direction=\"asc\"/>"),
            std::string::npos);
}

TEST_F(Search, AnEmptyInitialOrderEndsTheOneBefore) {
  auto const made = sorted("tableName=\"t\" columnName=\"nome\"");
  made->setInitialOrderColumn({}, true);
  EXPECT_EQ(made->getInitialOrderColumn(), nullptr);
  EXPECT_EQ(textOf(*made).find("InitialOrdering"), std::string::npos);
}
