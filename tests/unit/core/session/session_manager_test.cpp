#include "core/session/session_manager.h"

#include <atomic>
#include <functional>
#include <future>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "mox/core/plugin_container.h"

using mox::core::SessionManager;

namespace {

/// Notes for which sessions it was called, and does what the test wants meanwhile.
class RecordingContainer final : public moxSessionPluginBasicContainer {
 public:
  explicit RecordingContainer(std::function<void(void const*)> then = {})
      : then_(std::move(then)) {}

  void releaseSession(void const* session) const override {
    released_.push_back(session);
    if (then_) {
      then_(session);
    }
  }

  std::vector<void const*> const& released() const { return released_; }

 private:
  std::function<void(void const*)> then_;
  mutable std::vector<void const*> released_;
};

int const kOne = 1;
int const kOther = 2;

}  // namespace

TEST(SessionManager, LibrariesAreThoseOfTheSession) {
  SessionManager manager;
  manager.begin(&kOne, {"ZYNC", "OUTRA"});
  EXPECT_EQ(manager.permittedLibraries(&kOne), (std::set<std::string>{"OUTRA", "ZYNC"}));
  EXPECT_TRUE(manager.isLibraryPermitted(&kOne, "ZYNC"));
  EXPECT_FALSE(manager.isLibraryPermitted(&kOne, "TERCEIRA"));
}

TEST(SessionManager, NoLibrariesMeanNoRestriction) {
  SessionManager manager;
  manager.begin(&kOne, {});
  EXPECT_TRUE(manager.permittedLibraries(&kOne).empty());
  EXPECT_TRUE(manager.isLibraryPermitted(&kOne, "ZYNC"));
}

TEST(SessionManager, AnUnknownHandleMeansNoRestriction) {
  SessionManager manager;
  manager.begin(&kOne, {"OUTRA"});
  EXPECT_TRUE(manager.permittedLibraries(&kOther).empty());
  EXPECT_TRUE(manager.isLibraryPermitted(&kOther, "ZYNC"));
  EXPECT_TRUE(manager.isLibraryPermitted(nullptr, "ZYNC"));
}

TEST(SessionManager, EndReleasesEachContainerOnceForItsSession) {
  SessionManager manager;
  RecordingContainer const container;
  RecordingContainer const untouched;
  manager.begin(&kOne, {});
  manager.begin(&kOther, {});
  manager.registerSessionContainer(&kOne, &container);
  manager.registerSessionContainer(&kOne, &container);
  manager.registerSessionContainer(&kOther, &untouched);
  manager.end(&kOne);
  EXPECT_EQ(container.released(), std::vector<void const*>{&kOne});
  EXPECT_TRUE(untouched.released().empty());
  manager.end(&kOne);
  EXPECT_EQ(container.released().size(), 1U);
}

TEST(SessionManager, EndAllReleasesEverySession) {
  SessionManager manager;
  RecordingContainer const container;
  manager.begin(&kOne, {});
  manager.begin(&kOther, {});
  manager.registerSessionContainer(&kOne, &container);
  manager.registerSessionContainer(&kOther, &container);
  manager.endAll();
  EXPECT_EQ(container.released().size(), 2U);
}

TEST(SessionManager, AContainerOfAnUnknownHandleIsForgotten) {
  SessionManager manager;
  RecordingContainer const container;
  manager.registerSessionContainer(&kOne, &container);
  manager.begin(&kOne, {});
  manager.end(&kOne);
  EXPECT_TRUE(container.released().empty());
}

TEST(SessionManager, AnUnregisteredContainerIsNotCalled) {
  SessionManager manager;
  RecordingContainer const container;
  manager.begin(&kOne, {});
  manager.registerSessionContainer(&kOne, &container);
  manager.unregisterSessionContainer(&container);
  manager.end(&kOne);
  EXPECT_TRUE(container.released().empty());
}

TEST(SessionManager, ACallbackMayAskForRightsAndUnregisterItself) {
  SessionManager manager;
  bool permitted = false;
  RecordingContainer const* self = nullptr;
  RecordingContainer const container([&](void const* session) {
    permitted = manager.isLibraryPermitted(session, "ZYNC");
    manager.unregisterSessionContainer(self);
  });
  self = &container;
  manager.begin(&kOne, {"ZYNC"});
  manager.registerSessionContainer(&kOne, &container);
  manager.end(&kOne);
  EXPECT_TRUE(permitted);
}

TEST(SessionManager, ACallbackMayUnregisterTheNextContainer) {
  SessionManager manager;
  RecordingContainer const next;
  RecordingContainer const first([&](void const*) { manager.unregisterSessionContainer(&next); });
  manager.begin(&kOne, {});
  manager.registerSessionContainer(&kOne, &first);
  manager.registerSessionContainer(&kOne, &next);
  manager.end(&kOne);
  EXPECT_TRUE(next.released().empty());
}

TEST(SessionManager, AContainerThatComesDuringTheEndIsReleasedToo) {
  SessionManager manager;
  RecordingContainer const late;
  RecordingContainer const first(
      [&](void const* session) { manager.registerSessionContainer(session, &late); });
  manager.begin(&kOne, {});
  manager.registerSessionContainer(&kOne, &first);
  manager.end(&kOne);
  EXPECT_EQ(late.released(), std::vector<void const*>{&kOne});
}

TEST(SessionManager, UnregisterWaitsForACallbackInAnotherThread) {
  SessionManager manager;
  std::promise<void> entered;
  std::promise<void> mayLeave;
  std::atomic<bool> left = false;
  RecordingContainer const container([&](void const*) {
    entered.set_value();
    mayLeave.get_future().wait();
    left = true;
  });
  manager.begin(&kOne, {});
  manager.registerSessionContainer(&kOne, &container);
  std::thread ending([&] { manager.end(&kOne); });
  entered.get_future().wait();
  std::thread leaver([&] { mayLeave.set_value(); });
  manager.unregisterSessionContainer(&container);
  EXPECT_TRUE(left);
  leaver.join();
  ending.join();
}
