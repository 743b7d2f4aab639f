#pragma once

#include <functional>
#include <memory>

#include "core/database/physical_connection.h"

namespace mox::core {

/// Lends every thread its own line to one database. All operations are safe from any thread.
///
/// A thread keeps its line, with its temporary tables, until it ends or gives it back. The line
/// then waits for another thread if it can be made as new and no statement of it is alive;
/// otherwise it is closed.
class ConnectionPool {
 public:
  using Opener = std::function<std::shared_ptr<PhysicalConnection>()>;

  /// `open` is called without a lock held, from any thread; what it throws passes through.
  explicit ConnectionPool(Opener open);

  /// Lines in use stay open until their statements are gone.
  ~ConnectionPool();

  ConnectionPool(ConnectionPool const&) = delete;
  ConnectionPool& operator=(ConnectionPool const&) = delete;

  /// The calling thread's line, opened or lent when it has none. Never empty.
  std::shared_ptr<PhysicalConnection> forThisThread();

  /// Gives the calling thread's line back; nothing when it has none.
  void releaseThisThread() noexcept;

 private:
  struct Shared;

  std::shared_ptr<PhysicalConnection> takeIdle();

  Opener open_;
  std::shared_ptr<Shared> shared_;  // outlives the pool in the hands of threads that end later
};

}  // namespace mox::core
