#include "cli/definitions/definition_view.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/definitions/source_view.h"
#include "cli/definitions/view_json.h"
#include "cli/definitions/view_tree.h"
#include "mox/core/xml.h"
#include "support/test_host.h"

namespace mox::cli {
namespace {

class DefinitionViewTest : public ::testing::Test {
 protected:
  std::shared_ptr<moxZYNItem> item(std::string const& xml) {
    auto const document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText(xml);
    auto item = host_.get<moxZYNItem>(document->root()->elementName());
    EXPECT_TRUE(item->load(document->root()));
    item->setParentLibraryName("escola");
    return item;
  }

  TestHost host_;
};

/// A source that reads others, which it is told.
class ReadingSource final : public moxDataSource {
 public:
  explicit ReadingSource(std::string name) : name_(std::move(name)) {}

  std::string name() const override { return "moxReadingSource"; }
  bool load(std::shared_ptr<moxXMLNode>) override { return true; }
  bool save(std::shared_ptr<moxXMLNode>) const override { return true; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return related; }
  void setParentLibraryName(std::string const&) override {}
  std::string getParentLibName() const override { return {}; }
  std::vector<moxDataSourceColumnType> getColumns() const override {
    return {{"n", moxDataMatrixTypes::Double}};
  }
  void setName(std::string const&) override {}
  std::string getName() const override { return name_; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSourceOption const>> options() const override { return {}; }
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return {};
  }
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool) const override {
    return reads;
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override { return {}; }

  std::vector<std::shared_ptr<moxDataSource const>> reads;
  std::shared_ptr<moxZYNItem> related;

 private:
  std::string name_;
};

TEST_F(DefinitionViewTest, AFormatterTellsItsClassAndTheTextsAroundIt) {
  auto const view =
      viewOf(*item("<moxFormatterZYNItem><moxDateFormatter description=\"Data\" prefix=\"em "
                   "\"/></moxFormatterZYNItem>"));
  EXPECT_EQ(treeText(view),
            "Data\n"
            "├─ kind: formatter\n"
            "├─ class: moxFormatterZYNItem\n"
            "├─ library: escola\n"
            "├─ formatter: moxDateFormatter\n"
            "└─ prefix: \"em \"\n");
}

TEST_F(DefinitionViewTest, APackWithoutContentTellsWhatEveryDefinitionHas) {
  auto const view = viewOf(*item("<moxZYNPack name=\"Descri&#27;ções\"/>"));
  EXPECT_EQ(treeText(view),
            "Descri␛ções\n"
            "├─ kind: pack\n"
            "├─ class: moxZYNPack\n"
            "└─ library: escola\n");
}

TEST_F(DefinitionViewTest, AQueryTellsItsColumnsWithRolesItsFiltersAndItsOrder) {
  auto const view = viewOf(*item(R"(
<moxSQLDataSource name="Alunos" VisibleName="Os alunos">
  <Command type="1"><from>aluno a</from></Command>
  <mainData tableName="a" columnName="id"/>
  <unidadeColumn tableName="a" columnName="unidade" allownull="1"/>
  <Columns>
    <Column tableName="a" tableNameOrigin="aluno" columnName="id" columnNameOrigin="id" Visible="0"
            Type="2"><sql alias="id" index="0">a.id</sql></Column>
    <Column tableName="a" tableNameOrigin="aluno" columnName="nome" columnNameOrigin="nome"
            VisibleName="Nome" Visible="1" Type="1">
      <refColumn tableName="a" columnName="id"/>
      <Formatters Visual="moxTextFormatter"><Visual/></Formatters>
      <sql alias="nome" index="1">a.nome</sql></Column>
    <Column tableName="a" tableNameOrigin="aluno" columnName="unidade" columnNameOrigin="id_unidade"
            Visible="1" Type="2"><sql alias="unidade" index="2">a.id_unidade</sql></Column>
  </Columns>
  <Order><By tableName="a" columnName="nome" dir="Desc"/></Order>
</moxSQLDataSource>)"));
  EXPECT_EQ(treeText(view),
            "Alunos\n"
            "├─ kind: data-source\n"
            "├─ class: moxSQLDataSource\n"
            "├─ library: escola\n"
            "├─ heading: Os alunos\n"
            "├─ statement: composed\n"
            "├─ columns\n"
            "│  ├─ id: int from aluno.id, main, key of nome, hidden\n"
            "│  ├─ nome: text \"Nome\" from aluno.nome, moxTextFormatter\n"
            "│  └─ unidade: int from aluno.id_unidade, unit (null is everybody's)\n"
            "└─ order\n"
            "   └─ nome, descending\n");
}

TEST_F(DefinitionViewTest, SourcesThatAreReadStandInATreeAndARingEnds) {
  auto const first = std::make_shared<ReadingSource>("primeira");
  auto const second = std::make_shared<ReadingSource>("segunda");
  auto const third = std::make_shared<ReadingSource>("terceira");
  first->reads = {second, third};
  second->reads = {third, first};
  third->reads = {third};
  auto const text = treeText(viewOf(*first));
  first->reads.clear();
  second->reads.clear();
  third->reads.clear();
  EXPECT_EQ(text,
            "primeira\n"
            "├─ kind: data-source\n"
            "├─ class: moxReadingSource\n"
            "├─ columns\n"
            "│  └─ n: double\n"
            "└─ reads\n"
            "   ├─ segunda (moxReadingSource)\n"
            "   │  ├─ terceira (moxReadingSource)\n"
            "   │  │  └─ terceira (moxReadingSource), see above: a ring\n"
            "   │  └─ primeira (moxReadingSource), see above: a ring\n"
            "   └─ terceira (moxReadingSource), see above\n");
}

TEST_F(DefinitionViewTest, ARelatedDefinitionIsToldWithItsKind) {
  auto const source = std::make_shared<ReadingSource>("fonte");
  source->related = item("<moxZYNPack name=\"pacote\"/>");
  auto const view = viewOf(*source);
  ASSERT_EQ(view.settings.size(), 1u);
  EXPECT_EQ(view.settings.front(), std::pair(std::string("pack"), std::string("pacote")));
}

TEST_F(DefinitionViewTest, AVeryDeepChainOfSourcesIsCut) {
  auto top = std::make_shared<ReadingSource>("0");
  for (int i = 1; i < 10000; ++i) {
    auto const next = std::make_shared<ReadingSource>(std::to_string(i));
    next->reads = {top};
    top = next;
  }
  int depth = 0;
  DependencyView const tree = dependencyTree(*top);
  for (auto const* at = &tree; !at->dependencies.empty(); at = &at->dependencies.front()) {
    ++depth;
  }
  EXPECT_EQ(depth, 64);
  while (top && !top->reads.empty()) {  // one by one, or the destructors would nest as deep
    auto const next = std::const_pointer_cast<moxDataSource>(top->reads.front());
    top->reads.clear();
    top = std::dynamic_pointer_cast<ReadingSource>(next);
  }
}

TEST(ViewTree, TellsColumnsFiltersOrderAndRelations) {
  DefinitionView view;
  view.name = "Alunos";
  view.kind = "data-source";
  view.className = "moxSQLDataSource";
  view.columns = {{.name = "id",
                   .type = "int",
                   .heading = "Código",
                   .origin = "aluno.id",
                   .expression = "a.id",
                   .formatter = {},
                   .roles = {"main", "key of nome"},
                   .visible = false},
                  {.name = "n",
                   .type = "double",
                   .heading = {},
                   .origin = {},
                   .expression = "count(*)",
                   .formatter = "moxDecimalFormatter",
                   .roles = {}}};
  view.filters = {{.kind = "moxIntegralUniqueFilter",
                   .column = "a.id",
                   .description = "Código",
                   .control = "campo",
                   .required = true}};
  view.order = {{"id", true}, {"n", false}};
  view.relations = {{"id_turma", "Turmas", "id"}};
  EXPECT_EQ(treeText(view),
            "Alunos\n"
            "├─ kind: data-source\n"
            "├─ class: moxSQLDataSource\n"
            "├─ columns\n"
            "│  ├─ id: int \"Código\" from aluno.id, main, key of nome, hidden\n"
            "│  └─ n: double as count(*), moxDecimalFormatter\n"
            "├─ filters\n"
            "│  └─ a.id \"Código\": moxIntegralUniqueFilter, required, campo\n"
            "├─ order\n"
            "│  ├─ id, descending\n"
            "│  └─ n\n"
            "└─ relations\n"
            "   └─ id_turma refers to id of Turmas\n");
}

TEST(ViewJson, IsReadBackByAnotherReader) {
  DefinitionView view;
  view.name = "A \"b\"\n";
  view.kind = "data-source";
  view.className = "moxX";
  view.settings = {{"heading", "Título"}};
  view.columns = {{.name = "id",
                   .type = "int",
                   .heading = {},
                   .origin = {},
                   .expression = {},
                   .formatter = {},
                   .roles = {"main"}}};
  view.filters = {{.kind = "k", .column = "c", .description = {}, .control = {}, .required = true}};
  view.order = {{"id", true}};
  view.relations = {{"a", "S", "b"}};
  view.dependencies = {{.name = "S", .className = "moxY", .dependencies = {}}};
  auto const read = nlohmann::json::parse(jsonText(view));
  EXPECT_EQ(read, nlohmann::json::parse(R"({
    "name": "A \"b\"\n", "kind": "data-source", "class": "moxX", "library": "",
    "settings": [{"name": "heading", "value": "Título"}],
    "columns": [{"name": "id", "type": "int", "heading": "", "origin": "", "expression": "",
                 "formatter": "", "visible": true, "roles": ["main"]}],
    "filters": [{"kind": "k", "column": "c", "description": "", "required": true, "control": ""}],
    "order": [{"column": "id", "descending": true}],
    "relations": [{"column": "a", "source": "S", "source_column": "b"}],
    "reads": [{"name": "S", "class": "moxY", "repeated": false, "ring": false, "missing": false,
               "reads": []}]
  })"));
}

TEST(ViewJson, StandsOverLines) {
  DefinitionView view;
  view.name = "a";
  EXPECT_TRUE(jsonText(view).starts_with("{\n  \"name\": \"a\",\n  \"kind\": \"\",\n"));
  EXPECT_TRUE(
      jsonText(view).ends_with("  \"columns\": [],\n  \"filters\": [],\n  \"order\": [],\n"
                               "  \"relations\": [],\n  \"reads\": []\n}\n"));
}

}  // namespace
}  // namespace mox::cli
