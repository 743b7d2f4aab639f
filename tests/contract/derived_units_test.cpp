// Nobody sees anything of a unit that is not his at the end of a chain either: neither in cells and
// names of columns, nor in sums, nor in what a run tells of itself. A row of unit 3 of the example
// school holds the text [U3], and so does what texts are made of.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "core/run/explanation.h"
#include "escola/generator/example_database.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/items/zyn_collection.h"
#include "support/databases.h"
#include "support/matrix_builder.h"
#include "support/shared_sessions.h"
#include "support/test_host.h"

namespace mox_test {

namespace {

using mox::core::DefinitionRun;
using Units = std::set<int>;
using Names = std::vector<std::string>;

struct Person {
  char const* login;
  int defaultUnit;
  std::vector<mox::core::UserUnit> units;  // each with its head office
};

std::vector<Person> const kPeople{
    {"rosangela", 1, {{1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}}},
    {"joaquim", 3, {{3, 1}}},
    {"marilia", 3, {{3, 1}, {4, 1}}},
    {"lucas", 2, {{2, 1}}},
    {"iara", 6, {{6, 6}, {7, 6}}},
    {"admin", 1, {{1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}, {6, 6}, {7, 6}}}};

// One chain of each kind over marks whose diary tells the unit. "Topo" has diaries for columns.
constexpr char const* kChains = R"xml(<moxZYNCollection>
  <moxSQLDataSource name="Testemunhas">
    <Command type="0">select n.id, n.id_unidade, n.diario, n.bimestre, n.nota from escola_notas n</Command>
    <unidadeColumn tableName="n" columnName="id_unidade" allownull="0"/>
    <Columns>
      <Column tableName="n" columnName="id" columnNameOrigin="id" Type="2"/>
      <Column tableName="n" columnName="id_unidade" columnNameOrigin="id_unidade" Type="2"/>
      <Column tableName="n" columnName="diario" columnNameOrigin="diario" Type="1"/>
      <Column tableName="n" columnName="bimestre" columnNameOrigin="bimestre" Type="2"/>
      <Column tableName="n" columnName="nota" columnNameOrigin="nota" Type="4"/>
    </Columns>
    <Filters><column>
      <moxIntegralInFilter tableName="n" columnName="id_unidade" description="Unidades"/>
    </column></Filters>
  </moxSQLDataSource>
  <moxAggregationDataSource name="Diários" dataSource="Testemunhas" countColumn="1">
    <moxDataMatrixAggregator>
      <Indexes><Index name="diario"/></Indexes>
      <Functions>
        <moxDoubleAvg source="nota" target="media"/>
        <moxTextLast source="diario" target="ultimo"/>
      </Functions>
    </moxDataMatrixAggregator>
  </moxAggregationDataSource>
  <moxSorterDataSource name="Em ordem" source="Diários"><column name="diario" dir="desc"/></moxSorterDataSource>
  <moxExpressionDataSource name="Dobros" source="Em ordem">
    <expressions><moxColumnExpression name="dobro" type="1">media(0)*2</moxColumnExpression></expressions>
  </moxExpressionDataSource>
  <moxDataSourcePivoting name="Cruzada" source="Testemunhas">
    <columns><column source="bimestre"/></columns>
    <rows><row source="diario"/></rows>
    <cells><cell source="nota" aggregation="moxDoubleAvg"/></cells>
  </moxDataSourcePivoting>
  <moxDataSourcePivoting name="Topo" source="Testemunhas">
    <columns><column source="diario"/></columns>
    <rows><row source="bimestre"/></rows>
    <cells><cell source="nota" aggregation="moxDoubleAvg"/></cells>
  </moxDataSourcePivoting>
  <moxUnionDataSource name="Abaixo"><sources>
    <source name="Diários"><moxDataMatrixTextColumn name="ultimo"/></source>
    <source name="Testemunhas"><moxDataMatrixTextColumn name="diario"/></source>
  </sources></moxUnionDataSource>
  <moxJoinDataSource name="Ao lado"><sources>
    <source name="Testemunhas">
      <columns><moxDataMatrixTextColumn columnName="diario" acolumnAlias="diario"/></columns><joins/>
    </source>
    <source name="Diários">
      <columns><moxDataMatrixTextColumn columnName="ultimo" acolumnAlias="ultimo"/></columns>
      <joins><join columnNameOrigin="diario" sourceNameRelac="Testemunhas" columnNameRelac="diario"
                   columnNameJoin="diario"/></joins>
    </source>
  </sources></moxJoinDataSource>
</moxZYNCollection>)xml";

Names const kOwnChains{"Diários", "Em ordem", "Dobros", "Cruzada", "Topo", "Abaixo", "Ao lado"};

std::string textOf(std::filesystem::path const& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool isDerived(moxZYNItem const& item) {
  static Names const kClasses{"moxAggregationDataSource", "moxSorterDataSource",
                              "moxUnionDataSource",       "moxExpressionDataSource",
                              "moxDataSourcePivoting",    "moxJoinDataSource"};
  return std::find(kClasses.begin(), kClasses.end(), item.name()) != kClasses.end();
}

Units unitsOf(Person const& person) {
  Units units;
  for (auto const& unit : person.units) {
    units.insert(unit.id);
  }
  return units;
}

void addUnitsIn(std::string const& text, Units& units) {
  static std::regex const kToken("\\[U([0-9]+)\\]");
  for (std::sregex_iterator found(text.begin(), text.end(), kToken), end; found != end; ++found) {
    units.insert(std::stoi((*found)[1]));
  }
}

/// The units whose tokens stand in a name of a column or in a text.
Units unitsIn(moxDataMatrix const& matrix) {
  Units units;
  for (unsigned int place = 0; place < matrix.columnCount(); ++place) {
    auto const column = matrix.columnAt(place);
    addUnitsIn(column->getName(), units);
    if (auto const texts = std::dynamic_pointer_cast<moxDataMatrixTextColumn const>(column)) {
      for (unsigned int row = 0; row < texts->numRows(); ++row) {
        addUnitsIn(texts->getValue(row), units);
      }
    }
  }
  return units;
}

void addValues(moxRunPart const& part, Units& units) {
  for (auto const& value : part.values) {
    units.insert(std::stoi(value.text));
  }
}

/// The units that conditions bind; a head office that others belong to is none of them.
Units boundUnits(moxRunReport const& report) {
  Units units;
  for (auto const& source : report.sources) {
    for (auto const& statement : source.statements) {
      for (auto const& part : statement.conditions) {
        if (part.column.ends_with("id_unidade")) {
          addValues(part, units);
        }
      }
    }
  }
  return units;
}

/// A host on a school's database that knows the example's definitions and the chains above.
class SchoolHost {
 public:
  explicit SchoolHost(std::string const& url) : host_(url) {
    std::set<std::filesystem::path> paths;
    for (auto const& file : std::filesystem::directory_iterator(TEST_EXAMPLE_DEFINITIONS_DIR)) {
      paths.insert(file.path());
    }
    for (auto const& path : paths) {
      add(textOf(path));
    }
    add(kChains);
  }

  TestHost& host() { return host_; }

  /// Of all chains, the example's first.
  Names const& chains() const { return chains_; }

  void logIn(Person const& person) {
    host_.logIn({.id = 1,
                 .login = person.login,
                 .defaultUnit = person.defaultUnit,
                 .units = person.units,
                 .worksByUnits = true});
  }

  /// Without units for the default unit.
  DefinitionRun newRun(std::string const& name, Units const& units = {}) {
    DefinitionRun run(host_.application(), host_.application().sessions(), name);
    run.keepReport(DefinitionRun::Report::kKept);
    run.setUnits({units.begin(), units.end()});
    return run;
  }

  /// Of each chain in turn, for those units.
  std::vector<std::shared_ptr<moxDataMatrix>> results(Units const& units) {
    std::vector<std::shared_ptr<moxDataMatrix>> made;
    for (auto const& name : chains_) {
      made.push_back(newRun(name, units).run());
    }
    return made;
  }

 private:
  void add(std::string const& text) {
    for (auto const& item : shareDefinitions(host_, text)->items().get()) {
      if (isDerived(*item)) {
        chains_.push_back(item->description());
      }
    }
  }

  TestHost host_;
  Names chains_;
};

void buildSchool(TestDatabase& database) {
  escola::buildExample(database.connection(),
                       {database.url(), "", escola::parseScale("tiny"), {}, false});
}

/// The school is made once for each database, as a server takes seconds for it.
class DerivedUnits : public ::testing::TestWithParam<DatabaseKind> {
 protected:
  static void TearDownTestSuite() { schools().clear(); }

  static TestDatabase& school() {
    auto& place = schools()[GetParam()];
    if (!place) {
      place = std::make_unique<TestDatabase>(GetParam());
      buildSchool(*place);
    }
    return *place;
  }

  /// Runs with those filters, and looks into all that comes out.
  void expectOnly(Units const& allowed, std::string const& chain, Units const& asked,
                  Names const& filters = {}) {
    auto run = on_.newRun(chain, asked);
    run.setFilters(filters);
    auto const result = run.run();
    ASSERT_TRUE(result);
    EXPECT_THAT(allowed, testing::IsSupersetOf(unitsIn(*result)));
    Units told;
    addUnitsIn(explanationJson(explain(run, DefinitionRun::Report::kKept, "")), told);
    EXPECT_THAT(allowed, testing::IsSupersetOf(told));
    auto const bound = boundUnits(run.report());
    EXPECT_THAT(allowed, testing::IsSupersetOf(bound));
    EXPECT_FALSE(bound.empty()) << "the run is not restricted";
  }

  SchoolHost on_{school().url()};

 private:
  static std::map<DatabaseKind, std::unique_ptr<TestDatabase>>& schools() {
    static std::map<DatabaseKind, std::unique_ptr<TestDatabase>> all;
    return all;
  }
};

MOX_ON_EVERY_DATABASE(DerivedUnits);

TEST_P(DerivedUnits, EveryUserSeesHisDefaultUnitAloneInEveryChain) {
  for (auto const& person : kPeople) {
    on_.logIn(person);
    for (auto const& chain : on_.chains()) {
      SCOPED_TRACE(std::string(person.login) + ": " + chain);
      expectOnly({person.defaultUnit}, chain, {});
    }
  }
}

TEST_P(DerivedUnits, UnitsThatAreAskedForAreAllThatIsSeen) {
  for (auto const& person : kPeople) {
    on_.logIn(person);
    for (auto const& chain : on_.chains()) {
      SCOPED_TRACE(std::string(person.login) + ": " + chain);
      expectOnly(unitsOf(person), chain, unitsOf(person));
    }
  }
}

TEST_P(DerivedUnits, NoFilterOfAnInputWidensAChain) {
  for (auto const& person : kPeople) {
    on_.logIn(person);
    for (auto const& chain : kOwnChains) {
      SCOPED_TRACE(std::string(person.login) + ": " + chain);
      expectOnly({person.defaultUnit}, chain, {}, {"id_unidade=1,2,3,4,5,6,7"});
    }
  }
}

TEST_P(DerivedUnits, AForeignUnitIsRefusedForEveryChain) {
  on_.logIn(kPeople[1]);
  for (auto const& chain : on_.chains()) {
    auto const failure = failureOf([&] { on_.newRun(chain, {3, 4}); });
    ASSERT_TRUE(failure) << chain;
    EXPECT_EQ(failure->message, "the user has no right to the unit 4") << chain;
  }
}

TEST_P(DerivedUnits, AUserWithoutUnitsSeesNoUnitOfAnyChain) {
  on_.logIn({"sem_unidade", 0, {}});
  for (auto const& chain : on_.chains()) {
    auto run = on_.newRun(chain);
    std::shared_ptr<moxDataMatrix> result;
    auto const failure = failureOf([&] { result = run.run(); });
    EXPECT_TRUE(failure || (result && unitsIn(*result).empty())) << chain;
  }
}

/// So that the tests above can fail.
TEST_P(DerivedUnits, WitnessesReachTheEndOfEachChain) {
  on_.logIn(kPeople.back());
  for (auto const& chain : kOwnChains) {
    auto const seen = unitsIn(*on_.newRun(chain, unitsOf(kPeople.back())).run());
    EXPECT_GE(seen.size(), 5U) << chain;
  }
  EXPECT_GE(unitsIn(*on_.newRun("Movimento financeiro", unitsOf(kPeople.back())).run()).size(), 5U);
  EXPECT_GT(on_.chains().size(), 2 * kOwnChains.size());
}

/// Tests that take rows away.
class DerivedUnitsAnew : public OnEveryDatabase {
 protected:
  DerivedUnitsAnew() { buildSchool(db); }

  /// What is of another unit goes, or of another head office, until only these units are left.
  void keepOnly(std::string const& units, int headOffice) {
    for (auto const* table : {"pagamentos", "faturas", "frequencias", "notas", "matriculas"}) {
      db.run("delete from escola_" + std::string(table) + " where id_unidade not in (" + units +
             ")");
    }
    db.run(
        "delete from escola_turmasdisciplinas where id_turma in (select id from escola_turmas "
        "where id_unidade not in (" +
        units + "))");
    db.run("delete from escola_turmas where id_unidade not in (" + units + ")");
    db.run("delete from escola_cursos where id_unidadematriz <> " + std::to_string(headOffice));
  }

  void expectTheSameWithoutTheOthers(Person const& person, std::string const& units) {
    std::vector<std::shared_ptr<moxDataMatrix>> expected;
    unsigned int rows = 0;
    {
      SchoolHost on(db.url());
      on.logIn(person);
      expected = on.results(unitsOf(person));
    }
    keepOnly(units, person.units[0].headOffice);
    SchoolHost on(db.url());
    on.logIn(person);
    auto const actual = on.results(unitsOf(person));
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_TRUE(sameMatrix(*actual[i], *expected[i])) << on.chains()[i];
      rows += expected[i]->rowCount();
    }
    EXPECT_GT(rows, 1000U);
  }
};

MOX_ON_EVERY_DATABASE(DerivedUnitsAnew);

TEST_P(DerivedUnitsAnew, RowsOfOtherUnitsTakeNoPartInAnyFigure) {
  expectTheSameWithoutTheOthers(kPeople[2], "3, 4");
}

TEST_P(DerivedUnitsAnew, RowsOfAnotherHeadOfficeTakeNoPartInAnyFigure) {
  expectTheSameWithoutTheOthers(kPeople[4], "6, 7");
}

}  // namespace

}  // namespace mox_test
