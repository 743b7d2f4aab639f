#include "zyn/datasources/dado_data_source.h"

#include "mox/core/session.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "unit/datasources/group_fixture.h"

namespace mox_test {

namespace {

using Relation = moxDadoDataSource::Relation;

std::string const kUndefined = "Fonte de dados externa não definida";
std::string const kInvalid = "Fonte de dados externa inválida";

class DadoDataSourceTest : public GroupSourceTest {
 protected:
  std::shared_ptr<moxDadoDataSource> newMember() {
    return host_.get<moxDadoDataSource>("moxDadoDataSource");
  }

  std::shared_ptr<moxDadoDataSource> readMember(std::string const& text) {
    auto const held = document(text);
    auto made = newMember();
    EXPECT_TRUE(made->load(held->root()));
    return made;
  }

  std::string textOf(moxDadoDataSource const& written) {
    auto document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->create("moxDadoDataSource");
    EXPECT_TRUE(written.save(document->root()));
    return document->writeText(0, 0);
  }

  static std::shared_ptr<moxDataSource const> inForce(moxDadoDataSource const& member) {
    return member.getDataSource();
  }
};

/// What stands in attributes and children, in the order of writing.
std::string const kExternal =
    "<moxDadoDataSource name=\"Boletim\" unificarTelaFiltro=\"1\" dataSource=\"Alunos\">"
    "<sourcesExternalRelation><relation external=\"Notas\" internal=\"n\"/>"
    "<relation external=\"Turmas\" internal=\"t\"/></sourcesExternalRelation>"
    "<Relation columnNameOrigin=\"co\" tableNameOrigin=\"to\" columnName=\"c\" tableName=\"t\">"
    "<DataSourceOrigin dataSource=\"n\" columnName=\"aluno\"/></Relation></moxDadoDataSource>";

std::string const kHeld =
    "<moxDadoDataSource name=\"Boletim\" unificarTelaFiltro=\"0\">"
    "<moxFilterDataSource name=\"f\" dataSource=\"Alunos\"><Filters/><selectColumns tipo=\"0\"/>"
    "</moxFilterDataSource>"
    "<Relation columnNameOrigin=\"\" tableNameOrigin=\"\" columnName=\"c\" tableName=\"\">"
    "<DataSourceOrigin dataSource=\"\" columnName=\"\"/></Relation></moxDadoDataSource>";

}  // namespace

TEST_F(DadoDataSourceTest, BeginsWithoutNameSourceAndLinks) {
  auto const made = newMember();
  EXPECT_EQ(made->name(), "moxDadoDataSource");
  EXPECT_EQ(made->getName(), "");
  EXPECT_EQ(made->dataSourceExterno(), "");
  EXPECT_EQ(made->getDataSource(), nullptr);
  EXPECT_EQ(inForce(*made), nullptr);
  EXPECT_TRUE(made->getFilters().empty());
  EXPECT_TRUE(made->getDataSourceExternalRelation().empty());
  EXPECT_FALSE(made->getUnificarTelaFiltro());
  EXPECT_EQ(made->getDataSourceRelation().dataSource, "");
}

TEST_F(DadoDataSourceTest, AHeldSourceIsTheOneInForce) {
  auto const made = newMember();
  auto const source = read(kStudents);
  made->setDataSource(source);
  EXPECT_EQ(made->getDataSource(), source);
  EXPECT_EQ(inForce(*made), source);
  EXPECT_EQ(columnsOf(made->getFilters()), Strings{"curso"});
}

TEST_F(DadoDataSourceTest, AnExternalSourceIsLookedUpAndNotHeld) {
  enter(kStudents);
  auto const made = newMember();
  made->setDataSourceExterno("Alunos");
  EXPECT_EQ(made->dataSourceExterno(), "Alunos");
  EXPECT_EQ(inForce(*made), entered("Alunos"));
  EXPECT_EQ(made->getDataSource(), nullptr);
  EXPECT_EQ(columnsOf(made->getFilters()), Strings{"curso"});
}

TEST_F(DadoDataSourceTest, AnExternalSourceIsLookedUpAgainOnEveryCall) {
  enter(kStudents);
  auto const made = newMember();
  made->setDataSourceExterno("Alunos");
  auto const first = inForce(*made);
  cache()->clear();
  enter(kStudents);
  EXPECT_NE(inForce(*made), first);
  EXPECT_EQ(inForce(*made), entered("Alunos"));
}

TEST_F(DadoDataSourceTest, ASessionsOwnSourceIsNotServedToOthers) {
  enter(kStudents);
  auto const made = newMember();
  made->setDataSourceExterno("Alunos");
  host_.logIn({.id = 7, .defaultUnit = 1});
  auto const own = host_.get<moxZYNSessionCache>("moxZYNSessionCache");
  own->appendCollection(collection(kStudents));
  auto const ofSession = inForce(*made);
  host_.logOut();
  EXPECT_NE(inForce(*made), ofSession);
  EXPECT_EQ(inForce(*made), entered("Alunos"));
}

TEST_F(DadoDataSourceTest, AnExternalSourceThatIsGoneFailsAndNamesIt) {
  enter(kStudents);
  auto const made = newMember();
  made->setName("m");
  made->setDataSourceExterno("Alunos");
  cache()->clear();
  EXPECT_EQ(failureOf([&] { inForce(*made); }), kInvalid);
  EXPECT_EQ(failureOf([&] { made->getFilters(); }), kInvalid);
  try {
    inForce(*made);
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorDetails(),
              Strings{"the member \"m\" names \"Alunos\", which is no data source"});
  }
}

