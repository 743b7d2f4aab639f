#include "zyn/datasources/filter_data_source.h"

#include <stdexcept>

#include "mox/core/registry.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/data_source_label.h"
#include "zyn/datasources/filter_data_source_spec.h"

namespace {

using Strings = std::vector<std::string>;
using Types = moxDataMatrixTypes::Types;

std::string const kStudents =
    "<moxSQLDataSource name=\"Alunos\"><Command>select 1</Command><Columns>"
    "<Column tableName=\"a\" columnName=\"id\" Type=\"2\"/>"
    "<Column tableName=\"a\" columnName=\"nome\" Type=\"1\"/></Columns></moxSQLDataSource>";

/// A filter source of that name on `source`, with a column "media" of doubles.
std::string filterElement(std::string const& name, std::string const& source,
                          std::string const& tipo = "0") {
  return "<moxFilterDataSource name=\"" + name + "\" dataSource=\"" + source +
         "\"><selectColumns tipo=\"" + tipo +
         "\"><column columnName=\"media\" Type=\"4\"/></selectColumns></moxFilterDataSource>";
}

moxDataSourceColumnType const kId{"id", Types::Int};
moxDataSourceColumnType const kNome{"nome", Types::Text};
moxDataSourceColumnType const kMedia{"media", Types::Double};

class FilterDataSourceTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxFilterDataSource> filterOn(std::string const& source,
                                                std::string const& tipo = "0") {
    return read<moxFilterDataSource>(filterElement("f", source, tipo));
  }
};

std::string const kInvalid = "Fonte de dados externa inválida";

}  // namespace

TEST_F(FilterDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const made = host_.get<moxFilterDataSource>("moxFilterDataSource");
  EXPECT_EQ(made->name(), "moxFilterDataSource");
  EXPECT_EQ(made->getTipo(), 3);
  made->setName("Do curso");
  EXPECT_EQ(made->description(), "Do curso");
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
  made->setParentLibraryName("ESCOLA");
  EXPECT_EQ(made->getParentLibName(), "ESCOLA");
}

TEST_F(FilterDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions =
      moxInternalPluginContainer<FilterDataSource>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Filtro");
}

TEST_F(FilterDataSourceTest, BeginsWithoutTextsConditionsAndColumns) {
  auto const made = host_.get<moxFilterDataSource>("moxFilterDataSource");
  for (auto const& text :
       {made->getName(), made->getDataSourceName(), made->getSQLJoin(), made->getSQLWhere(),
        made->getSQLGroup(), made->getSQLOrder(), made->getSelectPlain()}) {
    EXPECT_EQ(text, "");
  }
  EXPECT_TRUE(made->getFiltersSpec().empty());
  EXPECT_TRUE(made->columns().empty());
  EXPECT_EQ(made->getTipoRetornoSelect(), moxFilterDataSource::kAdiciona);
}

TEST_F(FilterDataSourceTest, KeepsEachTextApart) {
  auto const made = host_.get<moxFilterDataSource>("moxFilterDataSource");
  made->setSQLJoin("join t on t.id=a.id");
  made->setSQLWhere("t.x=1");
  made->setSQLGroup("t.g");
  made->setSQLOrder("t.o desc");
  EXPECT_EQ(made->getSQLJoin(), "join t on t.id=a.id");
  EXPECT_EQ(made->getSQLWhere(), "t.x=1");
  EXPECT_EQ(made->getSQLGroup(), "t.g");
  EXPECT_EQ(made->getSQLOrder(), "t.o desc");
}

TEST_F(FilterDataSourceTest, OffersNoFiltersAndNoOptions) {
  auto const made = filterOn("Alunos");
  EXPECT_TRUE(made->getFilters().empty());
  EXPECT_TRUE(made->options().empty());
}

TEST_F(FilterDataSourceTest, EditorsCreateFindAndRemoveItsOwnColumns) {
  auto const made = host_.get<moxFilterDataSource>("moxFilterDataSource");
  auto const column = made->createColumn(nullptr);
  column->setTableName("t");
  column->setColumnName("c");
  EXPECT_EQ(column->getWidth(), 100);
  EXPECT_EQ(made->findColumn("t", "c"), column);
  EXPECT_EQ(std::as_const(*made).findColumn("t", "c"), column);
  EXPECT_EQ(made->findColumn("c", "t"), nullptr);
  ASSERT_EQ(std::as_const(*made).columns().size(), 1u);
  EXPECT_EQ(std::as_const(*made).columns()[0], column);
  made->removeColumn(host_.get<moxFilterDataSource>("moxFilterDataSource")->createColumn(nullptr));
  EXPECT_EQ(made->columns().size(), 1u);
  made->removeColumn(column);
  EXPECT_TRUE(made->columns().empty());
}

