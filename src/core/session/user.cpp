#include "core/session/user.h"

#include <algorithm>

#include <fmt/format.h>

#include "mox/core/error.h"

namespace mox::core {

namespace {

bool hasUnit(std::vector<UserUnit> const& units, int id) {
  return std::any_of(units.begin(), units.end(),
                     [id](UserUnit const& unit) { return unit.id == id; });
}

UserUnit unitOf(User const& user, int id) {
  auto const found = std::find_if(user.units.begin(), user.units.end(),
                                  [id](UserUnit const& unit) { return unit.id == id; });
  if (found == user.units.end()) {
    throw moxDefaultErrorImpl<moxError>(
        fmt::format("user '{}' has no right to unit {}", user.login, id));
  }
  return *found;
}

void sortOnce(std::vector<UserUnit>& units) {
  auto const byId = [](UserUnit const& left, UserUnit const& right) { return left.id < right.id; };
  auto const sameId = [](UserUnit const& left, UserUnit const& right) {
    return left.id == right.id;
  };
  std::stable_sort(units.begin(), units.end(), byId);
  units.erase(std::unique(units.begin(), units.end(), sameId), units.end());
}

}  // namespace

User restrictedToUnits(User user, std::vector<int> const& unitIds) {
  if (unitIds.empty()) {
    return user;
  }
  std::vector<UserUnit> kept;
  kept.reserve(unitIds.size());
  for (int const id : unitIds) {
    kept.push_back(unitOf(user, id));
  }
  user.units = std::move(kept);
  if (!hasUnit(user.units, user.defaultUnit)) {
    user.defaultUnit = unitIds.front();
  }
  sortOnce(user.units);
  return user;
}

void normalizeUnits(User& user, int headOfficeOfDefault) {
  if (user.defaultUnit != 0 && !hasUnit(user.units, user.defaultUnit)) {
    user.units.push_back({user.defaultUnit, headOfficeOfDefault});
  }
  sortOnce(user.units);
}

}  // namespace mox::core
