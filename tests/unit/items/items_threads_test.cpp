#include <atomic>
#include <vector>

#include "core/session/session.h"
#include "mox/zyn/items/zyn_cache.h"
#include "support/many_threads.h"
#include "unit/items/items_fixture.h"

using items_test::ItemsTest;
using mox::core::Session;
using mox::core::SessionScope;

namespace {

constexpr int kSessions = 64;
constexpr int kThreads = 8;
constexpr int kRounds = 4;

class ItemsThreads : public ItemsTest {
 protected:
  ItemsThreads() {
    std::string content;
    for (int i = 0; i < 50; ++i) {
      content += "<moxTestItem name=\"item" + std::to_string(i) + "\"/>";
    }
    cache_->appendCollection(collection(content, "UM"));
    for (int i = 0; i < kSessions; ++i) {
      sessions_.push_back(host_.application().sessions().open({.id = i + 1}));
      own_.push_back(collection("<moxTestItem name=\"item7\"/>", "S" + std::to_string(i)));
    }
  }

  /// Every second session brings a definition of its own.
  void work(int number) {
    SessionScope const scope(sessions_[static_cast<std::size_t>(number)]);
    bool const hasOwn = number % 2 == 1;
    if (hasOwn) {
      host_.get<moxZYNSessionCache>("moxZYNSessionCache")
          ->appendCollection(own_[static_cast<std::size_t>(number)]);
    }
    auto const seven = cache_->getCollection("item7");
    std::string const library = hasOwn ? "S" + std::to_string(number) : "UM";
    bool const right = seven && seven->getParentLibName() == library &&
                       cache_->getCollection("item8") && !cache_->getCollection("none") &&
                       cache_->getItemsByType(typeid(moxZYNItem)).size() == 50;
    faults_ += right ? 0 : 1;
  }

  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
  std::vector<std::shared_ptr<Session>> sessions_;
  std::vector<std::shared_ptr<moxZYNCollection>> own_;
  std::atomic<int> faults_ = 0;
};

}  // namespace

TEST_F(ItemsThreads, SixtyFourSessionsReadTheCacheAtOnce) {
  runInThreads(kThreads, kRounds, kSessions, [this](int number) { work(number); });
  EXPECT_EQ(faults_, 0);
}

TEST_F(ItemsThreads, ThreadsOfOneSessionSeedItsCacheOnce) {
  runInThreads(kThreads, kRounds, kThreads, [this](int) { work(0); });
  EXPECT_EQ(faults_, 0);
}