TEST_F(FilterDataSourceTest, TheSelectListIsOfItsOwnColumns) {
  auto const made = host_.get<moxFilterDataSource>("moxFilterDataSource");
  made->createColumn(nullptr)->setSQLColumn({"avg(n.nota)", "media"});
  made->createColumn(nullptr)->setSQLColumn({"n.id", ""});
  EXPECT_EQ(made->getSelectPlain(), "avg(n.nota) as media,n.id");
}

TEST_F(FilterDataSourceTest, ConditionsAreReplacedAndSharedAndNoneIsEmpty) {
  auto const made = host_.get<moxFilterDataSource>("moxFilterDataSource");
  auto const spec = std::make_shared<FilterDataSourceSpec>();
  made->setFiltersSpec({spec});
  ASSERT_EQ(made->getFiltersSpec().size(), 1u);
  EXPECT_EQ(made->getFiltersSpec()[0], spec);
  EXPECT_EQ(std::as_const(*made).getFiltersSpec()[0], spec);
  EXPECT_THROW(made->setFiltersSpec({nullptr}), std::invalid_argument);
  EXPECT_EQ(made->getFiltersSpec().size(), 1u);
  made->setFiltersSpec({});
  EXPECT_TRUE(made->getFiltersSpec().empty());
}

TEST_F(FilterDataSourceTest, ResetForgetsTheSourceAndNothingElse) {
  enter(kStudents);
  auto const made = filterOn("Alunos");
  made->reset();
  EXPECT_EQ(made->getDataSourceName(), "");
  EXPECT_EQ(made->getName(), "f");
  EXPECT_EQ(made->getColumns(), Columns{kMedia});
  EXPECT_TRUE(made->getRelatedDataSources(false).empty());
}

TEST_F(FilterDataSourceTest, GetColumnsGivesThoseOfTheSourceAheadOfItsOwn) {
  enter(kStudents);
  EXPECT_EQ(filterOn("Alunos")->getColumns(), (Columns{kId, kNome, kMedia}));
}

TEST_F(FilterDataSourceTest, GetColumnsFollowsAChainOfFilterSources) {
  enter(kStudents + filterElement("g", "Alunos"));
  EXPECT_EQ(filterOn("g")->getColumns(), (Columns{kId, kNome, kMedia, kMedia}));
}

TEST_F(FilterDataSourceTest, AMissingSourceIsNoErrorAndContributesNothing) {
  enter("<moxFormatterZYNItem description=\"Moeda\"/>");
  for (auto const* const source : {"", "Nenhuma", "Moeda"}) {
    auto const made = filterOn(source);
    EXPECT_EQ(made->getColumns(), Columns{kMedia}) << source;
    EXPECT_TRUE(made->getRelatedDataSources(false).empty()) << source;
    EXPECT_TRUE(made->getRelatedDataSources(true).empty()) << source;
  }
}

TEST_F(FilterDataSourceTest, ColumnsInThePlaceOfTheSourcesAreKnownWithoutLookingForTheSource) {
  enter(filterElement("anel", "anel"));
  EXPECT_EQ(filterOn("anel", "1")->getColumns(), Columns{kMedia});
  EXPECT_EQ(filterOn("anel", "1")->getRelatedColumns({{"anel", entered("anel")}}), Columns{kMedia});
  EXPECT_EQ(failureOf([&] { (void)filterOn("anel")->getColumns(); }), kInvalid);
}

TEST_F(FilterDataSourceTest, ASourceIsAskedForOnEveryCall) {
  auto const made = filterOn("Alunos");
  EXPECT_EQ(made->getColumns(), Columns{kMedia});
  enter(kStudents);
  EXPECT_EQ(made->getColumns(), (Columns{kId, kNome, kMedia}));
  cache()->clear();
  EXPECT_EQ(made->getColumns(), Columns{kMedia});
}

TEST_F(FilterDataSourceTest, ASourceOfOneSessionIsNotSeenByOthersThatShareTheDefinition) {
  enter(kStudents);
  auto const shared = filterOn("Alunos");
  host_.logIn({.id = 1});
  host_.get<moxZYNSessionCache>("moxZYNSessionCache")
      ->appendCollection(collection("<moxSQLDataSource name=\"Alunos\"><Command>s</Command>"
                                    "</moxSQLDataSource>"));
  EXPECT_EQ(shared->getColumns(), Columns{kMedia});
  host_.logOut();
  EXPECT_EQ(shared->getColumns(), (Columns{kId, kNome, kMedia}));
}

