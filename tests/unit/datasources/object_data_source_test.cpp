#include "zyn/datasources/object_data_source.h"

#include "mox/core/registry.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/data_source_label.h"

namespace {

using Strings = std::vector<std::string>;

std::string const kBlock =
    "<moxObjectDataSource name=\"Bloqueia\">"
    "<Sql>update alunos set bloqueado = {{b}} where id = {{id}} and ativo = 1</Sql><Binds>"
    "<moxIntegralUniqueFilter tableName=\"\" columnName=\"b\" require=\"1\" "
    "visualRepresentation=\"\" description=\"Bloqueado\">"
    "<position X=\"0\" Y=\"0\" spanX=\"0\" spanY=\"0\"/></moxIntegralUniqueFilter>"
    "<moxTextUniqueFilter tableName=\"a\" columnName=\"id\" require=\"0\" removePunctuation=\"1\" "
    "visualRepresentation=\"\" description=\"Aluno\">"
    "<position X=\"1\" Y=\"2\" spanX=\"3\" spanY=\"4\"/></moxTextUniqueFilter>"
    "</Binds></moxObjectDataSource>";

class ObjectDataSourceTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxObjectDataSource> made() {
    return host_.get<moxObjectDataSource>("moxObjectDataSource");
  }

  template <class Filters>
  static Strings descriptionsOf(Filters const& filters) {
    Strings descriptions;
    for (auto const& filter : filters) {
      descriptions.push_back(filter->getDescription());
    }
    return descriptions;
  }
};

}  // namespace

TEST_F(ObjectDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const source = made();
  EXPECT_EQ(source->name(), "moxObjectDataSource");
  EXPECT_EQ(source->getTipo(), 3);
  source->setName("Bloqueia");
  EXPECT_EQ(source->description(), "Bloqueia");
  EXPECT_EQ(source->getZynItemRelated(), nullptr);
  source->setParentLibraryName("ESCOLA");
  EXPECT_EQ(source->getParentLibName(), "ESCOLA");
}

TEST_F(ObjectDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions =
      moxInternalPluginContainer<ObjectDataSource>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Execução SQL");
}

TEST_F(ObjectDataSourceTest, HasNoColumnsNoOptionsAndReadsNoSources) {
  auto const source = read<moxObjectDataSource>(kBlock);
  EXPECT_TRUE(source->getColumns().empty());
  EXPECT_TRUE(source->options().empty());
  EXPECT_TRUE(source->getRelatedColumns({{"x", source}}).empty());
  EXPECT_TRUE(source->getRelatedDataSources(false).empty());
  EXPECT_TRUE(source->getRelatedDataSources(true).empty());
}

TEST_F(ObjectDataSourceTest, IsWrittenAsItWasRead) {
  auto const source = read<moxObjectDataSource>(kBlock);
  EXPECT_EQ(source->getName(), "Bloqueia");
  EXPECT_EQ(source->getSQL(),
            "update alunos set bloqueado = {{b}} where id = {{id}} and ativo = 1");
  EXPECT_EQ(textOf(*source), kBlock);
}

TEST_F(ObjectDataSourceTest, AnEmptyDefinitionHasBothChildren) {
  EXPECT_EQ(textOf(*made()), "<moxObjectDataSource name=\"\"><Sql/><Binds/></moxObjectDataSource>");
  auto const source = read<moxObjectDataSource>("<moxObjectDataSource/>");
  EXPECT_EQ(source->getSQL(), "");
  EXPECT_TRUE(source->getFilters().empty());
}

TEST_F(ObjectDataSourceTest, AnEmptyNodeIsRefusedAndChangesNothing) {
  auto const source = read<moxObjectDataSource>(kBlock);
  EXPECT_FALSE(source->load(nullptr));
  EXPECT_FALSE(source->save(nullptr));
  EXPECT_EQ(textOf(*source), kBlock);
}

TEST_F(ObjectDataSourceTest, OffersWhatIsBoundInItsOrder) {
  auto const source = read<moxObjectDataSource>(kBlock);
  EXPECT_EQ(descriptionsOf(source->getFilters()), (Strings{"Bloqueado", "Aluno"}));
  EXPECT_EQ(descriptionsOf(source->createExecution()->getFilters()),
            (Strings{"Bloqueado", "Aluno"}));
}

TEST_F(ObjectDataSourceTest, EditorsFindFiltersByTheirDescriptionAndChangeTheirOrder) {
  auto const source = read<moxObjectDataSource>(kBlock);
  auto const student = source->filters().findByName("Aluno");
  ASSERT_NE(student, nullptr);
  EXPECT_EQ(student->getColumn(), "id");
  source->filters().move(student, source->filters().findByName("Bloqueado"));
  EXPECT_EQ(descriptionsOf(source->getFilters()), (Strings{"Aluno", "Bloqueado"}));
  EXPECT_EQ(source->filters().findByName("aluno"), nullptr);
}

TEST_F(ObjectDataSourceTest, ABindThatIsNoFilterFailsTheLoad) {
  auto const held =
      document("<moxObjectDataSource name=\"x\"><Binds><moxSearch/></Binds></moxObjectDataSource>");
  EXPECT_EQ(failureOf([&] { made()->load(held->root()); }), "Filtro inválido: moxSearch");
}

TEST_F(ObjectDataSourceTest, ABindOfAnUnknownClassKeepsTheWholeDefinitionOut) {
  auto const loaded = collection(
      "<moxObjectDataSource name=\"x\"><Binds><moxNada/></Binds></moxObjectDataSource>" + kBlock);
  EXPECT_EQ(loaded->findItem("x"), nullptr);
  EXPECT_NE(loaded->findItem("Bloqueia"), nullptr);
  auto const skipped = std::dynamic_pointer_cast<moxZYNLoadReport>(loaded)->skippedElements();
  ASSERT_EQ(skipped.size(), 1u);
  EXPECT_EQ(skipped[0].elementName, "moxObjectDataSource");
}

TEST_F(ObjectDataSourceTest, ADefinitionThatNobodyHoldsMakesNoExecution) {
  ObjectDataSource source;
  EXPECT_THROW((void)source.createExecution(), std::bad_weak_ptr);
}
