#include <array>
#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/session/session.h"
#include "mox/core/database_connection.h"
#include "mox/core/error.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_column.h"
#include "support/fake_module.h"
#include "support/test_host.h"

using fake_module::FakeObject;
using mox::core::Session;
using mox::core::SessionScope;
using mox::core::User;

namespace {

constexpr int kSessions = 16;
constexpr int kThreads = 8;
constexpr int kRounds = 50;

/// What is wrong is counted, and looked at when all threads are done.
struct Faults {
  std::atomic<int> instance = 0;
  std::atomic<int> user = 0;
  std::atomic<int> right = 0;
  std::atomic<int> database = 0;
};

// Every other session may not use the module's protected classes.
User userOf(int number) {
  User user{.id = number, .login = "user" + std::to_string(number), .units = {{number, 1}}};
  user.libraries = number % 2 == 0 ? std::set<std::string>{} : std::set<std::string>{"OUTRA"};
  return user;
}

void useDatabase(TestHost& host, int number, Faults& faults) {
  auto const statement = host.database().prepare("select ? as a");
  statement->bindInt(0, number);
  statement->execute();
  bool const right = statement->fetch() && statement->getInt(0) == number;
  faults.database += right && !statement->fetch() ? 0 : 1;
}

void workInSession(TestHost& host, std::shared_ptr<Session> const& session, int number,
                   Faults& faults) {
  SessionScope const scope(session);
  auto const user = host.application().sessions().currentUserSession();
  user->registerLogin(number);
  faults.user += user->userId() == number && user->defaultUnit() == number ? 0 : 1;
  auto const own = host.get<FakeObject>(fake_module::kCoreStaticSession);
  bool const mayUse = number % 2 == 0;
  faults.right += (own != nullptr) == mayUse ? 0 : 1;
  if (own) {
    int expected = 0;
    bool const isFresh = own->value.compare_exchange_strong(expected, number + 1);
    faults.instance += isFresh || expected == number + 1 ? 0 : 1;
  }
  faults.instance += host.get<FakeObject>(fake_module::kInternalStatic) ==
                             host.get<FakeObject>(fake_module::kInternalStatic)
                         ? 0
                         : 1;
  host.get<moxDataMatrix>("moxDataMatrix");
  useDatabase(host, number, faults);
}

}  // namespace

TEST(SessionThreads, SixteenSessionsInEightThreadsOnOneApplication) {
  TestHost host(TestHost::kMemoryDatabase);
  host.application().addModule(fake_module::entryPoints(), "fake");
  int const aliveBefore = fake_module::liveObjects();
  std::array<std::shared_ptr<Session>, kSessions> sessions;
  for (int i = 0; i < kSessions; ++i) {
    sessions[i] = host.application().sessions().open(userOf(i));
  }
  Faults faults;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int round = 0; round < kRounds; ++round) {
        int const number = (thread * 2 + round) % kSessions;
        workInSession(host, sessions[number], number, faults);
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(faults.instance, 0);
  EXPECT_EQ(faults.user, 0);
  EXPECT_EQ(faults.right, 0);
  EXPECT_EQ(faults.database, 0);
  EXPECT_EQ(fake_module::liveObjects(), aliveBefore + 1 + kSessions / 2);
  sessions = {};
  EXPECT_EQ(fake_module::liveObjects(), aliveBefore + 1);
}

TEST(SessionThreads, SessionsBeginAndEndWhileOthersWork) {
  TestHost host;
  host.application().addModule(fake_module::entryPoints(), "fake");
  host.get<FakeObject>(fake_module::kInternalStatic);
  int const aliveBefore = fake_module::liveObjects();
  std::atomic<int> stale = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        SessionScope const scope(host.application().sessions().open(User{.id = round}));
        auto const own = host.get<FakeObject>(fake_module::kCoreStaticSession);
        stale += own->value.exchange(1) == 0 ? 0 : 1;
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(stale, 0) << "a new session met the instance of an ended one";
  EXPECT_EQ(fake_module::liveObjects(), aliveBefore);
}

TEST(SessionThreads, OneSessionInManyThreadsHasOneInstance) {
  TestHost host;
  host.application().addModule(fake_module::entryPoints(), "fake");
  auto const session = host.application().sessions().open(User{.id = 1});
  std::array<std::shared_ptr<FakeObject>, kThreads> seen;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      SessionScope const scope(session);
      seen[thread] = host.get<FakeObject>(fake_module::kCoreStaticSession);
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  for (auto const& instance : seen) {
    EXPECT_EQ(instance, seen.front());
  }
  EXPECT_NE(seen.front(), nullptr);
}
