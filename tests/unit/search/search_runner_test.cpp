#include "mox/zyn/search/search_runner.h"

#include <stdexcept>

#include "core/session/session.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_row.h"
#include "mox/zyn/search/search_run_control.h"
#include "unit/search/runner_fixture.h"
#include "zyn/search/search_runner.h"

namespace {

using mox_test::dates;
using mox_test::doubles;
using mox_test::ints;
using mox_test::isMatrix;
using mox_test::matrix;
using mox_test::moment;
using mox_test::null;
using mox_test::texts;
using search_test::Columns;
using search_test::failureOf;
using search_test::FakeGroup;
using search_test::FakeMember;
using search_test::FakeSource;
using search_test::Texts;

/// A query over four pupils; the definition declares other columns first than the statement.
constexpr char const* kPupils = R"(<Command>select * from alunos</Command><Columns>
  <Column columnName="nome" VisibleName="Nome" ColumnWidth="200" Visible="1" Type="1"/>
  <Column columnName="id" VisibleName="Código" ColumnWidth="40" Visible="0" Type="2"/>
  <Column columnName="nota" VisibleName="Nota" ColumnWidth="60" Avaliable="1" Type="4">
    <Formatters Visual="moxDecimalFormatter"><Visual precision="2" separator=","/></Formatters>
  </Column>
  <Column columnName="nascido" VisibleName="Nascido" ColumnWidth="80" Visible="1" Type="5"/>
</Columns>)";

class SearchRunner : public search_test::RunnerTest {
 protected:
  SearchRunner() {
    auto& database = host_.database();
    database.execute("create table alunos (id int, nome text, nota double, nascido date)");
    database.execute(
        "insert into alunos values (3, 'Rui', 7.125, '2001-02-03'), (1, 'Ana', null, null),"
        " (2, null, 10, '1999-12-31'), (4, 'Bia', 7.5, '2000-01-01')");
  }

  /// Run, and sorted as the element says.
  std::shared_ptr<moxSearchRunner> pupils(std::string const& ordering = "") {
    auto const search = searchOf("<General>" + ordering + "</General>");
    search->setDataSource(query(kPupils));
    auto runner = runnerOf(search);
    runner->performSql();
    return runner;
  }

  /// What a fake source's run is given.
  struct Spy {
    std::vector<std::pair<std::string, Texts>> filters;  // by the names that are asked for
    std::vector<int> units;
    bool fails = false;
    Texts targets;
  };

  using Context = std::shared_ptr<moxDataSourceExecutionContext>;

  /// A run of two rows that asks for the filters under `names`.
  FakeSource::Work spying(Texts const& names) {
    return [this, names](Context const& context, std::string const& target) {
      for (auto const& name : names) {
        spy_.filters.emplace_back(name, Texts{});
        for (auto const& filter : context->getDataSourceFilters(name)) {
          spy_.filters.back().second.push_back(filter->getColumnName());
        }
      }
      spy_.units = context->getIdUnidadeNegocio();
      spy_.targets.push_back(target);
      return !spy_.fails &&
             context->registerDataMatrix(target, matrix({{"b", ints(1, 2)}, {"a", ints(3, 4)}}));
    };
  }

  std::shared_ptr<FakeGroup> spyingGroup(std::string const& output, std::string const& filters,
                                         Texts const& asked) {
    auto made = std::make_shared<FakeGroup>(
        "grupo", Columns{{"a", moxDataMatrixTypes::Int}, {"b", moxDataMatrixTypes::Int}},
        spying(asked));
    made->setOutputSource(output);
    made->setFilterSource(filters);
    return made;
  }

  Spy spy_;
};

using Asked = std::vector<std::pair<std::string, Texts>>;

}  // namespace

TEST_F(SearchRunner, IsANewOneOnEveryCall) {
  auto const runner = newRunner();
  EXPECT_EQ(runner->name(), "moxSearchRunner");
  EXPECT_NE(newRunner(), runner);
}