TEST_F(FilterDataSourceTest, RelatedColumnsAreThoseOfTheFirstSourceOfTheNameHereOrThere) {
  auto const students = read(kStudents);
  auto const other = read(
      "<moxSQLDataSource name=\"Outra\"><Columns>"
      "<Column columnName=\"x\" Type=\"5\"/></Columns><Command/>"
      "</moxSQLDataSource>");
  auto const made = filterOn("Alunos");
  Columns const ofStudents{kId, kNome, kMedia};
  Columns const ofOther{{"x", Types::Date}, kMedia};
  EXPECT_EQ(made->getRelatedColumns({{"Outra", other}, {"a", students}}), ofStudents);
  EXPECT_EQ(made->getRelatedColumns({{"Alunos", other}, {"a", students}}), ofOther);
  EXPECT_EQ(made->getRelatedColumns({{"a", students}, {"Alunos", other}}), ofStudents);
  EXPECT_EQ(made->getRelatedColumns({{"a", other}}), Columns{kMedia});
  EXPECT_EQ(made->getRelatedColumns({{"Alunos", nullptr}}), Columns{kMedia});
  EXPECT_EQ(made->getRelatedColumns({}), Columns{kMedia});
}

TEST_F(FilterDataSourceTest, RelatedColumnsDoNotLookOutsideTheContext) {
  enter(kStudents);
  EXPECT_EQ(filterOn("Alunos")->getRelatedColumns({}), Columns{kMedia});
}

TEST_F(FilterDataSourceTest, RelatedSourcesAreTheSourceAndWithDepthThoseBelowAheadOfIt) {
  enter(kStudents + filterElement("g", "Alunos"));
  auto const made = filterOn("g");
  EXPECT_EQ(namesOf(made->getRelatedDataSources(false)), Strings{"g"});
  EXPECT_EQ(namesOf(made->getRelatedDataSources(true)), (Strings{"Alunos", "g"}));
}

TEST_F(FilterDataSourceTest, AFilterSourceThatNamesItselfIsRefused) {
  enter(filterElement("f", "f"));
  auto const ring = entered("f");
  EXPECT_EQ(failureOf([&] { (void)ring->getColumns(); }), kInvalid);
  EXPECT_EQ(failureOf([&] { (void)ring->getRelatedColumns({{"f", ring}}); }), kInvalid);
  EXPECT_EQ(failureOf([&] { (void)ring->getRelatedDataSources(true); }), kInvalid);
  EXPECT_EQ(namesOf(ring->getRelatedDataSources(false)), Strings{"f"});
}

TEST_F(FilterDataSourceTest, FilterSourcesInARingAreRefusedAndOthersStillWork) {
  enter(kStudents + filterElement("f1", "f2") + filterElement("f2", "f1"));
  auto const one = entered("f1");
  std::vector<moxNamedDataSource> const both{{"f1", one}, {"f2", entered("f2")}};
  EXPECT_EQ(failureOf([&] { (void)one->getColumns(); }), kInvalid);
  EXPECT_EQ(failureOf([&] { (void)one->getRelatedColumns(both); }), kInvalid);
  EXPECT_EQ(failureOf([&] { (void)one->getRelatedDataSources(true); }), kInvalid);
  EXPECT_EQ(filterOn("Alunos")->getColumns(), (Columns{kId, kNome, kMedia}));
}

TEST_F(FilterDataSourceTest, AChainOfSixtyFourFilterSourcesIsFollowed) {
  std::string chain = kStudents + filterElement("f1", "Alunos");
  for (int i = 2; i <= 65; ++i) {
    chain += filterElement("f" + std::to_string(i), "f" + std::to_string(i - 1));
  }
  enter(chain);
  EXPECT_EQ(entered("f64")->getColumns().size(), 66u);
  EXPECT_EQ(entered("f64")->getRelatedDataSources(true).size(), 64u);
  EXPECT_EQ(failureOf([&] { (void)entered("f65")->getColumns(); }), kInvalid);
}

TEST_F(FilterDataSourceTest, AnExecutionNeedsADefinitionHeldBySharedPointers) {
  FilterDataSource onTheStack;
  EXPECT_THROW((void)onTheStack.createExecution(), std::bad_weak_ptr);
}

TEST_F(FilterDataSourceTest, AnExecutionKeepsTheDefinition) {
  auto made = filterOn("Alunos");
  std::weak_ptr<moxFilterDataSource> const watched = made;
  auto const execution = made->createExecution();
  made.reset();
  EXPECT_FALSE(watched.expired());
}
