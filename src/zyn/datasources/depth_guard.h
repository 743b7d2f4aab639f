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
    int const steps = guardsHeld == 0 ? 0 : stepsTaken;
    if (guardsHeld >= kMaximumDepth || steps >= kMaximumSteps) {
      throw moxDefaultErrorImpl<moxError>("Fonte de dados externa inválida");
    }
    stepsTaken = steps + 1;
    ++guardsHeld;
  }
  ~DepthGuard() { --guardsHeld; }

  DepthGuard(DepthGuard const&) = delete;
  DepthGuard& operator=(DepthGuard const&) = delete;

 private:
  static inline thread_local int guardsHeld = 0;
  static inline thread_local int stepsTaken = 0;  // valid while guardsHeld is above 0
};
