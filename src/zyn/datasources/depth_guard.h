#pragma once

#include <string>

#include "mox/core/error.h"

/// Held while a definition is looked into, or run, from within another one. Definitions name each
/// other freely, so that they may form rings, or fan out at every level; without a bound either
/// would keep a thread for ever. Both bounds are far above what a definition that works needs.
///
///     std::vector<moxDataSourceColumnType> FilterDataSource::getColumns() const {
///       DepthGuard const guard(getName());
///       ...  // asks the source it changes for its columns
///     }
///
/// Counts by thread. Look-ups and runs count together, since a run looks up and may run in turn.
class DepthGuard {
 public:
  static constexpr int kMaximumDepth = 64;       // guards that are held at once
  static constexpr int kMaximumSteps = 100'000;  // guards while the outermost one is held

  /// `definition` is the name of the one that is looked into. Throws what refusal gives beyond
  /// either bound.
  explicit DepthGuard(std::string const& definition) {
    int const steps = guardsHeld == 0 ? 0 : stepsTaken;
    if (guardsHeld >= kMaximumDepth) {
      throw refusal(
          "sources of data name each other more than " + std::to_string(kMaximumDepth) + " deep",
          definition);
    }
    if (steps >= kMaximumSteps) {
      throw refusal(
          "sources of data name each other in more than " + std::to_string(kMaximumSteps) + " ways",
          definition);
    }
    stepsTaken = steps + 1;
    ++guardsHeld;
  }
  ~DepthGuard() { --guardsHeld; }

  DepthGuard(DepthGuard const&) = delete;
  DepthGuard& operator=(DepthGuard const&) = delete;

  /// "Fonte de dados externa inválida", whose details tell the bound and the definition at which it
  /// was met.
  static moxDefaultErrorImpl<moxError> refusal(std::string const& bound,
                                               std::string const& definition) {
    return moxDefaultErrorImpl<moxError>("Fonte de dados externa inválida",
                                         {bound + ", met at: " + definition});
  }

 private:
  static inline thread_local int guardsHeld = 0;
  static inline thread_local int stepsTaken = 0;  // valid while guardsHeld is above 0
};
