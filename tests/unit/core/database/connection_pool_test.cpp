#include "core/database/connection_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <stdexcept>
#include <thread>
#include <vector>

namespace mox::core {
namespace {

/// Counts of all lines that a test opened.
struct Counts {
  std::atomic<int> opened = 0;
  std::atomic<int> open = 0;
};

struct CountedLine : PhysicalConnection {
  CountedLine(Counts& allCounts, bool canReset) : counts(allCounts), resets(canReset) {
    ++counts.opened;
    ++counts.open;
  }
  ~CountedLine() override { --counts.open; }

  std::shared_ptr<moxDatabaseConnection::PreparedStatement> prepare(StatementScript) override {
    return nullptr;
  }
  void execute(std::string const&) override {}
  void ensureUsable() override {}
  bool resetForReuse() override { return resets; }

  Counts& counts;
  bool resets;
};

ConnectionPool::Opener opener(Counts& counts, bool resets) {
  return [&counts, resets] { return std::make_shared<CountedLine>(counts, resets); };
}

template <class Action>
void onAnotherThread(Action action) {
  std::thread(action).join();
}

TEST(ConnectionPool, AThreadKeepsItsLine) {
  Counts counts;
  ConnectionPool pool(opener(counts, true));
  EXPECT_EQ(counts.opened, 0);
  auto const line = pool.forThisThread();
  EXPECT_EQ(pool.forThisThread(), line);
  EXPECT_EQ(counts.opened, 1);
}

TEST(ConnectionPool, ThreadsThatLiveTogetherHaveLinesOfTheirOwn) {
  Counts counts;
  ConnectionPool pool(opener(counts, true));
  std::latch everyoneHasOne(8);
  std::vector<std::thread> threads;
  threads.reserve(8);
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      auto const line = pool.forThisThread();
      everyoneHasOne.arrive_and_wait();
      EXPECT_EQ(pool.forThisThread(), line);
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(counts.opened, 8);
}

TEST(ConnectionPool, TheLineOfAThreadThatEndedIsLentAgain) {
  Counts counts;
  ConnectionPool pool(opener(counts, true));
  for (int i = 0; i < 5; ++i) {
    onAnotherThread([&] { pool.forThisThread(); });
  }
  EXPECT_EQ(counts.opened, 1);
  EXPECT_EQ(counts.open, 1);
}

TEST(ConnectionPool, ALineThatCannotBeMadeAsNewIsClosed) {
  Counts counts;
  ConnectionPool pool(opener(counts, false));
  onAnotherThread([&] { pool.forThisThread(); });
  EXPECT_EQ(counts.open, 0);
  onAnotherThread([&] { pool.forThisThread(); });
  EXPECT_EQ(counts.opened, 2);
}

TEST(ConnectionPool, ALineInUseIsNotLentAgain) {
  Counts counts;
  ConnectionPool pool(opener(counts, true));
  std::shared_ptr<PhysicalConnection> heldByAStatement;
  onAnotherThread([&] { heldByAStatement = pool.forThisThread(); });
  EXPECT_NE(pool.forThisThread(), heldByAStatement);
  heldByAStatement.reset();
  EXPECT_EQ(counts.open, 1);
}

TEST(ConnectionPool, ALineCanBeGivenBackEarly) {
  Counts counts;
  ConnectionPool pool(opener(counts, false));
  pool.releaseThisThread();
  for (int i = 0; i < 3; ++i) {
    pool.forThisThread();
    pool.releaseThisThread();
    EXPECT_EQ(counts.open, 0);
  }
  EXPECT_EQ(counts.opened, 3);
}

TEST(ConnectionPool, ThreadsMayEndAfterThePool) {
  Counts counts;
  auto pool = std::make_unique<ConnectionPool>(opener(counts, true));
  std::latch hasLine(1);
  std::latch poolIsGone(1);
  std::thread thread([&] {
    pool->forThisThread();
    hasLine.count_down();
    poolIsGone.wait();
  });
  hasLine.wait();
  pool.reset();
  EXPECT_EQ(counts.open, 0);
  poolIsGone.count_down();
  thread.join();
}

TEST(ConnectionPool, TwoPoolsDoNotMixTheirLines) {
  Counts counts;
  ConnectionPool first(opener(counts, true));
  ConnectionPool second(opener(counts, true));
  EXPECT_NE(first.forThisThread(), second.forThisThread());
  onAnotherThread([&] { EXPECT_NE(first.forThisThread(), second.forThisThread()); });
  EXPECT_EQ(counts.open, 4);
}

TEST(ConnectionPool, AFailureToOpenLeavesTheThreadWithoutALine) {
  Counts counts;
  bool fails = true;
  ConnectionPool pool([&]() -> std::shared_ptr<PhysicalConnection> {
    if (fails) {
      throw std::runtime_error("no server");
    }
    return std::make_shared<CountedLine>(counts, true);
  });
  EXPECT_THROW(pool.forThisThread(), std::runtime_error);
  fails = false;
  EXPECT_NE(pool.forThisThread(), nullptr);
}

}  // namespace
}  // namespace mox::core
