#pragma once

#include "mox/core/error.h"

/// Held while a definition is looked into, or run, from within another one. Definitions name each
/// other freely, so that they may form rings, or fan out at every level; without a bound either
/// would keep a thread for ever. Both bounds are far above what a definition that works needs.
///
///     std::vector<moxDataSourceColumnType> FilterDataSource::getColumns() const {
///       DepthGuard const guard;
///       ...  // asks the source it changes for its columns
///     }
///
/// Counts by thread. Look-ups and runs count together, since a run looks up and may run in turn.
class DepthGuard {
 public:
  static constexpr int kMaximumDepth = 64;       // guards that are held at once
  static constexpr int kMaximumSteps = 100'000;  // guards while the outermost one is held

  /// Throws moxError "Fonte de dados externa inválida" beyond either bound.
  DepthGuard() {
    int const steps = depth_ == 0 ? 0 : steps_;
    if (depth_ >= kMaximumDepth || steps >= kMaximumSteps) {
      throw moxDefaultErrorImpl<moxError>("Fonte de dados externa inválida");
    }
    steps_ = steps + 1;
    ++depth_;
  }
  ~DepthGuard() { --depth_; }

  DepthGuard(DepthGuard const&) = delete;
  DepthGuard& operator=(DepthGuard const&) = delete;

 private:
  static inline thread_local int depth_ = 0;
  static inline thread_local int steps_ = 0;  // valid while depth_ is above 0
};