TEST_F(DadoDataSourceTest, AnEmptyExternalNameFailsAndChangesNothing) {
  auto const made = readMember(kHeld);
  EXPECT_EQ(failureOf([&] { made->setDataSourceExterno(""); }), kUndefined);
  EXPECT_EQ(textOf(*made), kHeld);
}

TEST_F(DadoDataSourceTest, AnUnknownExternalNameFailsAndChangesNothing) {
  auto const made = readMember(kHeld);
  EXPECT_EQ(failureOf([&] { made->setDataSourceExterno("Alunos"); }), kInvalid);
  EXPECT_EQ(textOf(*made), kHeld);
}

TEST_F(DadoDataSourceTest, AnItemThatIsNoSourceIsNoExternalSource) {
  enter("<moxZYNPack name=\"Pacote\"/>");
  ASSERT_NE(cache()->getCollection("Pacote"), nullptr);
  EXPECT_EQ(failureOf([&] { newMember()->setDataSourceExterno("Pacote"); }), kInvalid);
}

TEST_F(DadoDataSourceTest, HoldingASourceEndsBeingExternalAndTheOtherWayRound) {
  enter(kStudents);
  auto const made = newMember();
  made->setDataSourceExterno("Alunos");
  auto const held = read(kMarks);
  made->setDataSource(held);
  EXPECT_EQ(made->dataSourceExterno(), "");
  EXPECT_EQ(inForce(*made), held);
  made->setDataSourceExterno("Alunos");
  EXPECT_EQ(made->getDataSource(), nullptr);
  EXPECT_EQ(inForce(*made), entered("Alunos"));
}

TEST_F(DadoDataSourceTest, ASourceThatOthersOwnGoesAheadOfTheExternalOne) {
  enter(kStudents);
  auto const made = newMember();
  made->setDataSourceExterno("Alunos");
  std::shared_ptr<moxDataSource const> const lent = read(kMarks);
  made->setDataSource(lent);
  EXPECT_EQ(inForce(*made), lent);
  EXPECT_EQ(made->getDataSource(), nullptr);
  EXPECT_EQ(made->dataSourceExterno(), "Alunos");
}

TEST_F(DadoDataSourceTest, KeepsItsLinks) {
  auto const made = newMember();
  made->setDataSourceRelation({"a", "b", "c", "d", "e", "f"});
  auto const kept = made->getDataSourceRelation();
  EXPECT_EQ((Strings{kept.dataSource, kept.columnName, kept.tableNameOrigin, kept.columnNameOrigin,
                     kept.tableName, kept.column}),
            (Strings{"a", "b", "c", "d", "e", "f"}));
  made->setDataSourceExternalRelation({{"x", "y"}});
  EXPECT_EQ(made->getDataSourceExternalRelation(), (Pairs{{"x", "y"}}));
  made->setUnificarTelaFiltro(true);
  EXPECT_TRUE(made->getUnificarTelaFiltro());
}

// The element.

TEST_F(DadoDataSourceTest, AnEmptyNodeGivesFalseAndChangesNothing) {
  auto const made = readMember(kHeld);
  EXPECT_FALSE(made->load({}));
  EXPECT_FALSE(made->save({}));
  EXPECT_EQ(textOf(*made), kHeld);
}

TEST_F(DadoDataSourceTest, AnExternalMemberIsReadAndWrittenBack) {
  auto const made = readMember(kExternal);
  EXPECT_EQ(made->getName(), "Boletim");
  EXPECT_EQ(made->dataSourceExterno(), "Alunos");
  EXPECT_TRUE(made->getUnificarTelaFiltro());
  EXPECT_EQ(made->getDataSourceExternalRelation(), (Pairs{{"Notas", "n"}, {"Turmas", "t"}}));
  auto const link = made->getDataSourceRelation();
  EXPECT_EQ((Strings{link.dataSource, link.columnName, link.tableNameOrigin, link.columnNameOrigin,
                     link.tableName, link.column}),
            (Strings{"n", "aluno", "to", "co", "t", "c"}));
  EXPECT_EQ(textOf(*made), kExternal);
}

