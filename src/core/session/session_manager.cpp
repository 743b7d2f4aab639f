#include "core/session/session_manager.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "mox/core/plugin_container.h"

namespace mox::core {

std::set<std::string> SessionManager::permittedLibraries(void const* session) const {
  std::lock_guard const lock(mutex_);
  auto const found = sessions_.find(session);
  return found != sessions_.end() ? found->second.libraries : std::set<std::string>{};
}

bool SessionManager::isLibraryPermitted(void const* session, std::string const& libraryName) const {
  std::lock_guard const lock(mutex_);
  auto const found = sessions_.find(session);
  return found == sessions_.end() || found->second.libraries.empty() ||
         found->second.libraries.count(libraryName) == 1;
}

void SessionManager::registerSessionContainer(void const* session,
                                              moxSessionPluginBasicContainer const* container) {
  std::lock_guard const lock(mutex_);
  auto const found = sessions_.find(session);
  if (found == sessions_.end()) {
    return;
  }
  auto& containers = found->second.containers;
  if (std::find(containers.begin(), containers.end(), container) == containers.end()) {
    containers.push_back(container);
  }
}

void SessionManager::unregisterSessionContainer(moxSessionPluginBasicContainer const* container) {
  std::unique_lock lock(mutex_);
  for (auto& [session, state] : sessions_) {
    std::erase(state.containers, container);
  }
  callbackFinished_.wait(lock, [&] {
    return std::none_of(running_.begin(), running_.end(), [&](Callback const& callback) {
      return callback.container == container && callback.thread != std::this_thread::get_id();
    });
  });
}

void SessionManager::begin(void const* session, std::set<std::string> libraries) {
  std::lock_guard const lock(mutex_);
  [[maybe_unused]] bool const isNew =
      sessions_.try_emplace(session, SessionState{std::move(libraries), {}}).second;
  assert(isNew);
}

// One container at a time is taken from the list, instead of walking a copy of it: a callback may
// unregister a container that comes later, or have one registered anew.
void SessionManager::end(void const* session) noexcept {
  for (auto callback = takeCallback(session); callback.container != nullptr;
       callback = takeCallback(session)) {
    callback.container->releaseSession(session);
    finishCallback(callback);
  }
  std::unique_lock lock(mutex_);
  callbackFinished_.wait(lock, [&] {
    return std::none_of(running_.begin(), running_.end(), [&](Callback const& callback) {
      return callback.session == session && callback.thread != std::this_thread::get_id();
    });
  });
}

void SessionManager::endAll() noexcept {
  std::unique_lock lock(mutex_);
  while (!sessions_.empty()) {
    void const* const session = sessions_.begin()->first;
    lock.unlock();
    end(session);
    lock.lock();
  }
}

// A callback without container, and the handle forgotten, once nothing is left to call.
SessionManager::Callback SessionManager::takeCallback(void const* session) {
  std::lock_guard const lock(mutex_);
  auto const found = sessions_.find(session);
  if (found == sessions_.end()) {
    return {};
  }
  auto& containers = found->second.containers;
  if (containers.empty()) {
    sessions_.erase(found);
    return {};
  }
  running_.push_back({containers.front(), session, std::this_thread::get_id()});
  containers.erase(containers.begin());
  return running_.back();
}

void SessionManager::finishCallback(Callback const& callback) {
  {
    std::lock_guard const lock(mutex_);
    running_.erase(std::find(running_.begin(), running_.end(), callback));
  }
  callbackFinished_.notify_all();
}

}  // namespace mox::core