TEST_F(SearchRunner, BeforeItsSearchEverythingIsNeutral) {
  auto const runner = newRunner();
  EXPECT_EQ(runner->getSearch(), nullptr);
  EXPECT_EQ(runner->columnIndex("id"), -1);
  EXPECT_TRUE(runner->columnsHeaders().empty());
  EXPECT_EQ(runner->getColumn(0), nullptr);
  EXPECT_EQ(runner->getColumnWidth(0), 100);
  EXPECT_THROW(runner->performSql(), std::logic_error);
  EXPECT_THROW(runner->load({}), std::invalid_argument);
  EXPECT_THROW(runner->pushFilter({}), std::invalid_argument);
  EXPECT_THROW(runner->pushFixedFilter({}), std::invalid_argument);
}

TEST_F(SearchRunner, BeforeTheFirstRunEveryCellIsNeutral) {
  auto const runner = runnerOf(searchOn(query(kPupils)));
  EXPECT_EQ(runner->getDataMatrix(), nullptr);
  EXPECT_EQ(runner->rowCount(), 0u);
  EXPECT_EQ(runner->getVisibleValue(0, 0), "");
  EXPECT_EQ(runner->getIcon(0, 0), "");
  EXPECT_FALSE(runner->columnHasIcon(0));
  EXPECT_EQ(runner->getInt(0, 0), 0);
  EXPECT_EQ(runner->getString(0, 0), "");
  EXPECT_EQ(runner->getDouble(0, 0), 0.0);
  EXPECT_EQ(runner->getDateTime(0, 0), datetime_t());
  EXPECT_EQ(runner->getRow(0), nullptr);
}

TEST_F(SearchRunner, LoadingTellsThePlacesOfTheColumns) {
  auto const search = searchOn(query(kPupils));
  auto const runner = runnerOf(search);
  EXPECT_EQ(runner->getSearch(), search);
  EXPECT_EQ(runner->columnIndex("nome"), 0);
  EXPECT_EQ(runner->columnIndex("nascido"), 3);
  EXPECT_EQ(runner->columnIndex("Nome"), -1);
  EXPECT_EQ(runner->columnIndex(""), -1);
}

TEST_F(SearchRunner, ColumnsWithoutAClassAreLeftOutAndTheirPlacesSkipped) {
  Columns const columns{{"a", moxDataMatrixTypes::Int},
                        {"blob", moxDataMatrixTypes::Blob},
                        {"odd", static_cast<moxDataMatrixTypes::Types>(7)},
                        {"b", moxDataMatrixTypes::Date}};
  auto const runner = runnerOf(searchOn(std::make_shared<FakeSource>("fonte", columns)));
  EXPECT_EQ(runner->columnIndex("a"), 0);
  EXPECT_EQ(runner->columnIndex("blob"), -1);
  EXPECT_EQ(runner->columnIndex("odd"), -1);
  EXPECT_EQ(runner->columnIndex("b"), 3);
}

TEST_F(SearchRunner, ASecondSearchAddsToThePlaces) {
  auto const runner = runnerOf(searchOn(query(kPupils)));
  runner->load(
      searchOn(query("<Command>x</Command><Columns><Column columnName=\"outra\"/>"
                     "<Column columnName=\"nome\"/></Columns>")));
  EXPECT_EQ(runner->columnIndex("outra"), 0);
  EXPECT_EQ(runner->columnIndex("nome"), 1);
  EXPECT_EQ(runner->columnIndex("nascido"), 3);
}

TEST_F(SearchRunner, LoadingFailsWithTheSearchsSource) {
  auto const search = newSearch();
  search->setDataSourceExterno("nenhuma", {});
  auto const runner = newRunner();
  EXPECT_EQ(failureOf([&] { runner->load(search); }).message, "Fonte de dados externa inválida");
}

TEST_F(SearchRunner, ASearchWithoutASourceCannotBeRun) {
  auto const runner = runnerOf(newSearch());
  EXPECT_EQ(failureOf([&] { runner->performSql(); }).message, "Fonte de dados externa inválida");
  EXPECT_TRUE(runner->columnsHeaders().empty());
}

TEST_F(SearchRunner, TheColumnsStandAsTheyAreDeclared) {
  EXPECT_THAT(pupils()->getDataMatrix(),
              isMatrix({{"nome", texts("Rui", "Ana", null, "Bia")},
                        {"id", ints(3, 1, 2, 4)},
                        {"nota", doubles(7.125, null, 10.0, 7.5)},
                        {"nascido", dates("2001-02-03", null, "1999-12-31", "2000-01-01")}}));
}

