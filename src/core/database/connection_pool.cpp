#include "core/database/connection_pool.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace mox::core {
namespace {

constexpr std::size_t kMostIdleLines = 16;

using Line = std::shared_ptr<PhysicalConnection>;

bool isAsNew(Line const& line) noexcept {
  try {
    return line.use_count() == 1 && line->resetForReuse();
  } catch (...) {
    return false;
  }
}

}  // namespace

struct ConnectionPool::Shared {
  // One object a thread: its address is the thread's key, its end is the thread's end.
  struct ThreadEnd {
    std::vector<std::weak_ptr<Shared>> pools;

    ~ThreadEnd() {
      for (auto const& pool : pools) {
        if (auto const alive = pool.lock()) {
          alive->giveBack(this);
        }
      }
    }

    void watch(std::shared_ptr<Shared> const& pool) {
      std::erase_if(pools,
                    [&](auto const& known) { return known.expired() || known.lock() == pool; });
      pools.push_back(pool);
    }
  };

  static ThreadEnd& thisThread() {
    thread_local ThreadEnd end;
    return end;
  }

  void giveBack(ThreadEnd const* thread) noexcept {
    Line line;
    {
      std::lock_guard const lock(mutex);
      if (auto node = lent.extract(thread)) {
        line = std::move(node.mapped());
      }
    }
    if (line && isAsNew(line)) {
      std::lock_guard const lock(mutex);
      if (idle.size() < kMostIdleLines && !closed) {
        idle.push_back(std::move(line));
      }
    }
  }

  std::mutex mutex;
  std::map<ThreadEnd const*, Line> lent;
  std::vector<Line> idle;
  bool closed = false;  // the pool is gone
};

ConnectionPool::ConnectionPool(Opener open)
    : open_(std::move(open)), shared_(std::make_shared<Shared>()) {}

ConnectionPool::~ConnectionPool() {
  std::map<Shared::ThreadEnd const*, Line> lent;
  std::vector<Line> idle;
  std::lock_guard const lock(shared_->mutex);
  shared_->closed = true;
  lent.swap(shared_->lent);
  idle.swap(shared_->idle);
}

std::shared_ptr<PhysicalConnection> ConnectionPool::takeIdle() {
  std::lock_guard const lock(shared_->mutex);
  if (shared_->idle.empty()) {
    return nullptr;
  }
  Line line = std::move(shared_->idle.back());
  shared_->idle.pop_back();
  return line;
}

std::shared_ptr<PhysicalConnection> ConnectionPool::forThisThread() {
  Shared::ThreadEnd& thread = Shared::thisThread();
  {
    std::lock_guard const lock(shared_->mutex);
    if (auto const found = shared_->lent.find(&thread); found != shared_->lent.end()) {
      return found->second;
    }
  }
  Line line = takeIdle();
  if (!line) {
    line = open_();
  }
  thread.watch(shared_);
  std::lock_guard const lock(shared_->mutex);
  shared_->lent.emplace(&thread, line);
  return line;
}

void ConnectionPool::releaseThisThread() noexcept {
  shared_->giveBack(&Shared::thisThread());
}

}  // namespace mox::core
