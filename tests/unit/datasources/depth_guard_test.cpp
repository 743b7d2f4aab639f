#include "zyn/datasources/depth_guard.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>

namespace {

void descend(int depth) {
  if (depth > 0) {
    DepthGuard const guard;
    descend(depth - 1);
  }
}

std::string failureOf(std::function<void()> const& call) {
  try {
    call();
  } catch (moxError const& error) {
    return error.errorMessage();
  }
  return {};
}

}  // namespace

TEST(DepthGuard, SixtyFourMayBeHeldAtOnce) {
  EXPECT_EQ(failureOf([] { descend(64); }), "");
  EXPECT_EQ(failureOf([] { descend(65); }), "Fonte de dados externa inválida");
}

TEST(DepthGuard, IsAsDeepAsBeforeAfterAFailure) {
  EXPECT_NE(failureOf([] { descend(65); }), "");
  EXPECT_EQ(failureOf([] { descend(64); }), "");
}

TEST(DepthGuard, ManyStepsOfOneLookUpEndIt) {
  auto const look = [](int steps) {
    DepthGuard const outermost;
    for (int i = 1; i < steps; ++i) {
      DepthGuard const step;
    }
  };
  EXPECT_EQ(failureOf([&] { look(100'000); }), "");
  EXPECT_EQ(failureOf([&] { look(100'001); }), "Fonte de dados externa inválida");
  EXPECT_EQ(failureOf([&] { look(100'000); }), "");
}

TEST(DepthGuard, ThreadsCountForThemselves) {
  DepthGuard const held;
  std::string failure = "not run";
  std::thread([&] { failure = failureOf([] { descend(64); }); }).join();
  EXPECT_EQ(failure, "");
  EXPECT_NE(failureOf([] { descend(64); }), "");
}
