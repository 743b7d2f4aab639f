#pragma once

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "mox/core/session.h"

namespace mox::core {

/// What is known of each living session by its handle: the libraries it may use, and the containers
/// that keep something for it. Safe from any thread. Containers are called back without any lock
/// held, so that what they destroy may come back here.
class SessionManager final : public moxSessionManager {
 public:
  std::set<std::string> permittedLibraries(void const* session) const override;
  bool isLibraryPermitted(void const* session, std::string const& libraryName) const override;

  /// Forgotten at once for a handle that is not alive: nothing would ever call back.
  void registerSessionContainer(void const* session,
                                moxSessionPluginBasicContainer const* container) override;

  /// Returns only when no callback of the container runs any more, except in the calling thread.
  void unregisterSessionContainer(moxSessionPluginBasicContainer const* container) override;

  /// Makes a handle known. Precondition: it is not alive already.
  void begin(void const* session, std::set<std::string> libraries);

  /// Has everything of a session released, and forgets the handle; nothing for an unknown one. When
  /// another thread is at it already, waits until that is done. A callback that throws ends the
  /// program: it would leave a session half released, to be met by the next one at its address.
  void end(void const* session) noexcept;

  /// Ends every session that is alive.
  void endAll() noexcept;

 private:
  struct SessionState {
    std::set<std::string> libraries;
    std::vector<moxSessionPluginBasicContainer const*>
        containers;  // in order of registration, each once
  };
  struct Callback {
    moxSessionPluginBasicContainer const* container = nullptr;
    void const* session = nullptr;
    std::thread::id thread;

    bool operator==(Callback const&) const = default;
  };

  Callback takeCallback(void const* session);
  void finishCallback(Callback const& callback);

  mutable std::mutex mutex_;
  std::condition_variable callbackFinished_;
  std::map<void const*, SessionState> sessions_;  // guarded by mutex_
  std::vector<Callback> running_;                 // guarded by mutex_
};

}  // namespace mox::core