TEST_F(SearchRunner, WithoutAnInitialOrderTheRowsKeepThatOfTheQuery) {
  EXPECT_EQ(shown(*pupils(), 1), (Texts{"3", "1", "2", "4"}));
}

TEST_F(SearchRunner, AnAscendingInitialOrderPutsNullsFirst) {
  auto const runner = pupils("<InitialOrdering columnName=\"nota\" direction=\"asc\"/>");
  EXPECT_EQ(shown(*runner, 1), (Texts{"1", "3", "4", "2"}));
  EXPECT_EQ(shown(*runner, 2), (Texts{"", "7,12", "7,50", "10,00"}));
}

TEST_F(SearchRunner, ADescendingInitialOrderPutsNullsLast) {
  auto const runner = pupils("<InitialOrdering columnName=\"nome\" direction=\"desc\"/>");
  EXPECT_EQ(shown(*runner, 0), (Texts{"Rui", "Bia", "Ana", ""}));
}

TEST_F(SearchRunner, AnInitialOrderThatTheSourceLacksSortsNothing) {
  EXPECT_EQ(shown(*pupils("<InitialOrdering columnName=\"idade\" direction=\"asc\"/>"), 1),
            (Texts{"3", "1", "2", "4"}));
}

TEST_F(SearchRunner, CellsWithoutAFormatterAreWrittenByTheirKind) {
  auto const runner = pupils();
  EXPECT_EQ(runner->getVisibleValue(0, 0), "Rui");
  EXPECT_EQ(runner->getVisibleValue(0, 1), "3");
  EXPECT_EQ(runner->getVisibleValue(0, 3), "03/02/2001");
  EXPECT_EQ(runner->getVisibleValue(1, 3), "");
}

TEST_F(SearchRunner, CellsOutsideAreEmpty) {
  auto const runner = pupils();
  EXPECT_EQ(runner->rowCount(), 4u);
  EXPECT_EQ(runner->getVisibleValue(3, 1), "4");
  EXPECT_EQ(runner->getVisibleValue(runner->rowCount(), 1), "");
  EXPECT_EQ(runner->getVisibleValue(4294967295u, 1), "");
  EXPECT_EQ(runner->getVisibleValue(0, 4), "");
  EXPECT_EQ(runner->getVisibleValue(0, 4294967295u), "");
}

TEST_F(SearchRunner, TypedReadsGiveTheCell) {
  auto const runner = pupils();
  EXPECT_EQ(runner->getString(0, 0), "Rui");
  EXPECT_EQ(runner->getInt(3, 1), 4);
  EXPECT_EQ(runner->getDouble(0, 2), 7.125);
  EXPECT_EQ(runner->getDateTime(2, 3), moment("1999-12-31"));
}

TEST_F(SearchRunner, TypedReadsOfNullsAreEmpty) {
  auto const runner = pupils();
  EXPECT_EQ(runner->getString(2, 0), "");
  EXPECT_EQ(runner->getDouble(1, 2), 0.0);
  EXPECT_EQ(runner->getDateTime(1, 3), datetime_t());
}

TEST_F(SearchRunner, TypedReadsOutsideAndOfAnotherKindAreEmpty) {
  auto const runner = pupils();
  for (int const column : {0, 4, -1, 2147483647}) {
    EXPECT_EQ(runner->getInt(0, column), 0) << column;
    EXPECT_EQ(runner->getDouble(0, column), 0.0) << column;
    EXPECT_EQ(runner->getDateTime(0, column), datetime_t()) << column;
    EXPECT_EQ(runner->getString(0, column == 0 ? 1 : column), "") << column;
  }
  EXPECT_EQ(runner->getInt(4, 1), 0);
  EXPECT_EQ(runner->getDouble(-1, 2), 0.0);
  EXPECT_EQ(runner->getDateTime(-1, 3), datetime_t());
}

TEST_F(SearchRunner, ARowIsACursorOfItsOwn) {
  auto const runner = pupils();
  auto const row = runner->getRow(2);
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->getIterator(1)->pos(), 2u);
  EXPECT_NE(runner->getRow(2), row);
  EXPECT_EQ(runner->getRow(4), nullptr);
  EXPECT_EQ(runner->getRow(-1), nullptr);
}

