#include "core/session/user_session.h"

#include <utility>

#include <fmt/format.h>

#include "mox/core/error.h"

namespace mox::core {

UserSession::UserSession(User user) : user_(std::move(user)) {
  auto const* const unit = findUnit(user_.defaultUnit);
  current_ = unit != nullptr ? *unit : UserUnit{user_.defaultUnit, 0};
}

int UserSession::defaultUnit() const {
  std::lock_guard const lock(mutex_);
  return current_.id;
}

int UserSession::headOfficeUnit() const {
  std::lock_guard const lock(mutex_);
  return current_.headOffice;
}

std::vector<int> UserSession::units() const {
  std::vector<int> ids;
  ids.reserve(user_.units.size());
  for (auto const& unit : user_.units) {
    ids.push_back(unit.id);
  }
  return ids;
}

void UserSession::registerLogin(int unit) {
  auto const* const chosen = findUnit(unit);
  if (chosen == nullptr) {
    throw moxDefaultErrorImpl<moxError>(
        fmt::format("user '{}' has no right to unit {}", user_.login, unit));
  }
  std::lock_guard const lock(mutex_);
  current_ = *chosen;
}

UserUnit const* UserSession::findUnit(int id) const {
  for (auto const& unit : user_.units) {
    if (unit.id == id) {
      return &unit;
    }
  }
  return nullptr;
}

}  // namespace mox::core
