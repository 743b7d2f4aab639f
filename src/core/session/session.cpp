#include "core/session/session.h"

#include <utility>

namespace mox::core {

namespace {

thread_local Session const* currentOfThread = nullptr;

std::set<std::string> librariesOf(UserSession const* user) {
  return user != nullptr ? user->user().libraries : std::set<std::string>{};
}

}  // namespace

Session::Session(std::shared_ptr<SessionManager> manager, std::shared_ptr<UserSession> user)
    : manager_(std::move(manager)), user_(std::move(user)) {
  manager_->begin(this, librariesOf(user_.get()));
}

Session::~Session() {
  manager_->end(this);
}

SessionScope::SessionScope(std::shared_ptr<Session> session)
    : session_(std::move(session)), previous_(std::exchange(currentOfThread, session_.get())) {}

// The thread leaves the session before the scope's share of it goes: what the end of the session
// destroys must not find a dying session as its own.
SessionScope::~SessionScope() {
  currentOfThread = previous_;
}

Session const* SessionScope::current() {
  return currentOfThread;
}

}  // namespace mox::core
