#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

class moxSessionPluginBasicContainer;

/// The user behind a session, as the data layer needs to know him. Values do not change while a
/// call runs.
class moxUserSession {
 public:
  virtual ~moxUserSession() = default;

  /// The business unit that the user works in now; 0 when none was chosen.
  virtual int defaultUnit() const = 0;

  /// The head office of that unit; 0 when unknown.
  virtual int headOfficeUnit() const = 0;

  virtual int userId() const = 0;

  /// Whether the user sees only rows of his units. When set, a query without units is an error.
  virtual bool worksByUnits() const = 0;

  /// Identifiers of the units that the user may choose from, ascending. Empty when he has none.
  virtual std::vector<int> units() const = 0;

  /// Makes `unit` the session's default unit. Throws moxError when the user has no right to it.
  virtual void registerLogin(int unit) = 0;

  /// Whether the session has a module for students open.
  virtual bool hasStudentModule() const = 0;
};

/// Rights and endings of sessions. Safe to call from any thread.
class moxSessionManager {
 public:
  virtual ~moxSessionManager() = default;

  /// Library names that the session may use. Empty means no restriction, and so does an unknown
  /// handle.
  virtual std::set<std::string> permittedLibraries(void const* session) const = 0;

  /// Whether `libraryName` may be used: it is in the set, or the set is empty.
  virtual bool isLibraryPermitted(void const* session, std::string const& libraryName) const = 0;

  /// Has `container->releaseSession(session)` called when the session ends, before its handle dies.
  /// The container is not owned; the same pair twice is kept once.
  virtual void registerSessionContainer(void const* session,
                                        moxSessionPluginBasicContainer const* container) = 0;

  /// Forgets a container in all sessions. A container calls it in its destructor.
  virtual void unregisterSessionContainer(moxSessionPluginBasicContainer const* container) = 0;
};

/// The session service. "Current" is a matter of the calling thread: a thread works for one session
/// at a time.
class moxSessionService {
 public:
  /// Handle of the calling thread's session; null when the thread works for none.
  virtual void const* currentSession() const = 0;

  /// Lives as long as the service.
  virtual moxSessionManager& sessionManager() const = 0;

  /// The user of the current session; empty when there is no session, or nobody is logged in.
  virtual std::shared_ptr<moxUserSession> currentUserSession() const = 0;

  virtual ~moxSessionService() = default;
};
