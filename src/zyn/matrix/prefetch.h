#pragma once

#include <cstddef>
#include <cstdint>

/// Has memory bring the line so many bytes behind a place, which may be behind the end of all that
/// is there: nothing is read, and no pointer is formed.
inline void prefetchBehind(void const* place, std::size_t bytes) {
  auto const address = reinterpret_cast<std::uintptr_t>(place) + bytes;
  __builtin_prefetch(reinterpret_cast<void const*>(address));  // NOLINT(performance-no-int-to-ptr)
}
