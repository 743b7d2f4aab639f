#include "zyn/datasources/depth_guard.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

void descend(int depth) {
  if (depth > 0) {
    DepthGuard const guard("level " + std::to_string(depth));
    descend(depth - 1);
  }
}

void look(int steps) {
  DepthGuard const outermost("outermost");
  for (int i = 1; i < steps; ++i) {
    DepthGuard const step("step");
  }
}

/// Message and details; empty when nothing is thrown.
std::vector<std::string> toldBy(std::function<void()> const& call) {
  std::vector<std::string> told;
  try {
    call();
  } catch (moxError const& error) {
    told = error.errorDetails();
    told.insert(told.begin(), error.errorMessage());
  }
  return told;
}

std::string failureOf(std::function<void()> const& call) {
  auto const told = toldBy(call);
  return told.empty() ? std::string() : told.front();
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
  EXPECT_EQ(failureOf([&] { look(100'000); }), "");
  EXPECT_EQ(failureOf([&] { look(100'001); }), "Fonte de dados externa inválida");
  EXPECT_EQ(failureOf([&] { look(100'000); }), "");
}

TEST(DepthGuard, ARefusalTellsTheBoundAndWhereItWasMet) {
  EXPECT_EQ(toldBy([] { descend(66); }),
            (std::vector<std::string>{
                "Fonte de dados externa inválida",
                "sources of data name each other more than 64 deep, met at: level 2"}));
  EXPECT_EQ(toldBy([] { look(100'001); }),
            (std::vector<std::string>{
                "Fonte de dados externa inválida",
                "sources of data name each other in more than 100000 ways, met at: step"}));
}

TEST(DepthGuard, ThreadsCountForThemselves) {
  DepthGuard const held("held");
  std::string failure = "not run";
  std::thread([&] { failure = failureOf([] { descend(64); }); }).join();
  EXPECT_EQ(failure, "");
  EXPECT_NE(failureOf([] { descend(64); }), "");
}
