#include "compare/memory_peak.h"

#include <malloc.h>

#include <fstream>
#include <string>

namespace bench {
namespace {

constexpr std::size_t kBytesPerUnit = 1024;

std::size_t statusBytes(std::string const& name) {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word) {
    if (word == name) {
      std::size_t kibibytes = 0;
      status >> kibibytes;
      return kibibytes * kBytesPerUnit;
    }
  }
  return 0;
}

/// Lowers the mark of the highest memory to the memory now.
void resetMark() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
}

}  // namespace

MemoryPeak::MemoryPeak() {
  resetMark();
  startBytes_ = statusBytes("VmRSS:");
}

std::size_t MemoryPeak::risenBytes() const {
  std::size_t const peak = statusBytes("VmHWM:");
  return peak > startBytes_ ? peak - startBytes_ : 0;
}

}  // namespace bench
