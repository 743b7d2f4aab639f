#include "core/session/session_service.h"

#include <utility>

namespace mox::core {

SessionService::SessionService() : manager_(std::make_shared<SessionManager>()) {}

SessionService::~SessionService() {
  endAll();
}

void const* SessionService::currentSession() const {
  auto const* const session = current();
  return session != nullptr ? session->handle() : nullptr;
}

std::shared_ptr<moxUserSession> SessionService::currentUserSession() const {
  auto const* const session = current();
  return session != nullptr ? session->user() : nullptr;
}

std::shared_ptr<Session> SessionService::open(User user) {
  return std::make_shared<Session>(manager_, std::make_shared<UserSession>(std::move(user)));
}

std::shared_ptr<Session> SessionService::openAnonymous() {
  return std::make_shared<Session>(manager_, nullptr);
}

Session const* SessionService::current() const {
  auto const* const session = SessionScope::current();
  return session != nullptr && session->belongsTo(*manager_) ? session : nullptr;
}

}  // namespace mox::core
