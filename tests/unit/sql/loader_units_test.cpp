// Which rows a user gets to see: the loader's restriction of a statement to business units.

#include <memory>
#include <utility>

#include "mox/core/error.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "unit/sql/loader_fixture.h"
#include "zyn/sql/data_matrix_sql_range_filters.h"

namespace mox_test {

namespace {

std::pair<std::string, std::string> const kUnitColumn{"t", "id_unidade"};
std::pair<std::string, std::string> const kHeadOfficeColumn{"t", "id_unidadematriz"};

constexpr char const* kNoUnitsMessage = "Não foram identificadas unidades para processamento";
constexpr char const* kNoHeadOfficeMessage =
    "Não foi identificado a unidade matriz para processamento";

class LoaderUnitsTest : public LoaderTest {
 protected:
  void select(std::pair<std::string, std::string> const& unitColumn, bool unitMayBeNull = false) {
    loader_.setSql("select a from t", unitColumn, "", unitMayBeNull);
  }

  std::string conditionOf(std::string const& text) const {
    return text.substr(std::string("select a from t  where").size());
  }

  std::string lastCondition() const { return conditionOf(database_.preparedTexts().back()); }

  /// The user sees only units 3 and 4 of head office 1 and works in unit 3.
  void logInByUnits() { logIn(3, 1, true); }

  void logIn(int unit, int headOffice, bool worksByUnits) {
    mox::core::User user;
    user.id = 7;
    user.units = {{unit, headOffice}};
    user.worksByUnits = worksByUnits;
    host_.logIn(user);
  }

