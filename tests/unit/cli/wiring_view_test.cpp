#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/definitions/definition_view.h"
#include "cli/definitions/view_json.h"
#include "cli/definitions/view_tree.h"
#include "mox/core/xml.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/items/zyn_collection.h"
#include "support/test_host.h"

namespace mox::cli {
namespace {

constexpr char const* kAlunos =
    R"(<moxSQLDataSource name="Alunos"><Command type="1"><from>alunos a</from></Command><Columns>)"
    R"(<Column tableName="a" columnName="id" Visible="1" Type="2">)"
    R"(<sql alias="id" index="0">a.id</sql></Column>)"
    R"(</Columns></moxSQLDataSource>)";

std::string filterSource(std::string const& name, std::string const& source,
                         std::string const& content = {}) {
  return "<moxFilterDataSource name=\"" + name + "\" dataSource=\"" + source + "\">" + content +
         "</moxFilterDataSource>";
}

/// A member that holds the source.
std::string holding(std::string const& name, std::string const& source,
                    std::string const& behind = {}) {
  return "<moxDadoDataSource name=\"" + name + "\">" + source + behind + "</moxDadoDataSource>";
}

/// A member that names a source.
std::string naming(std::string const& name, std::string const& source,
                   std::string const& content = {}) {
  return "<moxDadoDataSource name=\"" + name + "\" dataSource=\"" + source + "\">" + content +
         "</moxDadoDataSource>";
}

std::string group(std::string const& name, std::string const& members,
                  std::string const& output = "alunos", std::string const& filters = {}) {
  return "<moxGroupDataSource name=\"" + name + "\" outputSource=\"" + output +
         "\" filterSource=\"" + filters + "\"><DataSources>" + members +
         "</DataSources></moxGroupDataSource>";
}

class WiringViewTest : public ::testing::Test {
 protected:
  std::shared_ptr<moxZYNItem> item(std::string const& xml) {
    auto const document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText(xml);
    auto item = host_.get<moxZYNItem>(document->root()->elementName());
    EXPECT_TRUE(item->load(document->root()));
    return item;
  }

  /// Has sources found by their names.
  void publish(std::string const& items) {
    auto const document = host_.get<moxXMLDocument>("moxXMLDocument");
    document->loadText("<moxZYNCollection>" + items + "</moxZYNCollection>");
    auto const collection = host_.get<moxZYNCollection>("moxZYNCollection");
    EXPECT_TRUE(collection->unserialize(document->root()));
    host_.get<moxZYNCache>("moxZYNCache")->appendCollection(collection);
  }

  std::string tree(std::string const& xml) { return treeText(viewOf(*item(xml))); }

  nlohmann::json members(std::string const& xml) {
    return nlohmann::json::parse(jsonText(viewOf(*item(xml))))["group"]["members"];
  }

