#include "zyn/datasources/expression_data_source.h"

#include "mox/core/module.h"
#include "mox/core/registry.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "unit/datasources/definition_fixture.h"
#include "zyn/datasources/data_source_label.h"

namespace {

using Strings = std::vector<std::string>;
using Types = moxDataMatrixTypes::Types;

std::string const kNotas =
    "<moxSQLDataSource name=\"Notas\"><Command>select 1</Command><Columns>"
    "<Column tableName=\"n\" columnName=\"id\" Type=\"2\"/></Columns></moxSQLDataSource>";

std::string const kMedias =
    "<moxExpressionDataSource name=\"Medias\" source=\"Notas\" convertZeroToNull=\"1\">"
    "<expressions><moxColumnExpression name=\"soma\" type=\"0\">a(0)+b(0)</moxColumnExpression>"
    "<moxColumnExpression name=\"media\" type=\"1\" decimalPrecision=\"2\" decimalOperation=\"1\">"
    "soma(0)/2</moxColumnExpression></expressions></moxExpressionDataSource>";

/// Refuses every element.
class RefusingExpression final : public moxColumnExpression {
 public:
  std::string name() const override { return "recusa"; }
  bool load(std::shared_ptr<moxXMLNode> const&) override { return false; }
  bool save(std::shared_ptr<moxXMLNode> const&) const override { return false; }
  std::string columnName() const override { return "recusada"; }
  void setColumnName(std::string const&) override {}
  std::string getExpression() const override { return {}; }
  void setExpression(std::string const&) override {}
  Tipo tipo() const override { return kInteiro; }
  void setTipo(Tipo) override {}
  void setDecimalPrecision(int, Op) override {}
  std::pair<int, Op> getDecimalPrecision() const override { return {-1, kArredonda}; }
};

int registerRefusal(moxPluginRegistry* registry) {
  registry->setLibraryName("TESTE");
  registry->registerClass(
      std::make_unique<moxInternalPluginContainer<RefusingExpression>>("recusa"));
  return 1;
}

void enterPoint(VELMORApplication* application, moxSessionService* session) {
  moxPlugIn_EntryPoint(application, session);
}

class ExpressionDataSourceTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxExpressionDataSource> made() {
    return host_.get<moxExpressionDataSource>("moxExpressionDataSource");
  }

  template <class Expressions>
  static Strings columnsOf(Expressions const& expressions) {
    Strings names;
    for (auto const& expression : expressions.getItems()) {
      names.push_back(expression->columnName());
    }
    return names;
  }
};

moxDataSourceColumnType const kSoma{"soma", Types::Double};
moxDataSourceColumnType const kMedia{"media", Types::Double};

}  // namespace

TEST_F(ExpressionDataSourceTest, KnowsItsNameAndKindAndIsFoundByItsName) {
  auto const source = made();
  EXPECT_EQ(source->name(), "moxExpressionDataSource");
  EXPECT_EQ(source->getTipo(), 3);
  source->setName("Medias");
  EXPECT_EQ(source->description(), "Medias");
  EXPECT_FALSE(source->getConvertZeroToNull());
}

TEST_F(ExpressionDataSourceTest, UsersCallTheKindByItsLabel) {
  auto const* const permissions =
      moxInternalPluginContainer<ExpressionDataSource>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Expressão");
}

TEST_F(ExpressionDataSourceTest, IsWrittenAsItWasRead) {
  auto const source = read<moxExpressionDataSource>(kMedias);
  EXPECT_EQ(source->getName(), "Medias");
  EXPECT_EQ(source->getSource(), "Notas");
  EXPECT_TRUE(source->getConvertZeroToNull());
  EXPECT_EQ(columnsOf(source->expressions()), (Strings{"soma", "media"}));
  EXPECT_EQ(textOf(*source), kMedias);
}

TEST_F(ExpressionDataSourceTest, AnEmptyDefinitionHasAListOfNoColumns) {
  EXPECT_EQ(textOf(*made()),
            "<moxExpressionDataSource name=\"\" source=\"\" convertZeroToNull=\"0\">"
            "<expressions/></moxExpressionDataSource>");
  EXPECT_TRUE(
      read<moxExpressionDataSource>("<moxExpressionDataSource/>")->expressions().get().empty());
}

TEST_F(ExpressionDataSourceTest, OnlyAOneConvertsZeros) {
  for (auto const* const text : {"0", "yes", "true", ""}) {
    auto const source = read<moxExpressionDataSource>(
        "<moxExpressionDataSource convertZeroToNull=\"" + std::string(text) + "\"/>");
    EXPECT_FALSE(source->getConvertZeroToNull()) << text;
  }
}

