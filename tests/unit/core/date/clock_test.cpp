#include "core/date/clock.h"

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

class ClockTest : public testing::Test {
 protected:
  void TearDown() override { mox::core::setClock({}); }
};

/// The process's time zone, for the life of the object.
class TimeZone {
 public:
  explicit TimeZone(char const* name) {
    char const* const before = std::getenv("TZ");
    hadOne_ = before != nullptr;
    before_ = hadOne_ ? before : "";
    setenv("TZ", name, 1);
    tzset();
  }
  ~TimeZone() {
    hadOne_ ? setenv("TZ", before_.c_str(), 1) : unsetenv("TZ");
    tzset();
  }
  TimeZone(TimeZone const&) = delete;
  TimeZone& operator=(TimeZone const&) = delete;

 private:
  bool hadOne_ = false;
  std::string before_;
};

}  // namespace

TEST_F(ClockTest, IsTheOneThatWasPut) {
  mox::core::setClock([] { return datetime_t(5, 3, 2024, 6, 7, 8); });
  EXPECT_EQ(mox::core::now(), datetime_t(5, 3, 2024, 6, 7, 8));
}

TEST_F(ClockTest, AnEmptyOnePutsTheSystemsLocalTimeBack) {
  TimeZone const zone("XYZ-5");  // five hours ahead of UTC
  mox::core::setClock([] { return datetime_t(5, 3, 2024); });
  mox::core::setClock({});
  auto const before = std::time(nullptr) + 5 * 3600;
  auto const now = mox::core::now().asTime_t();
  auto const after = std::time(nullptr) + 5 * 3600;
  EXPECT_LE(before, now);
  EXPECT_LE(now, after);
}

TEST_F(ClockTest, MayAskForTheTimeItself) {
  mox::core::setClock([] { return datetime_t(1, 1, 2020); });
  mox::core::setClock(
      [calls = 0]() mutable { return ++calls == 1 ? mox::core::now() : datetime_t(2, 1, 2020); });
  EXPECT_EQ(mox::core::now(), datetime_t(2, 1, 2020));
}

TEST_F(ClockTest, IsReplacedWhileOtherThreadsAsk) {
  datetime_t const one(1, 1, 2020);
  datetime_t const other(2, 2, 2022);
  mox::core::setClock([one] { return one; });
  std::atomic<bool> stop = false;
  std::atomic<int> wrong = 0;
  std::vector<std::thread> askers;
  for (int i = 0; i < 3; ++i) {
    askers.emplace_back([&] {
      while (!stop) {
        auto const now = mox::core::now();
        wrong += now == one || now == other ? 0 : 1;
      }
    });
  }
  for (int i = 0; i < 2000; ++i) {
    mox::core::setClock([moment = i % 2 == 0 ? other : one] { return moment; });
  }
  stop = true;
  for (auto& asker : askers) {
    asker.join();
  }
  EXPECT_EQ(wrong, 0);
}