TEST_F(SearchRunner, HeadersAreThoseOfColumnsThatAUserSeesOrMayChoose) {
  EXPECT_EQ(runnerOf(searchOn(query(kPupils)))->columnsHeaders(),
            (Texts{"Nome", "Nota", "Nascido"}));
}

TEST_F(SearchRunner, WidthsAreThoseOfTheDefinition) {
  auto const runner = runnerOf(searchOn(query(kPupils)));
  EXPECT_EQ(runner->getColumnWidth(0), 200);
  EXPECT_EQ(runner->getColumnWidth(3), 80);
  EXPECT_EQ(runner->getColumnWidth(4), 100);
  EXPECT_EQ(runner->getColumnWidth(-1), 100);
  EXPECT_EQ(runner->getColumn(2)->getColumnName(), "nota");
  EXPECT_EQ(runner->getColumn(4), nullptr);
}

TEST_F(SearchRunner, FiltersStayUntilTheyAreCleared) {
  auto const runner = runnerOf(searchOn(query(kPupils)));
  runner->pushFilter(equals("id", 4));
  runner->performSql();
  EXPECT_EQ(shown(*runner, 0), Texts{"Bia"});
  runner->performSql();
  EXPECT_EQ(shown(*runner, 0), Texts{"Bia"});
  runner->pushFixedFilter(equals("id", 3));
  runner->performSql();
  EXPECT_EQ(runner->rowCount(), 0u);
  EXPECT_EQ(runner->getRow(0), nullptr);
  runner->clearFilters();
  runner->performSql();
  EXPECT_EQ(runner->rowCount(), 4u);
}

TEST_F(SearchRunner, AFailedRunKeepsTheRowsBefore) {
  auto const runner = pupils();
  auto const rows = runner->getDataMatrix();
  runner->pushFilter(equals("nenhuma", 1));
  EXPECT_NE(failureOf([&] { runner->performSql(); }).message, "");
  EXPECT_EQ(runner->getDataMatrix(), rows);
  EXPECT_EQ(runner->getVisibleValue(0, 0), "Rui");
  runner->clearFilters();
  runner->performSql();
  EXPECT_NE(runner->getDataMatrix(), rows);
}

TEST_F(SearchRunner, ASourceThatIsNoQueryFails) {
  auto const source = std::make_shared<FakeSource>("soma", Columns{}, spying({}));
  auto const runner = runnerOf(searchOn(source));
  EXPECT_EQ(failureOf([&] { runner->performSql(); }).message,
            "Não localizado fonte de dados do tipo SQL.");
  EXPECT_EQ(runner->getDataMatrix(), nullptr);
  runner->pushFilter(equals("a", 1));
  EXPECT_EQ(failureOf([&] { runner->performSql(); }).message,
            "Não localizado fonte de dados do tipo SQL.");
  EXPECT_EQ(spy_.targets.size(), 1u);
}

TEST_F(SearchRunner, ASourceThatGivesFalseFailsByItsName) {
  spy_.fails = true;
  auto const runner = runnerOf(searchOn(spyingGroup("saida", "saida", {})));
  EXPECT_EQ(failureOf([&] { runner->performSql(); }).message, "Falha: grupo");
}

TEST_F(SearchRunner, AFilterOfAGroupGoesToItsOutput) {
  auto const runner = runnerOf(searchOn(spyingGroup("saida", "saida", {"saida", "grupo"})));
  runner->pushFilter(equals("a", 1));
  runner->pushFixedFilter(equals("b", 1));
  runner->performSql();
  EXPECT_EQ(spy_.filters, (Asked{{"saida", {"a", "b"}}, {"grupo", {}}}));
  EXPECT_EQ(spy_.targets, Texts{"grupo"});
}

TEST_F(SearchRunner, AFilterReachesTheOutputOfAGroupWhoseFiltersGoElsewhere) {
  auto const group = spyingGroup("saida", "outra", {"saida", "grupo->saida", "outra"});
  auto const runner = runnerOf(searchOn(group));
  runner->pushFilter(equals("a", 1));
  runner->performSql();
  EXPECT_EQ(spy_.filters, (Asked{{"saida", {"a"}}, {"grupo->saida", {"a"}}, {"outra", {}}}));
}