  TestHost host_;
};

TEST_F(WiringViewTest, AFilterSourceTellsAllThatItChanges) {
  EXPECT_EQ(
      tree(filterSource(
          "Curso", "Alunos",
          "<join>inner join x on x.id = a.id</join><where>a.n = 1</where><group>a.g</group>"
          "<order>a.o</order><Filters><Valor plugin=\"moxIntegralInFilter\" tableName=\"a\" "
          "columnName=\"id\" tableNameOrigin=\"alunos\" "
          "columnNameOrigin=\"codigo\"><value>3</value>"
          "<value>1</value></Valor><Sql tableName=\"a\" columnName=\"t\"><SQL>select 1</SQL></Sql>"
          "<SemFiltro tableName=\"a\" columnName=\"nome\"/></Filters><selectColumns tipo=\"1\">"
          "<column tableName=\"x\" columnName=\"n\" Visible=\"1\" Type=\"2\"><sql alias=\"n\" "
          "index=\"0\">x.n</sql></column></selectColumns>")),
      "Curso\n"
      "├─ kind: data-source\n"
      "├─ class: moxFilterDataSource\n"
      "├─ changes Alunos\n"
      "├─ join: inner join x on x.id = a.id\n"
      "├─ where: a.n = 1\n"
      "├─ group: a.g\n"
      "├─ order: a.o\n"
      "├─ columns in place of the source's\n"
      "│  └─ n: int as x.n\n"
      "├─ conditions\n"
      "│  ├─ a.id (alunos.codigo) is one of 1, 3, for moxIntegralInFilter\n"
      "│  ├─ a.t is among: select 1\n"
      "│  └─ a.nome is not filtered\n"
      "└─ columns\n"
      "   └─ n: int\n");
}

TEST_F(WiringViewTest, ALongListOfValuesIsCutForPeopleAndWholeForPrograms) {
  std::string values;
  for (int i = 1; i <= 100; ++i) {
    values += "<value>" + std::to_string(i) + "</value>";
  }
  auto const xml = filterSource(
      "F", "Alunos", "<Filters><Valor columnName=\"id\">" + values + "</Valor></Filters>");
  EXPECT_NE(tree(xml).find("19, 20, and 80 more\n"), std::string::npos);
  auto const view = nlohmann::json::parse(jsonText(viewOf(*item(xml))));
  EXPECT_EQ(view["changes"]["conditions"][0]["values"].size(), 100u);
}

TEST_F(WiringViewTest, AManagerTellsWhatItOffersAndWhatAnswersForWhat) {
  EXPECT_EQ(tree(R"(
<moxManageFilterDataSource name="Período">
  <sources><source name="Alunos">
    <avaliable><filter filterName="nome"/></avaliable>
    <related>
      <filter tableNameOrigin="alunos" columnNameOrigin="codigo" tableName="a" columnName="id"
              filterNameRelac="aluno"/>
      <filter columnName="{{ano}}" filterNameRelac="ano"/>
    </related></source></sources>
  <Filters><moxIntegralUniqueFilter columnName="ano" description="Ano"/></Filters>
</moxManageFilterDataSource>)"),
            "Período\n"
            "├─ kind: data-source\n"
            "├─ class: moxManageFilterDataSource\n"
            "├─ governs Alunos\n"
            "│  ├─ offers nome\n"
            "│  ├─ aluno answers for a.id (alunos.codigo)\n"
            "│  └─ ano answers for {{ano}}\n"
            "└─ filters\n"
            "   └─ ano \"Ano\": moxIntegralUniqueFilter\n");
}

TEST_F(WiringViewTest, AGroupTellsWhereEachChangeEnds) {
  publish(filterSource("Curso da rede", "Fonte"));
  EXPECT_EQ(tree(group("Grupo",
                       holding("alunos", kAlunos) +
                           naming("curso", "Curso da rede",
                                  R"(<sourcesExternalRelation><relation external="Fonte" )"
                                  R"(internal="alunos"/></sourcesExternalRelation>)") +
                           holding("bolsa", filterSource("Bolsa", "curso")) +
                           holding("período",
                                   R"(<moxManageFilterDataSource name="P"><sources>)"
                                   R"(<source name="alunos"/><source name="faturas"/></sources>)"
                                   R"(</moxManageFilterDataSource>)"),
                       "alunos", "alunos")),
            "Grupo\n"
            "├─ kind: data-source\n"
            "├─ class: moxGroupDataSource\n"
            "├─ columns\n"
            "│  └─ id: int\n"
            "└─ members\n"
            "   ├─ alunos (moxSQLDataSource), gives the result, gives the filters\n"
            "   │  ├─ changed by curso\n"
            "   │  ├─ changed by bolsa\n"
            "   │  ├─ governed by período\n"
            "   │  ├─ statement: composed\n"
            "   │  └─ columns\n"
            "   │     └─ id: int as a.id\n"
            "   ├─ curso is \"Curso da rede\" (moxFilterDataSource)\n"
            "   │  ├─ what it calls Fonte is alunos\n"
            "   │  └─ changes Fonte, here alunos\n"
            "   ├─ bolsa (moxFilterDataSource)\n"
            "   │  └─ changes curso and so alunos\n"
            "   └─ período (moxManageFilterDataSource)\n"
            "      ├─ governs alunos\n"
            "      └─ governs faturas: no member ahead of it is called \"faturas\"\n");
}

TEST_F(WiringViewTest, AManyLinkedChainOfFilterSourcesEnds) {
  constexpr int kFilters = 1200;
  std::string chain = holding("0", kAlunos);
  for (int i = 1; i <= kFilters; ++i) {
    chain += holding(std::to_string(i), filterSource("F", std::to_string(i - 1)));
  }
  auto const told = members(group("Grupo", chain, "0"));
  EXPECT_EQ(told[1000]["wires"][0]["target"], "0");
  EXPECT_EQ(told[1000]["wires"][0]["through"].size(), 999u);
  EXPECT_EQ(told[1001]["wires"][0]["target"], "");
  EXPECT_EQ(told[1001]["wires"][0]["defect"], "the way goes by more than 1000 filter sources");
  EXPECT_EQ(told[0]["changed_by"].size(), 1000u);
}

TEST_F(WiringViewTest, AWiringThatCannotWorkIsToldByName) {
  auto const told = members(
      group("Grupo", holding("cedo", filterSource("F", "alunos")) +
                         holding("eu", filterSource("F", "eu")) + holding("alunos", kAlunos) +
                         holding("gerente",
                                 "<moxManageFilterDataSource name=\"M\"><sources><source "
                                 "name=\"eu\"/></sources></moxManageFilterDataSource>") +
                         holding("a", filterSource("F", "gerente")) + naming("b", "Nada")));
  EXPECT_EQ(told[0]["wires"][0]["defect"], "no member ahead of it is called \"alunos\"");
  EXPECT_EQ(told[1]["wires"][0]["defect"], "the filter sources change each other in a ring");
  EXPECT_EQ(told[3]["wires"][0]["defect"], "\"eu\" is no query");
  EXPECT_EQ(told[4]["wires"][0]["defect"], "\"gerente\" is neither a query nor a filter source");
  EXPECT_EQ(told[5]["defect"], "Fonte de dados externa inválida");
}

TEST_F(WiringViewTest, ARelationToNothingIsToldByName) {
  auto const relation = [](std::string const& member, std::string const& column) {
    return "<Relation tableName=\"f\" columnName=\"id_aluno\"><DataSourceOrigin dataSource=\"" +
           member + "\" columnName=\"" + column + "\"/></Relation>";
  };
  auto const told = members(group("Grupo", holding("alunos", kAlunos) +
                                               holding("a", kAlunos, relation("alunos", "id")) +
                                               holding("b", kAlunos, relation("alunos", "nome")) +
                                               holding("c", kAlunos, relation("turmas", "id"))));
  EXPECT_EQ(told[1]["relation"]["member"], "alunos");
  EXPECT_EQ(told[1]["relation"]["member_column"], "id");
  EXPECT_EQ(told[1]["relation"]["column"]["column"], "id_aluno");
  EXPECT_EQ(told[1]["relation"]["defect"], "");
  EXPECT_EQ(told[2]["relation"]["defect"], "it has no column \"nome\"");
  EXPECT_EQ(told[3]["relation"]["defect"], "no member is called \"turmas\"");
}

TEST_F(WiringViewTest, AGroupWithoutItsOutputOrFilterMemberSaysSo) {
  auto const text = tree(group("Grupo", holding("alunos", kAlunos), "saida", "filtros"));
  EXPECT_NE(text.find("├─ defect: no member is called \"saida\", which is to give the result\n"),
            std::string::npos)
      << text;
  EXPECT_NE(
      text.find(
          "├─ defect: no member is called \"filtros\", whose filters are to be the group's\n"),
      std::string::npos)
      << text;
}

TEST_F(WiringViewTest, GroupsThatHoldEachOtherEnd) {
  publish(group("Um", naming("alunos", "Dois") + naming("de novo", "Dois")) +
          group("Dois", naming("alunos", "Um")));
  auto const um = host_.get<moxZYNCache>("moxZYNCache")->getCollection("Um");
  auto const told = nlohmann::json::parse(jsonText(viewOf(*um)))["group"]["members"];
  ASSERT_EQ(told.size(), 2u);
  EXPECT_FALSE(told[0]["ring"]);
  EXPECT_TRUE(told[1]["repeated"]);
  EXPECT_FALSE(told[1]["ring"]);
  auto const inner = told[0]["definition"]["group"]["members"];
  EXPECT_TRUE(inner[0]["ring"]);
  EXPECT_FALSE(inner[0].contains("definition"));
  EXPECT_NE(treeText(viewOf(*um))
                .find("alunos is \"Um\" (moxGroupDataSource), gives the result, "
                      "see above: a ring\n"),
            std::string::npos);
}

TEST_F(WiringViewTest, GroupsInsideGroupsAreCutWhereNoRunGoes) {
  std::string items = group("0", holding("alunos", kAlunos));
  for (int i = 1; i <= 200; ++i) {
    items += group(std::to_string(i), naming("alunos", std::to_string(i - 1)));
  }
  publish(items);
  auto const top = host_.get<moxZYNCache>("moxZYNCache")->getCollection("200");
  auto view = nlohmann::json::parse(jsonText(viewOf(*top)));
  int depth = 0;
  while (view.contains("group")) {
    ++depth;
    auto const member = view["group"]["members"][0];
    view = member.contains("definition") ? member["definition"] : nlohmann::json::object();
  }
  EXPECT_EQ(depth, 64);
}

TEST_F(WiringViewTest, ASearchTellsItsScreenAndItsSource) {
  publish(kAlunos);
  EXPECT_EQ(tree(R"(
<moxSearch VisibleName="Alunos da rede" InternalName="Pesquisa">
  <General dataSource="Alunos" requireFilter="1" requirePermission="0">
    <AutoFill atStartup="1"/><Allowing Reorder="1"/><Geometry width="600" height="400"/>
    <InitialOrdering tableName="a" columnName="id" direction="desc"/>
  </General></moxSearch>)"),
            "Pesquisa\n"
            "├─ kind: search\n"
            "├─ class: moxSearch\n"
            "├─ heading: Alunos da rede\n"
            "├─ source: Alunos\n"
            "├─ screen: 600 x 400\n"
            "│  ├─ filled when it opens\n"
            "│  ├─ columns may be reordered\n"
            "│  ├─ needs a filter\n"
            "│  ├─ open to all\n"
            "│  └─ sorted first by\n"
            "│     └─ id, descending\n"
            "├─ columns\n"
            "│  └─ id: int as a.id\n"
            "└─ reads\n"
            "   └─ Alunos (moxSQLDataSource)\n");
}

TEST_F(WiringViewTest, ASearchWhoseSourceIsMissingTellsIt) {
  auto const text = tree(
      R"(<moxSearch InternalName="P"><General dataSource="Nada"><AutoFill/><Allowing/></General>)"
      R"(</moxSearch>)");
  EXPECT_NE(text.find("├─ defect: Fonte de dados externa inválida\n"), std::string::npos) << text;
}

TEST_F(WiringViewTest, TheJsonOfASearchHasTypedSettings) {
  auto const view = nlohmann::json::parse(
      jsonText(viewOf(*item("<moxSearch InternalName=\"P\" VisibleName=\"T\"/>"))));
  EXPECT_EQ(view["search"], nlohmann::json::parse(R"({
    "heading": "T", "source": "", "auto_fill": false, "allow_reorder": false,
    "require_filter": false, "require_permission": true, "width": 760, "height": 450, "order": []
  })"));
}

}  // namespace
}  // namespace mox::cli
