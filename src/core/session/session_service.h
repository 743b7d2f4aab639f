#pragma once

#include <memory>

#include "core/session/session.h"
#include "core/session/session_manager.h"
#include "core/session/user.h"
#include "mox/core/session.h"

namespace mox::core {

/// Opens sessions, and tells the calling thread which one it works for. Safe from any thread.
/// Sessions of another service count as none.
class SessionService final : public moxSessionService {
 public:
  SessionService();

  /// Ends all sessions that are still alive.
  ~SessionService() override;

  void const* currentSession() const override;
  moxSessionManager& sessionManager() const override { return *manager_; }
  std::shared_ptr<moxUserSession> currentUserSession() const override;

  /// A session for a user. It lives as long as the caller or a SessionScope holds it.
  std::shared_ptr<Session> open(User user);

  /// A session in which nobody is logged in.
  std::shared_ptr<Session> openAnonymous();

  /// Has the instances of all living sessions released. Afterwards their handles are known no more.
  void endAll() noexcept { manager_->endAll(); }

 private:
  Session const* current() const;

  std::shared_ptr<SessionManager> const
      manager_;  // shared with the sessions, which may outlive the service
};

}  // namespace mox::core