TEST_F(SearchRunner, AGroupIsShownByTheQueryThatItPutsOut) {
  auto const group = spyingGroup("saida", "saida", {});
  group->dataSources().add(std::make_shared<FakeMember>(
      "saida", query("<Command>x</Command><Columns><Column columnName=\"a\" Type=\"2\" "
                     "VisibleName=\"A\" Visible=\"1\"><Formatters Visual=\"moxIntegralFormatter\">"
                     "<Visual prefix=\"n. \"/></Formatters></Column></Columns>")));
  auto const runner = runnerOf(searchOn(group));
  runner->performSql();
  EXPECT_THAT(runner->getDataMatrix(), isMatrix({{"a", ints(3, 4)}, {"b", ints(1, 2)}}));
  EXPECT_EQ(shown(*runner, 0), (Texts{"n. 3", "n. 4"}));
  EXPECT_EQ(shown(*runner, 1), (Texts{"1", "2"}));  // no column of the query
  EXPECT_EQ(runner->columnsHeaders(), Texts{"A"});
  EXPECT_EQ(runner->columnIndex("b"), 1);
}

TEST_F(SearchRunner, ADeclaredListWithoutColumnsDropsThemAll) {
  auto const group = std::make_shared<FakeGroup>("grupo", Columns{}, spying({}));
  auto const runner = runnerOf(searchOn(group));
  runner->performSql();
  ASSERT_NE(runner->getDataMatrix(), nullptr);
  EXPECT_EQ(runner->getDataMatrix()->columnCount(), 0u);
  EXPECT_EQ(runner->rowCount(), 0u);
  EXPECT_EQ(runner->getVisibleValue(0, 0), "");
}

TEST_F(SearchRunner, TheSearchOfUnitsRunsForAllUnitsOfTheUser) {
  host_.logIn({.id = 7, .defaultUnit = 5, .units = {{3, 1}, {5, 1}}});
  auto const runner = runnerOf(searchOn(spyingGroup("s", "s", {}), "moxPesqUnidades"));
  runner->performSql();
  EXPECT_EQ(spy_.units, (std::vector<int>{3, 5}));
}

TEST_F(SearchRunner, AnyOtherSearchRunsForTheUnitOfTheSession) {
  host_.logIn({.id = 7, .defaultUnit = 5, .units = {{3, 1}, {5, 1}}});
  auto const runner = runnerOf(searchOn(spyingGroup("s", "s", {}), "moxPesqUnidades2"));
  runner->performSql();
  EXPECT_EQ(spy_.units, std::vector<int>{5});
}

TEST_F(SearchRunner, WithoutAUserTheSearchOfUnitsHasNone) {
  auto const runner = runnerOf(searchOn(spyingGroup("s", "s", {}), "moxPesqUnidades"));
  runner->performSql();
  EXPECT_TRUE(spy_.units.empty());
}

// A run may rename the filters that a manager passes on, and leave them so when it fails.
TEST_F(SearchRunner, AFilterIsCalledAsBeforeAfterTheRun) {
  for (bool const fails : {false, true}) {
    auto const group = std::make_shared<FakeGroup>(
        "grupo", Columns{}, [fails](Context const& context, std::string const& target) {
          for (auto const& filter : context->getDataSourceFilters("saida")) {
            std::const_pointer_cast<moxDataMatrixSQLFilter>(filter)->setColumnName("", "outra");
          }
          return !fails && context->registerDataMatrix(target, matrix({}));
        });
    group->setOutputSource("saida");
    auto const runner = runnerOf(searchOn(group));
    auto const filter = equals("id", 1);
    filter->setColumnName("t", "id");
    runner->pushFilter(filter);
    EXPECT_EQ(failureOf([&] { runner->performSql(); }).message.empty(), !fails);
    EXPECT_EQ(filter->getTableName(), "t");
    EXPECT_EQ(filter->getColumnName(), "id");
  }
}

TEST_F(SearchRunner, CellsThatAreWrittenLaterAreSeen) {
  auto const runner = pupils();
  auto const matrix = runner->getDataMatrix();
  std::dynamic_pointer_cast<moxIteratorBase<int>>(matrix->columnAt(1)->begin())->set(77);
  EXPECT_EQ(runner->getVisibleValue(0, 1), "77");
  matrix->appendNullRow();
  std::dynamic_pointer_cast<moxDataMatrixTextColumn>(matrix->columnAt(0))->appendValue("");
  EXPECT_EQ(runner->rowCount(), 5u);
  EXPECT_EQ(runner->getVisibleValue(4, 1), "");
  matrix->clearData();
  EXPECT_EQ(runner->getVisibleValue(0, 1), "");
  EXPECT_EQ(runner->getInt(0, 1), 0);
}

