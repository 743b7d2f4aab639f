#include "core/run/unit_confinement.h"

#include "mox/zyn/datasources/sql_data_source.h"
#include "unit/core/error_message.h"
#include "unit/core/run/run_fixture.h"

namespace mox::core::run_test {
namespace {

class UnitConfinementTest : public RunTest {
 protected:
  /// What is left of a filter of units 3 and 4, head office 1, on a definition whose unit column is
  /// called `name` in the result and `origin` in its table.
  FilterArgument confined(std::string const& className, std::string const& column,
                          FilterValue value, std::string const& name = "unidade",
                          std::string const& origin = "id_unidade") {
    auto const specification = host_.get<moxFilterSpecification>(className);
    specification->setTableName("qualquer");
    specification->setColumn(column);
    UnitConfinement const confinement({definition(name, origin)}, {{3, 4}, 1});
    return confinement.confined({{"Alunos", specification}, std::move(value), "texto"});
  }

  FilterList<int> units(FilterArgument const& argument) {
    EXPECT_TRUE(argument.keptToUnits);
    return std::get<FilterList<int>>(argument.value);
  }

  std::shared_ptr<moxSQLDataSource> definition(std::string const& name, std::string const& origin) {
    auto source = host_.get<moxSQLDataSource>("moxSQLDataSource");
    moxDatabaseConnection::FieldInfo info;
    info.name = name;
    info.columnName = origin;
    info.tableAlias = "a";
    source->setUnidadeColumn(source->createColumn(&info), false);
    return source;
  }
};

using Units = FilterList<int>;

TEST_F(UnitConfinementTest, OneValueIsKeptWhenItIsAUnitOfTheRun) {
  EXPECT_EQ(units(confined("moxIntegralUniqueFilter", "id_unidade", FilterOne<int>{3})),
            Units{{3}});
  EXPECT_EQ(units(confined("moxIntegralUniqueFilter", "id_unidade", FilterOne<int>{5})), Units{});
}

TEST_F(UnitConfinementTest, RangesBecomeTheUnitsWithin) {
  EXPECT_EQ(units(confined("moxIntegralRangeFilter", "id_unidade", FilterRange<int>{1, 3})),
            Units{{3}});
  EXPECT_EQ(
      units(confined("moxIntegralRangeFilter", "id_unidade", FilterRange<int>{{}, 2'147'483'647})),
      (Units{{3, 4}}));
  EXPECT_EQ(units(confined("moxIntegralRangeFilter", "id_unidade", FilterRange<int>{4, {}})),
            Units{{4}});
  EXPECT_EQ(units(confined("moxIntegralRangeFilter", "id_unidade", FilterRange<int>{5, {}})),
            Units{});
}

TEST_F(UnitConfinementTest, ListsAreCutToTheUnitsOfTheRun) {
  EXPECT_EQ(units(confined("moxIntegralInFilter", "id_unidade", FilterList<int>{{1, 4, 9}})),
            Units{{4}});
}

TEST_F(UnitConfinementTest, BothNamesOfTheUnitColumnCountWhateverTheTable) {
  EXPECT_EQ(units(confined("moxIntegralUniqueFilter", "unidade", FilterOne<int>{5})), Units{});
  EXPECT_EQ(units(confined("moxIntegralUniqueFilter", "id_unidade", FilterOne<int>{5})), Units{});
}

TEST_F(UnitConfinementTest, ColumnsWithoutAnOriginCountByTheirName) {
  EXPECT_EQ(units(confined("moxIntegralUniqueFilter", "unidade", FilterOne<int>{5}, "unidade", "")),
            Units{});
}

TEST_F(UnitConfinementTest, HeadOfficeColumnsAreHeldToTheHeadOffice) {
  EXPECT_EQ(units(confined("moxIntegralUniqueFilter", "id_unidadematriz", FilterOne<int>{1},
                           "matriz", "id_unidadematriz")),
            Units{{1}});
  EXPECT_EQ(units(confined("moxIntegralUniqueFilter", "matriz", FilterOne<int>{3}, "matriz",
                           "id_unidadematriz")),
            Units{})
      << "3 is a unit of the run, but no head office";
}

TEST_F(UnitConfinementTest, OtherColumnsStayAsTheyAre) {
  auto const argument = confined("moxIntegralUniqueFilter", "id", FilterOne<int>{5});
  EXPECT_EQ(argument.value, FilterValue(FilterOne<int>{5}));
  EXPECT_FALSE(argument.keptToUnits);
}

TEST_F(UnitConfinementTest, ExpressionsOverTheUnitStayForTheModuleAddsItsOwnRule) {
  EXPECT_FALSE(confined("moxIntegralUniqueFilter", "coalesce(id_unidade, 0) @", FilterOne<int>{5})
                   .keptToUnits);
}

TEST_F(UnitConfinementTest, FiltersOfOtherKindsAreRefused) {
  std::string const message =
      "filter 'texto': 'id_unidade' is a business unit, and takes no filter but one of whole "
      "numbers";
  for (auto const& refused : std::vector<std::pair<std::string, FilterValue>>{
           {"moxDoubleUniqueFilter", FilterOne<double>{5}},
           {"moxDoubleRangeFilter", FilterRange<double>{1, 9}},
           {"moxTextUniqueFilter", FilterOne<std::string>{"%"}},
           {"moxTextInFilter", FilterList<std::string>{{"5"}}},
           {"moxDateUniqueFilter", FilterOne<date_t>{}},
           {"moxIntegralUniqueSQLFilter", FilterOne<int>{3}}}) {
    EXPECT_EQ(test::errorMessageOf([&] { confined(refused.first, "id_unidade", refused.second); }),
              message)
        << refused.first;
  }
}

TEST_F(UnitConfinementTest, WhatTheSessionSaysCannotBeReplaced) {
  for (std::string const token :
       {"{{p_idUsuario}}", "{{p_idUnidadeNegocioPadrao}}", "{{p_idUnidadeNegocioMatriz}}"}) {
    EXPECT_EQ(test::errorMessageOf(
                  [&] { confined("moxIntegralUniqueFilter", token, FilterOne<int>{3}); }),
              "filter 'texto': the session alone says what " + token + " stands for");
  }
}

TEST_F(UnitConfinementTest, WithoutAChosenUnitNothingIsLeft) {
  auto const specification = host_.get<moxFilterSpecification>("moxIntegralUniqueFilter");
  specification->setColumn("id_unidade");
  UnitConfinement const confinement({definition("id_unidade", "id_unidade")}, {{0}, 0});
  EXPECT_EQ(units(confinement.confined({{"Alunos", specification}, FilterOne<int>{0}, ""})),
            Units{});
}

TEST_F(UnitConfinementTest, SourcesWithoutAUnitColumnConfineNothing) {
  auto const source = host_.get<moxSQLDataSource>("moxSQLDataSource");
  EXPECT_FALSE(UnitConfinement({source}, {}).keepsToUnits());
  EXPECT_TRUE(UnitConfinement({source, definition("u", "u")}, {}).keepsToUnits());
}

}  // namespace
}  // namespace mox::core::run_test
