#include "core/run/explanation.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/explanation_text.h"
#include "unit/core/run/run_fixture.h"

namespace mox::core::run_test {
namespace {

using Json = nlohmann::json;
using ValueType = moxBoundValue::Type;

moxRunPart part(moxRunOrigin origin, std::string const& name = "") {
  return {.sql = "", .column = "c", .origin = origin, .originName = name, .values = {}};
}

TEST(Explanation, EveryOriginHasAKeyAndWords) {
  moxRunReport report;
  report.units = {3, 4};
  auto const told = [&](moxRunOrigin origin, std::string const& name = "") {
    return originKey(origin) + ": " + originText(part(origin, name), report);
  };
  EXPECT_EQ(told(moxRunOrigin::kUserFilter), "user-filter: the user's filter");
  EXPECT_EQ(told(moxRunOrigin::kProgramFilter), "program-filter: imposed by the program");
  EXPECT_EQ(told(moxRunOrigin::kManager, "G"), "manager: a filter given for the manager G");
  EXPECT_EQ(told(moxRunOrigin::kFilterSource, "F"), "filter-source: fixed by the filter source F");
  EXPECT_EQ(told(moxRunOrigin::kRelation, "R"), "relation: the values that the source R gave");
  EXPECT_EQ(told(moxRunOrigin::kUnsetParameter),
            "unset-parameter: declared in the definition, and no value was given");
  EXPECT_EQ(told(moxRunOrigin::kSessionToken),
            "session-token: what the session or the run's units say");
  EXPECT_EQ(told(moxRunOrigin::kUnitRule),
            "unit-rule: the unit rule: units 3, 4, named by the caller");
}

TEST(Explanation, UnitsAreToldWithTheirOrigin) {
  moxRunReport report;
  EXPECT_EQ(unitsText(report), "no units");
  report.units = {3};
  EXPECT_EQ(unitsText(report), "unit 3, named by the caller");
  report.unitsFromSession = true;
  EXPECT_EQ(unitsText(report), "unit 3, the session's default");
}

TEST(Explanation, ValuesHaveTheNameOfTheirKind) {
  EXPECT_EQ(valueTypeKey(ValueType::kNull), "null");
  EXPECT_EQ(valueTypeKey(ValueType::kInt), "int");
  EXPECT_EQ(valueTypeKey(ValueType::kDouble), "double");
  EXPECT_EQ(valueTypeKey(ValueType::kText), "text");
  EXPECT_EQ(valueTypeKey(ValueType::kDate), "date");
  EXPECT_EQ(valueTypeKey(ValueType::kDateTime), "datetime");
  EXPECT_EQ(valueTypeKey(ValueType::kBlob), "blob");
}

Explanation madeUp() {
  Explanation explanation;
  explanation.definition = "Alunos";
  explanation.report.units = {3};
  moxRunStatement statement{"select a\nfrom t where x = ? and t.a = ? and b is null", {}, {}, {}};
  statement.parameters.push_back({"", "{{x}}", moxRunOrigin::kUnsetParameter, "", {{}}});
  statement.conditions.push_back(
      {"t.a = ? ", "t.a", moxRunOrigin::kUserFilter, "", {{ValueType::kText, "v\x1b[1m"}}});
  moxRunSource source;
  source.name = "Alunos";
  source.executionClass = "moxSQLDataSourceExecution";
  source.executed = true;
  source.statements.push_back(statement);
  source.rows = 1;
  source.seconds = 0.0015;
  explanation.report.sources.push_back(source);
  explanation.report.ignoredFilters.push_back({"Outra", "c", "no source has that name"});
  explanation.definitionConditions["Alunos"] = "b is null";
  return explanation;
}

TEST(Explanation, TextTellsEverythingInLines) {
  auto explanation = madeUp();
  explanation.error = "no such table";
  EXPECT_EQ(cli::explanationText(explanation),
            "definition   Alunos\n"
            "units        unit 3, named by the caller\n"
            "head office  none\n"
            "\n"
            "1. Alunos: 1 row, 1.5 ms\n"
            "  statement\n"
            "    select a\n"
            "    from t where x = ? and t.a = ? and b is null\n"
            "  values of its tokens, in order\n"
            "    {{x}}\n"
            "      value: null\n"
            "      from: declared in the definition, and no value was given\n"
            "  conditions\n"
            "    b is null\n"
            "      from: the definition's own text\n"
            "    t.a = ?\n"
            "      value: text 'v␛[1m'\n"
            "      from: the user's filter\n"
            "\n"
            "filters that no statement used\n"
            "  c of Outra: no source has that name\n"
            "\n"
            "failed       no such table\n");
}

/// A group with a query inside, for which a search was named.
Explanation madeUpGroup() {
  Explanation explanation;
  explanation.definition = "Boletim";
  moxRunSource group;
  group.name = "Boletim";
  group.executed = true;
  group.rows = 2;
  group.wiring = {"filter source \"Ativos\" changes \"Notas\""};
  moxRunSource query;
  query.name = "Notas";
  query.executed = true;
  query.rows = 2;
  query.depth = 1;
  query.statements.push_back({"select 1", {}, {}, {}});
  explanation.report.sources = {group, query};
  explanation.search = SearchExplanation{"Pesquisa", {"id", "nota"}, "nota", true, ""};
  explanation.wiring.changes = {
      {"Boletim", "Ativos", "Notas", {{"where", "ativo = 1"}, {"select", "a as b"}}}};
  explanation.wiring.problems = {"it has two members"};
  return explanation;
}

TEST(Explanation, TextNestsMembersAndTellsSearchChangesAndProblems) {
  EXPECT_EQ(cli::explanationText(madeUpGroup()),
            "definition   Boletim\n"
            "units        no units\n"
            "head office  none\n"
            "\n"
            "1. Boletim: 2 rows, 0.0 ms\n"
            "  wiring\n"
            "    filter source \"Ativos\" changes \"Notas\"\n"
            "\n"
            "  2. Notas: 2 rows, 0.0 ms\n"
            "    statement\n"
            "      select 1\n"
            "\n"
            "the search Pesquisa\n"
            "  puts the columns in the order id, nota\n"
            "  sorts by nota, descending\n"
            "\n"
            "what filter sources put into statements\n"
            "  Ativos changes Notas in the group Boletim\n"
            "    where\n"
            "      ativo = 1\n"
            "    columns in place of the query's\n"
            "      a as b\n"
            "\n"
            "what is wrong in the wiring\n"
            "  it has two members\n");
}

TEST(Explanation, TextTellsWhyASearchDoesNotSort) {
  auto explanation = madeUpGroup();
  explanation.search->problem = "nada";
  EXPECT_NE(cli::explanationText(explanation).find("  cannot sort: nada\n"), std::string::npos);
  explanation.search = SearchExplanation{"Pesquisa", {"id"}, "", true, ""};
  EXPECT_NE(cli::explanationText(explanation).find("  leaves the rows in the order of its source"),
            std::string::npos);
}

TEST(Explanation, JsonTellsSearchNestingChangesAndProblems) {
  auto const json = Json::parse(explanationJson(madeUpGroup()));
  EXPECT_EQ(json["search"], Json::parse(R"({"name": "Pesquisa", "columns": ["id", "nota"],
    "sortColumn": "nota", "sortDescending": true, "problem": null})"));
  EXPECT_EQ(json["sources"][0]["depth"], 0);
  EXPECT_EQ(json["sources"][0]["wiring"].size(), 1U);
  EXPECT_EQ(json["sources"][1]["depth"], 1);
  EXPECT_EQ(json["filterSources"], Json::parse(R"([{"group": "Boletim", "member": "Ativos",
    "query": "Notas", "texts": [{"piece": "where", "text": "ativo = 1"},
    {"piece": "select", "text": "a as b"}]}])"));
  EXPECT_EQ(json["wiringProblems"], Json::parse(R"(["it has two members"])"));
  EXPECT_EQ(Json::parse(explanationJson(madeUp()))["search"], nullptr);
}

TEST(Explanation, TextShowsTheFirstOfManyValues) {
  auto explanation = madeUp();
  explanation.report.sources[0].statements[0].conditions[0].values.assign(25,
                                                                          {ValueType::kInt, "1"});
  EXPECT_NE(cli::explanationText(explanation).find("int 1, int 1, and 5 more\n"),
            std::string::npos);
}

TEST(Explanation, ManyMarksAreShownShortlyAndToldHowTheyAreSent) {
  auto explanation = madeUp();
  auto& statement = explanation.report.sources[0].statements[0];
  std::string list = "?";
  for (int i = 1; i < 21; ++i) {
    list += ", ?";
  }
  statement.sql = "select a from t where x in (?, ?) and b in (" + list + ") and c = ?";
  statement.sending = "24 values are more than the 20 marks that the database takes";
  statement.conditions[0].sql = "b in (" + list + ")";
  auto const text = cli::explanationText(explanation);
  EXPECT_NE(
      text.find("    select a from t where x in (?, ?) and b in (?, ?, ... 21 marks) and c = ?\n"
                "  24 values are more than the 20 marks that the database takes\n"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find("    b in (?, ?, ... 21 marks)\n"), std::string::npos) << text;
  auto const json = Json::parse(explanationJson(explanation))["sources"][0]["statements"][0];
  EXPECT_EQ(json["sql"], statement.sql);
  EXPECT_EQ(json["sending"], statement.sending);
}

TEST(Explanation, JsonTellsTheSame) {
  auto const json = Json::parse(explanationJson(madeUp()));
  EXPECT_EQ(json["definition"], "Alunos");
  EXPECT_EQ(json["dryRun"], false);
  EXPECT_EQ(json["units"], Json::parse(R"({"ids": [3], "from": "caller"})"));
  EXPECT_EQ(json["headOffice"], Json::parse(R"({"id": null, "from": "none"})"));
  EXPECT_EQ(json["error"], nullptr);
  auto const& source = json["sources"][0];
  EXPECT_EQ(source["definitionConditions"], "b is null");
  EXPECT_EQ(source["rows"], 1);
  EXPECT_EQ(source["statements"][0]["parameters"][0]["values"],
            Json::parse(R"([{"type": "null", "value": null}])"));
  EXPECT_EQ(source["statements"][0]["conditions"][0], Json::parse(R"({
    "sql": "t.a = ? ", "column": "t.a", "origin": "user-filter", "originName": null,
    "originText": "the user's filter", "values": [{"type": "text", "value": "v\u001b[1m"}]})"));
  EXPECT_EQ(json["ignoredFilters"], Json::parse(R"([{"source": "Outra", "column": "c",
    "reason": "no source has that name"}])"));
}

TEST(Explanation, JsonHoldsNoControlCharactersAndNoBrokenText) {
  auto explanation = madeUp();
  explanation.error = "\x7F \xC2\x9B \xFF \t \xC2\xA0";
  auto const text = explanationJson(explanation);
  EXPECT_NE(text.find(R"(\u007f \u009b � \t )"), std::string::npos) << text;
  EXPECT_EQ(Json::parse(text)["error"], "\x7F \xC2\x9B \xEF\xBF\xBD \t \xC2\xA0");
}

using ExplanationOfRunTest = RunTest;

TEST_F(ExplanationOfRunTest, ConditionsOfComposedDefinitionsAreTheirOwn) {
  defineStudents("", filter("moxIntegralUniqueFilter", "id"));
  auto run = newRun();
  run.setFilters({"id=2"});
  run.keepReport(DefinitionRun::Report::kKept);
  run.run();
  auto const explanation = explain(run, DefinitionRun::Report::kKept, "");
  EXPECT_EQ(explanation.definition, "Alunos");
  EXPECT_FALSE(explanation.composedOnly);
  EXPECT_EQ(explanation.definitionConditions,
            (std::map<std::string, std::string>{{"Alunos", "a.id > 0"}}));
  ASSERT_EQ(explanation.filters.size(), 1U);
  EXPECT_EQ(explanation.filters[0].text, "id=2");
}

}  // namespace
}  // namespace mox::core::run_test