TEST_F(SearchRunner, TheRowsOfAnEarlierSearchStayUntilTheNextRun) {
  auto const runner = pupils();
  runner->load(
      searchOn(query("<Command>select 9 as x</Command><Columns>"
                     "<Column columnName=\"x\" Type=\"2\"/></Columns>")));
  EXPECT_EQ(shown(*runner, 0), (Texts{"Rui", "Ana", "", "Bia"}));
  runner->performSql();
  EXPECT_EQ(shown(*runner, 0), Texts{"9"});
}

TEST_F(SearchRunner, RowsCanBeSortedAnew) {
  auto const runner = pupils();
  auto& control = dynamic_cast<moxSearchRunControl&>(*runner);
  EXPECT_TRUE(control.sortRows({{"nota", true}, {"id", false}}));
  EXPECT_EQ(shown(*runner, 1), (Texts{"2", "4", "3", "1"}));
  EXPECT_EQ(shown(*runner, 2), (Texts{"10,00", "7,50", "7,12", ""}));
  EXPECT_FALSE(control.sortRows({{"id", false}, {"nenhuma", false}}));
  EXPECT_EQ(shown(*runner, 1), (Texts{"2", "4", "3", "1"}));
}

TEST_F(SearchRunner, BeforeTheFirstRunThereIsNothingToSort) {
  auto const runner = runnerOf(searchOn(query(kPupils)));
  EXPECT_FALSE(dynamic_cast<moxSearchRunControl&>(*runner).sortRows({{"id", false}}));
}

TEST_F(SearchRunner, AHostMayFurnishTheContextAndChooseTheUnits) {
  auto const runner =
      runnerOf(searchOn(spyingGroup("saida", "saida", {"saida"}), "moxPesqUnidades"));
  runner->pushFilter(equals("a", 1));
  auto const context = host_.get<moxDataSourceExecutionContext>("moxDataSourceExecutionContext");
  context->setDataSourceFilters("saida", {equals("b", 1)});
  dynamic_cast<moxSearchRunControl&>(*runner).performSqlIn(context, {4, 9});
  EXPECT_EQ(spy_.filters, (Asked{{"saida", {"b", "a"}}}));
  EXPECT_EQ(spy_.units, (std::vector<int>{4, 9}));
  EXPECT_EQ(context->getDataMatrix("grupo"), runner->getDataMatrix());
}

TEST_F(SearchRunner, AFilterNarrowsTheQueryThatAGroupPutsOut) {
  std::string const member =
      "<moxDadoDataSource name=\"%\"><moxSQLDataSource name=\"%\"><Command>select * from alunos"
      "</Command><Columns><Column columnName=\"id\" Type=\"2\"/><Column columnName=\"nome\" "
      "Type=\"1\"/></Columns></moxSQLDataSource></moxDadoDataSource>";
  auto const named = [&](std::string text, std::string const& name) {
    for (auto at = text.find('%'); at != std::string::npos; at = text.find('%')) {
      text.replace(at, 1, name);
    }
    return text;
  };
  for (std::string const filterSource : {"saida", "entrada", ""}) {
    auto const search = searchOf(
        "<General/><dataSource><moxGroupDataSource name=\"grupo\" outputSource=\"saida\" "
        "filterSource=\"" +
        filterSource + "\"><DataSources>" + named(member, "entrada") + named(member, "saida") +
        "</DataSources></moxGroupDataSource></dataSource>");
    ASSERT_NE(search->getSqlDataSource(), nullptr);
    EXPECT_EQ(search->getSqlDataSource()->getName(), "saida");
    auto const runner = runnerOf(search);
    runner->pushFilter(equals("id", 4));
    runner->performSql();
    EXPECT_THAT(runner->getDataMatrix(), isMatrix({{"id", ints(4)}, {"nome", texts("Bia")}}))
        << filterSource;
  }
}