TEST_F(DadoDataSourceTest, AHeldSourceIsReadAndWrittenBack) {
  auto const made = readMember(kHeld);
  ASSERT_NE(made->getDataSource(), nullptr);
  EXPECT_EQ(made->getDataSource()->name(), "moxFilterDataSource");
  EXPECT_EQ(made->getDataSourceRelation().column, "c");
  EXPECT_EQ(textOf(*made), kHeld);
}

TEST_F(DadoDataSourceTest, TheExternalSourceMayBeLoadedLater) {
  auto const made = readMember(externalMember("m", "Alunos"));
  enter(kStudents);
  EXPECT_EQ(inForce(*made), entered("Alunos"));
}

TEST_F(DadoDataSourceTest, WithoutANameAMemberBearsItsSources) {
  EXPECT_EQ(readMember(member("", kStudents))->getName(), "Alunos");
  EXPECT_EQ(readMember(externalMember("", "Notas"))->getName(), "Notas");
  EXPECT_EQ(readMember(member("", ""))->getName(), "");
}

TEST_F(DadoDataSourceTest, ALinkAheadOfTheSourceIsNotTakenForIt) {
  auto const made = readMember(
      member("m", relation("a.id", "n", "aluno") + "<sourcesExternalRelation/>" + kStudents));
  ASSERT_NE(made->getDataSource(), nullptr);
  EXPECT_EQ(made->getDataSource()->getName(), "Alunos");
}

TEST_F(DadoDataSourceTest, AMemberWithoutASourceKeepsItsLink) {
  auto const made = readMember(member("m", relation("a.id", "n", "aluno")));
  EXPECT_EQ(made->getDataSource(), nullptr);
  EXPECT_EQ(made->getDataSourceRelation().dataSource, "n");
  EXPECT_EQ(textOf(*made), "<moxDadoDataSource name=\"m\" unificarTelaFiltro=\"0\">" +
                               relation("a.id", "n", "aluno") + "</moxDadoDataSource>");
}

TEST_F(DadoDataSourceTest, ALinkWithoutMemberAndOwnColumnIsNotWritten) {
  auto const made = newMember();
  made->setDataSourceRelation({"", "c", "to", "co", "t", ""});
  EXPECT_EQ(textOf(*made), "<moxDadoDataSource name=\"\" unificarTelaFiltro=\"0\"/>");
  made->setDataSourceRelation({"n", "", "", "", "", ""});
  EXPECT_NE(textOf(*made).find("<Relation "), std::string::npos);
  made->setDataSourceRelation({"", "", "", "", "", "id"});
  EXPECT_NE(textOf(*made).find("<Relation "), std::string::npos);
}

TEST_F(DadoDataSourceTest, InputsOfASourceElsewhereThatIsNotNamedFail) {
  auto const held = document(
      "<moxDadoDataSource name=\"m\" dataSource=\"\">"
      "<sourcesExternalRelation/></moxDadoDataSource>");
  EXPECT_EQ(failureOf([&] { newMember()->load(held->root()); }), kUndefined);
}

TEST_F(DadoDataSourceTest, AnElementThatIsNoSourceFailsAndNamesIt) {
  auto const held = document(member("m", "<moxDataMatrix/>"));
  EXPECT_EQ(failureOf([&] { newMember()->load(held->root()); }),
            "Fonte de dados inválida: moxDataMatrix");
}

TEST_F(DadoDataSourceTest, ASourceOfAnUnknownKindPassesAsNotFound) {
  auto const held = document(member("m", "<moxDesconhecida/>"));
  EXPECT_THROW(newMember()->load(held->root()), moxPluginNotFound);
}

TEST_F(DadoDataSourceTest, ReadingReplacesWhatWasThere) {
  auto const made = readMember(kExternal);
  made->load(document(kHeld)->root());
  EXPECT_EQ(textOf(*made), kHeld);
}

TEST_F(DadoDataSourceTest, ASourceLentToAnExternalMemberIsWrittenByItsName) {
  auto const made = readMember(kExternal);
  std::shared_ptr<moxDataSource const> const lent = read(kMarks);
  made->setDataSource(lent);
  EXPECT_EQ(textOf(*made), kExternal);
}

}  // namespace mox_test