  std::string messageOf(std::vector<int> const& units, int matrixUnit) {
    try {
      loader_.execute(units, matrixUnit);
    } catch (moxError const& error) {
      EXPECT_TRUE(error.errorDetails().empty());
      EXPECT_EQ(error.errorCode(), "");
      return error.errorMessage();
    }
    return "no failure";
  }
};

TEST_F(LoaderUnitsTest, RowsOfTheUnitsAndOfNoUnit) {
  select(kUnitColumn, true);
  loader_.execute({3, 1}, 9);
  EXPECT_EQ(lastCondition(), "  ( t.id_unidade in (?,?)  or t.id_unidade is null  ) ");
  EXPECT_EQ(database_.binds(), (Texts{"0: int 1", "1: int 3"}));
}

TEST_F(LoaderUnitsTest, RowsOfTheUnitsAlone) {
  select(kUnitColumn, false);
  loader_.execute({3}, 9);
  EXPECT_EQ(lastCondition(), "  ( t.id_unidade in (?)  ) ");
  EXPECT_EQ(database_.binds(), Texts{"0: int 3"});
}

TEST_F(LoaderUnitsTest, HeadOfficeColumnTakesTheHeadOfficeAlone) {
  select(kHeadOfficeColumn);
  loader_.execute({3, 4}, 1);
  EXPECT_EQ(lastCondition(), "  ( t.id_unidadematriz in (?)  ) ");
  EXPECT_EQ(database_.binds(), Texts{"0: int 1"});
}

TEST_F(LoaderUnitsTest, UnitFilterComesAfterTheCallersFilters) {
  select(kUnitColumn);
  loader_.addFilter(equals("a", 5));
  loader_.addParameter(equals("{{p}}", 6));
  loader_.execute({3}, 1);
  EXPECT_EQ(lastCondition(), " a = ?  and  ( t.id_unidade in (?)  ) ");
  EXPECT_EQ(database_.binds(), (Texts{"0: int 6", "1: int 5", "2: int 3"}));
}

TEST_F(LoaderUnitsTest, StatementWithoutAUnitColumnIsNotRestricted) {
  logInByUnits();
  select({"t", ""});
  loader_.execute({}, 0);
  EXPECT_EQ(database_.preparedTexts(), Texts{"select a from t"});
}

TEST_F(LoaderUnitsTest, CallersFilterOnTheUnitColumnStandsAlone) {
  select(kUnitColumn);
  loader_.addFilter(among("t", "id_unidade", {8}));
  loader_.execute({3}, 1);
  EXPECT_EQ(lastCondition(), " t.id_unidade in (?)");
  EXPECT_EQ(database_.binds(), Texts{"0: int 8"});
}

TEST_F(LoaderUnitsTest, CallersFilterOfAnyKindStandsAlone) {
  select(kUnitColumn);
  auto const range = std::make_shared<DataMatrixSQLIntegerRangeFilter>();
  range->setColumnName("t", "id_unidade");
  loader_.addFilter(range);
  loader_.execute({3}, 1);
  EXPECT_EQ(lastCondition(), " t.id_unidade");
}

TEST_F(LoaderUnitsTest, CallersExclusionOfUnitsDoesNotReplaceTheRestriction) {
  select(kUnitColumn);
  auto const exclusion = among("t", "id_unidade", {4});
  exclusion->setNot(true);
  loader_.addFilter(exclusion);
  loader_.execute({3, 4}, 1);
  EXPECT_EQ(lastCondition(), " t.id_unidade not in (?) and  ( t.id_unidade in (?,?)  ) ");
  EXPECT_EQ(database_.binds(), (Texts{"0: int 4", "1: int 3", "2: int 4"}));
}

TEST_F(LoaderUnitsTest, FilterOnTheSameColumnOfAnotherTableDoesNotReplaceTheRestriction) {
  select(kUnitColumn);
  loader_.addFilter(among("u", "id_unidade", {8}));
  loader_.execute({3}, 1);
  EXPECT_EQ(lastCondition(), " u.id_unidade in (?) and  ( t.id_unidade in (?)  ) ");
}

TEST_F(LoaderUnitsTest, ParameterOnTheUnitColumnDoesNotReplaceTheRestriction) {
  select(kUnitColumn);
  loader_.addParameter(among("t", "id_unidade", {8}));
  loader_.execute({3}, 1);
  EXPECT_EQ(lastCondition(), "  ( t.id_unidade in (?)  ) ");
}

TEST_F(LoaderUnitsTest, UnitFilterStaysAndIsNotAddedTwice) {
  select(kUnitColumn);
  loader_.execute({3}, 1);
  EXPECT_EQ(loader_.getFilters().size(), 1U);
  loader_.execute({4}, 1);
  EXPECT_EQ(loader_.getFilters().size(), 1U);
  EXPECT_EQ(database_.binds(), Texts{"0: int 3"});
}

TEST_F(LoaderUnitsTest, ResetFiltersMakesWayForOtherUnits) {
  select(kUnitColumn);
  loader_.execute({3}, 1);
  loader_.resetFilters();
  loader_.execute({4}, 1);
  EXPECT_EQ(database_.binds(), Texts{"0: int 4"});
}

TEST_F(LoaderUnitsTest, UserWhoWorksByUnitsNeedsUnits) {
  logInByUnits();
  select(kUnitColumn);
  EXPECT_EQ(messageOf({}, 1), kNoUnitsMessage);
  EXPECT_TRUE(database_.preparedTexts().empty());
}

TEST_F(LoaderUnitsTest, UserWhoWorksByUnitsNeedsAHeadOffice) {
  logInByUnits();
  select(kUnitColumn);
  EXPECT_EQ(messageOf({3}, 0), kNoHeadOfficeMessage);
  EXPECT_TRUE(database_.preparedTexts().empty());
}

TEST_F(LoaderUnitsTest, MissingUnitsAreToldBeforeAMissingHeadOffice) {
  logInByUnits();
  select(kUnitColumn);
  EXPECT_EQ(messageOf({}, 0), kNoUnitsMessage);
}

TEST_F(LoaderUnitsTest, UnitsAreNeededEvenWhereTheCallerFiltersThem) {
  logInByUnits();
  select(kUnitColumn);
  loader_.addFilter(among("t", "id_unidade", {8}));
  EXPECT_EQ(messageOf({}, 1), kNoUnitsMessage);
}

TEST_F(LoaderUnitsTest, UserWhoDoesNotWorkByUnitsIsStillHeldToThoseGiven) {
  logIn(3, 1, false);
  select(kUnitColumn);
  EXPECT_EQ(messageOf({}, 0), "no failure");
  EXPECT_EQ(lastCondition(), " 1=0");
}

TEST_F(LoaderUnitsTest, SessionWithoutAUserNeedsNoUnitsAndGetsNoRows) {
  select(kUnitColumn, true);
  EXPECT_EQ(messageOf({}, 0), "no failure");
  EXPECT_EQ(lastCondition(), " 1=0");
  EXPECT_TRUE(database_.binds().empty());
}

TEST_F(LoaderUnitsTest, WithoutASessionServiceThereIsNoUser) {
  auto* const service = std::exchange(moxSession, nullptr);
  select(kUnitColumn);
  EXPECT_EQ(messageOf({}, 0), "no failure");
  loader_.execute();
  moxSession = service;
  EXPECT_EQ(lastCondition(), " 1=0");
}

TEST_F(LoaderUnitsTest, ExecuteForTheCurrentUserTakesHisUnit) {
  logInByUnits();
  select(kUnitColumn);
  loader_.execute();
  EXPECT_EQ(database_.binds(), Texts{"0: int 3"});
}

TEST_F(LoaderUnitsTest, ExecuteForTheCurrentUserTakesHisHeadOffice) {
  logInByUnits();
  select(kHeadOfficeColumn);
  loader_.execute();
  EXPECT_EQ(database_.binds(), Texts{"0: int 1"});
}

TEST_F(LoaderUnitsTest, ExecuteForAUserWithoutAHeadOfficeFails) {
  logIn(3, 0, true);
  select(kUnitColumn);
  try {
    loader_.execute();
    FAIL();
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), kNoHeadOfficeMessage);
  }
}

TEST_F(LoaderUnitsTest, ExecuteWithoutAUserSelectsNothing) {
  select(kUnitColumn);
  loader_.execute();
  EXPECT_EQ(lastCondition(), " 1=0");
}

}  // namespace

}  // namespace mox_test
