// Nobody gets to see a row of a business unit that is not his: every row carries its unit's token
// in a text, and the texts of each result are searched for tokens of other units.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "contract/loader_fixture.h"

namespace mox_test {

namespace {

constexpr int kHeadOffice = 1;
constexpr int kOtherHeadOffice = 2;
constexpr int kNoUnit = 0;

std::string tokenOf(int unit) {
  return "<unidade " + std::to_string(unit) + ">";
}

class LoaderUnits : public LoaderOnEveryDatabase {
 protected:
  LoaderUnits() {
    db.run("create table alunos (id int, id_unidade int, id_unidadematriz int, nome varchar(200))");
    addStudents(3, kHeadOffice);
    addStudents(4, kHeadOffice);
    addStudents(8, kOtherHeadOffice);
    addStudents(kNoUnit, kHeadOffice);
  }

  /// Three of a unit; their names tell it.
  void addStudents(int unit, int headOffice) {
    std::string const unitText = unit == kNoUnit ? "null" : std::to_string(unit);
    for (int i = 0; i < 3; ++i) {
      db.run("insert into alunos values (" + std::to_string(++lastId_) + ", " + unitText + ", " +
             std::to_string(headOffice) + ", 'Aluno da " + tokenOf(unit) + " com acentuação')");
    }
  }

  void select(UnitColumn const& unitColumn, bool unitMayBeNull = false) {
    on_.loader().setSql("select a.nome, a.id from alunos a", unitColumn, "", unitMayBeNull);
  }

  /// The units whose tokens stand somewhere in a text of the result, once each row has told exactly
  /// one.
  std::set<int> unitsSeen(std::vector<int> const& units, int headOffice) {
    auto const result = matrix({});
    on_.loader().setDataMatrix(result);
    on_.loader().execute(units, headOffice);
    return unitsIn(*result);
  }

  static std::set<int> unitsIn(moxDataMatrix const& result) {
    std::set<int> seen;
    auto const names =
        std::dynamic_pointer_cast<moxDataMatrixTextColumn const>(result.columnByName("nome"));
    for (unsigned int row = 0; row < result.rowCount(); ++row) {
      int const unit = unitIn(names->getValue(row));
      EXPECT_NE(unit, -1) << names->getValue(row);
      seen.insert(unit);
    }
    return seen;
  }

  static int unitIn(std::string const& text) {
    for (int const unit : {3, 4, 8, kNoUnit}) {
      if (text.find(tokenOf(unit)) != std::string::npos) {
        return unit;
      }
    }
    return -1;
  }

  int lastId_ = 0;
};

MOX_ON_EVERY_DATABASE(LoaderUnits);

using Units = std::set<int>;
UnitColumn const kUnit{"a", "id_unidade"};
UnitColumn const kHeadOfficeColumn{"a", "id_unidadematriz"};

TEST_P(LoaderUnits, SingleUnitSeesItsOwnRows) {
  select(kUnit);
  EXPECT_EQ(unitsSeen({3}, kHeadOffice), Units{3});
}

TEST_P(LoaderUnits, ManyUnitsSeeTheirOwnRows) {
  select(kUnit);
  EXPECT_EQ(unitsSeen({4, 3}, kHeadOffice), (Units{3, 4}));
}

TEST_P(LoaderUnits, RowsOfNoUnitShowWhereTheyMay) {
  select(kUnit, true);
  EXPECT_EQ(unitsSeen({3}, kHeadOffice), (Units{kNoUnit, 3}));
}

TEST_P(LoaderUnits, NoUnitsShowNoRowsNotEvenThoseOfNoUnit) {
  for (bool const unitMayBeNull : {false, true}) {
    on_.loader().resetFilters();
    select(kUnit, unitMayBeNull);
    EXPECT_EQ(unitsSeen({}, kHeadOffice), Units{});
  }
}

TEST_P(LoaderUnits, UnknownUnitShowsNoRows) {
  select(kUnit);
  EXPECT_EQ(unitsSeen({99}, kHeadOffice), Units{});
}

TEST_P(LoaderUnits, HeadOfficeColumnShowsTheHeadOfficesRows) {
  select(kHeadOfficeColumn);
  EXPECT_EQ(unitsSeen({8}, kHeadOffice), (Units{kNoUnit, 3, 4}));
}

TEST_P(LoaderUnits, CallersFilterOnTheUnitColumnStandsAlone) {
  select(kUnit);
  on_.loader().addFilter(on_.among(kUnit, {4, 8}));
  EXPECT_EQ(unitsSeen({3}, kHeadOffice), (Units{4, 8}));
}

TEST_P(LoaderUnits, CallersExclusionOnlyNarrowsTheRestriction) {
  select(kUnit);
  auto const exclusion = on_.among(kUnit, {4});
  exclusion->setNot(true);
  on_.loader().addFilter(exclusion);
  EXPECT_EQ(unitsSeen({3, 4}, kHeadOffice), Units{3});
}

TEST_P(LoaderUnits, OtherFiltersOnlyNarrowTheRestriction) {
  select(kUnit, true);
  on_.loader().addFilter(on_.among({"a", "id"}, {1, 4, 7, 10}));
  EXPECT_EQ(unitsSeen({3}, kHeadOffice), (Units{kNoUnit, 3}));
}

TEST_P(LoaderUnits, StatementsOwnWhereOnlyNarrowsTheRestriction) {
  on_.loader().setSql("select a.nome, a.id from alunos a where a.id > 0", kUnit, "and", true);
  EXPECT_EQ(unitsSeen({3}, kHeadOffice), (Units{kNoUnit, 3}));
}

TEST_P(LoaderUnits, UserWhoWorksByUnitsSeesTheUnitHeWorksIn) {
  mox::core::User user;
  user.id = 7;
  user.units = {{3, kHeadOffice}, {4, kHeadOffice}};
  user.worksByUnits = true;
  on_.host().logIn(user);
  select(kUnit);
  auto const result = matrix({});
  on_.loader().setDataMatrix(result);
  on_.loader().execute();
  EXPECT_EQ(unitsIn(*result), Units{3});
}

TEST_P(LoaderUnits, RestrictedRowsAreAllThere) {
  select(kUnit);
  auto const result = matrix({});
  on_.loader().setDataMatrix(result);
  on_.loader().addOrderColumn("a", "id", true);
  on_.loader().execute({3, 4}, kHeadOffice);
  EXPECT_THAT(result->columnCount(), 2U);
  auto const ids = std::dynamic_pointer_cast<moxDataMatrixIntColumn>(result->columnByName("id"));
  std::vector<int> seen;
  for (unsigned int row = 0; row < result->rowCount(); ++row) {
    seen.push_back(ids->getValue(row));
  }
  EXPECT_THAT(seen, testing::ElementsAre(6, 5, 4, 3, 2, 1));
}

}  // namespace

}  // namespace mox_test