TEST_F(ExpressionDataSourceTest, AnEmptyNodeIsRefusedAndChangesNothing) {
  auto const source = read<moxExpressionDataSource>(kMedias);
  EXPECT_FALSE(source->load(nullptr));
  EXPECT_FALSE(source->save(nullptr));
  EXPECT_EQ(textOf(*source), kMedias);
}

TEST_F(ExpressionDataSourceTest, AColumnThatRefusesItsElementEndsTheListInSilence) {
  host_.application().addModule(
      {moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck, enterPoint, registerRefusal},
      "a column that refuses");
  auto const source = read<moxExpressionDataSource>(
      "<moxExpressionDataSource name=\"x\"><expressions><moxColumnExpression name=\"a\"/><recusa/>"
      "<moxColumnExpression name=\"b\"/></expressions></moxExpressionDataSource>");
  EXPECT_EQ(columnsOf(source->expressions()), Strings{"a"});
}

TEST_F(ExpressionDataSourceTest, AClassThatIsNoComputedColumnFailsTheLoad) {
  auto const held = document(
      "<moxExpressionDataSource><expressions><moxSearch/></expressions></moxExpressionDataSource>");
  EXPECT_EQ(failureOf([&] { made()->load(held->root()); }), "Expressão inválida: moxSearch");
}

TEST_F(ExpressionDataSourceTest, AColumnOfAnUnknownClassKeepsTheWholeDefinitionOut) {
  auto const loaded = collection(
      "<moxExpressionDataSource name=\"x\"><expressions><nada/></expressions>"
      "</moxExpressionDataSource>" +
      kMedias);
  EXPECT_EQ(loaded->findItem("x"), nullptr);
  EXPECT_NE(loaded->findItem("Medias"), nullptr);
}

TEST_F(ExpressionDataSourceTest, ColumnsAreTheComputedOnesAndAllDoubles) {
  EXPECT_EQ(read(kMedias)->getColumns(), (Columns{kSoma, kMedia}));
}

TEST_F(ExpressionDataSourceTest, RelatedColumnsAreTheInputsWithTheComputedOnesBehind) {
  auto const source = read(kMedias);
  auto const notas = read(kNotas);
  Columns const all{{"id", Types::Int}, kSoma, kMedia};
  EXPECT_EQ(source->getRelatedColumns({{"outra", source}, {"Notas", notas}}), all);
  EXPECT_EQ(source->getRelatedColumns({{"com outro nome", notas}}), all);
}

TEST_F(ExpressionDataSourceTest, RelatedColumnsWithoutTheInputAreTheComputedOnes) {
  EXPECT_EQ(read(kMedias)->getRelatedColumns({}), (Columns{kSoma, kMedia}));
}

TEST_F(ExpressionDataSourceTest, EditorsAddFindMoveAndRemoveColumns) {
  auto const source = read<moxExpressionDataSource>(kMedias);
  auto& expressions = source->expressions();
  auto const mean = expressions.findByName("media");
  ASSERT_NE(mean, nullptr);
  expressions.move(mean, expressions.findByName("soma"));
  EXPECT_EQ(columnsOf(std::as_const(*source).expressions()), (Strings{"media", "soma"}));
  EXPECT_TRUE(expressions.erase(mean));
  EXPECT_EQ(columnsOf(expressions), Strings{"soma"});
  expressions.add(nullptr);
  EXPECT_EQ(source->getColumns(), Columns{kSoma});
}

TEST_F(ExpressionDataSourceTest, ItemsAreACopyOfTheList) {
  auto const source = read<moxExpressionDataSource>(kMedias);
  auto items = source->expressions().getItems();
  items.clear();
  EXPECT_EQ(source->expressions().getItems().size(), 2u);
}

TEST_F(ExpressionDataSourceTest, OffersNoFiltersAndNoOptions) {
  auto const source = read(kMedias);
  EXPECT_TRUE(source->getFilters().empty());
  EXPECT_TRUE(source->createExecution()->getFilters().empty());
  EXPECT_TRUE(source->options().empty());
}

TEST_F(ExpressionDataSourceTest, ReadsItsInput) {
  enter(kNotas + kMedias +
        "<moxExpressionDataSource name=\"Mais\" source=\"Medias\"><expressions/>"
        "</moxExpressionDataSource>");
  EXPECT_EQ(namesOf(entered("Mais")->getRelatedDataSources(false)), Strings{"Medias"});
  EXPECT_EQ(namesOf(entered("Mais")->getRelatedDataSources(true)), (Strings{"Notas", "Medias"}));
}

TEST_F(ExpressionDataSourceTest, AnInputThatNobodyKnowsIsLeftOut) {
  EXPECT_TRUE(read(kMedias)->getRelatedDataSources(true).empty());
}

TEST_F(ExpressionDataSourceTest, ADefinitionThatNobodyHoldsMakesNoExecution) {
  ExpressionDataSource source;
  EXPECT_THROW((void)source.createExecution(), std::bad_weak_ptr);
}
