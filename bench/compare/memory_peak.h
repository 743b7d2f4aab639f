#pragma once

#include <cstddef>

namespace bench {

/// How far the process's memory rose above what it was when this was made. One at a time: the
/// system keeps one such mark for a process.
class MemoryPeak {
 public:
  MemoryPeak();

  /// Bytes; 0 where the system does not tell.
  std::size_t risenBytes() const;

 private:
  std::size_t startBytes_;
};

}  // namespace bench
