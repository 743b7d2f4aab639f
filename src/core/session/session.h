#pragma once

#include <memory>

#include "core/session/session_manager.h"
#include "core/session/user_session.h"

namespace mox::core {

/// One session, from login to logout; its address is the handle. It ends when the last owner lets
/// go of it, and every scope that a thread is in is an owner: no session ends under a thread that
/// works for it. Safe from any thread.
class Session {
 public:
  /// `user` may be empty: nobody is logged in, and nothing is restricted.
  Session(std::shared_ptr<SessionManager> manager, std::shared_ptr<UserSession> user);

  /// Has the session's instances released while the handle is still good.
  ~Session();

  Session(Session const&) = delete;
  Session& operator=(Session const&) = delete;

  void const* handle() const { return this; }

  /// Empty when nobody is logged in.
  std::shared_ptr<UserSession> const& user() const { return user_; }

  /// Whether the session was opened by the service of this manager.
  bool belongsTo(SessionManager const& manager) const { return manager_.get() == &manager; }

 private:
  std::shared_ptr<SessionManager> const manager_;
  std::shared_ptr<UserSession> const user_;
};

/// While it lives, the thread that made it works for `session`; afterwards again for what it did
/// before. Destroyed in the same thread, innermost first.
class SessionScope {
 public:
  /// An empty session has the thread work for none.
  explicit SessionScope(std::shared_ptr<Session> session);
  ~SessionScope();

  SessionScope(SessionScope const&) = delete;
  SessionScope& operator=(SessionScope const&) = delete;

  /// The calling thread's innermost session; null when it works for none.
  static Session const* current();

 private:
  std::shared_ptr<Session> const session_;
  Session const* const previous_;
};

}  // namespace mox::core
