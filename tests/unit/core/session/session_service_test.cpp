#include "core/session/session_service.h"

#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "mox/core/plugin_container.h"

using mox::core::SessionScope;
using mox::core::SessionService;
using mox::core::User;

namespace {

class CountingContainer final : public moxSessionPluginBasicContainer {
 public:
  void releaseSession(void const* session) const override { released.push_back(session); }

  mutable std::vector<void const*> released;
};

}  // namespace

TEST(SessionService, AThreadWorksForNoSessionAtFirst) {
  SessionService const service;
  EXPECT_EQ(service.currentSession(), nullptr);
  EXPECT_EQ(service.currentUserSession(), nullptr);
}

TEST(SessionService, AScopeMakesItsSessionCurrent) {
  SessionService service;
  auto const session = service.open(User{.id = 7});
  {
    SessionScope const scope(session);
    EXPECT_EQ(service.currentSession(), session->handle());
    EXPECT_EQ(service.currentUserSession()->userId(), 7);
  }
  EXPECT_EQ(service.currentSession(), nullptr);
}

TEST(SessionService, ScopesNest) {
  SessionService service;
  auto const outer = service.open(User{.id = 1});
  auto const inner = service.open(User{.id = 2});
  SessionScope const scope(outer);
  {
    SessionScope const nested(inner);
    EXPECT_EQ(service.currentUserSession()->userId(), 2);
    SessionScope const none(nullptr);
    EXPECT_EQ(service.currentSession(), nullptr);
  }
  EXPECT_EQ(service.currentUserSession()->userId(), 1);
}

TEST(SessionService, CurrentIsAMatterOfTheThread) {
  SessionService service;
  SessionScope const scope(service.open(User{.id = 1}));
  void const* seen = &service;
  std::thread([&] { seen = service.currentSession(); }).join();
  EXPECT_EQ(seen, nullptr);
}

TEST(SessionService, OneSessionIsEnteredByManyThreads) {
  SessionService service;
  auto const session = service.open(User{.id = 1});
  SessionScope const scope(session);
  void const* seen = nullptr;
  std::thread([&] {
    SessionScope const inThread(session);
    seen = service.currentSession();
  }).join();
  EXPECT_EQ(seen, session->handle());
}

TEST(SessionService, NobodyIsLoggedInToAnAnonymousSession) {
  SessionService service;
  auto const session = service.openAnonymous();
  SessionScope const scope(session);
  EXPECT_EQ(service.currentSession(), session->handle());
  EXPECT_EQ(service.currentUserSession(), nullptr);
  EXPECT_TRUE(service.sessionManager().permittedLibraries(session->handle()).empty());
}

TEST(SessionService, LibrariesOfTheUserAreThoseOfHisSession) {
  SessionService service;
  auto const session = service.open(User{.libraries = {"ZYNC"}});
  EXPECT_EQ(service.sessionManager().permittedLibraries(session->handle()),
            std::set<std::string>{"ZYNC"});
}

TEST(SessionService, TheLastOwnerEndsTheSession) {
  SessionService service;
  CountingContainer const container;
  auto session = service.open(User{});
  void const* const handle = session->handle();
  service.sessionManager().registerSessionContainer(handle, &container);
  auto second = session;
  session.reset();
  EXPECT_TRUE(container.released.empty());
  second.reset();
  EXPECT_EQ(container.released, std::vector<void const*>{handle});
}

TEST(SessionService, NoSessionEndsUnderAThreadThatWorksForIt) {
  SessionService service;
  CountingContainer const container;
  auto session = service.open(User{});
  service.sessionManager().registerSessionContainer(session->handle(), &container);
  std::optional<SessionScope> scope(std::in_place, session);
  session.reset();
  EXPECT_NE(service.currentSession(), nullptr);
  EXPECT_TRUE(container.released.empty());
  scope.reset();
  EXPECT_EQ(container.released.size(), 1U);
}

TEST(SessionService, EndsTheSessionsThatOutliveIt) {
  CountingContainer const container;
  std::shared_ptr<mox::core::Session> survivor;
  {
    SessionService service;
    survivor = service.open(User{});
    service.sessionManager().registerSessionContainer(survivor->handle(), &container);
  }
  EXPECT_EQ(container.released.size(), 1U);
  survivor.reset();
  EXPECT_EQ(container.released.size(), 1U);
}

TEST(SessionService, SessionsOfAnotherServiceCountAsNone) {
  SessionService mine;
  SessionService other;
  SessionScope const scope(other.open(User{.id = 1}));
  EXPECT_EQ(mine.currentSession(), nullptr);
  EXPECT_EQ(mine.currentUserSession(), nullptr);
}
