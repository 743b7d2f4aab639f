#include "core/session/user.h"

#include <gtest/gtest.h>

#include "mox/core/error.h"

using mox::core::normalizeUnits;
using mox::core::restrictedToUnits;
using mox::core::User;
using mox::core::UserUnit;

namespace {

User maria() {
  return {.id = 7, .login = "maria", .defaultUnit = 3, .units = {{3, 1}, {4, 1}, {9, 8}}};
}

}  // namespace

TEST(User, NormalizedUnitsAreAscendingAndEachOnce) {
  User user{.units = {{4, 1}, {3, 1}, {4, 2}}};
  normalizeUnits(user, 0);
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{3, 1}, {4, 1}}));
}

TEST(User, NormalizedUnitsHoldTheDefaultOne) {
  User user{.defaultUnit = 5, .units = {{9, 1}}};
  normalizeUnits(user, 2);
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{5, 2}, {9, 1}}));
}

TEST(User, WithoutADefaultUnitNoneIsAdded) {
  User user;
  normalizeUnits(user, 2);
  EXPECT_TRUE(user.units.empty());
}

TEST(User, RestrictionKeepsTheDefaultUnitWhenItIsAmongThem) {
  auto const user = restrictedToUnits(maria(), {9, 3});
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{3, 1}, {9, 8}}));
  EXPECT_EQ(user.defaultUnit, 3);
}

TEST(User, RestrictionMakesTheFirstUnitTheDefaultOtherwise) {
  auto const user = restrictedToUnits(maria(), {9, 4});
  EXPECT_EQ(user.units, (std::vector<UserUnit>{{4, 1}, {9, 8}}));
  EXPECT_EQ(user.defaultUnit, 9);
}

TEST(User, RestrictionToNoUnitsChangesNothing) {
  EXPECT_EQ(restrictedToUnits(maria(), {}).units, maria().units);
}

TEST(User, RestrictionToAForeignUnitIsRefused) {
  try {
    restrictedToUnits(maria(), {3, 5});
    FAIL() << "a foreign unit was taken";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "user 'maria' has no right to unit 5");
  }
}
