#include "core/database/block_arena.h"

#include <algorithm>

namespace mox::core {
namespace {

constexpr std::size_t kFirstPiece = std::size_t{64} * 1024;
constexpr std::size_t kMostKept =
    std::size_t{16} * 1024 * 1024;  // a block of huge values must not hold its memory for ever

}  // namespace

void BlockArena::grow(std::size_t count) {
  std::size_t const size = std::max({count, lastSize_ * 2, kFirstPiece});
  pieces_.push_back(std::make_unique_for_overwrite<char[]>(size));
  next_ = pieces_.back().get();
  room_ = size;
  lastSize_ = size;
  totalSize_ += size;
}

void BlockArena::clear() {
  if (pieces_.size() > 1 || totalSize_ > kMostKept) {
    std::size_t const wanted = std::min(totalSize_, kMostKept);
    pieces_.clear();
    lastSize_ = 0;
    totalSize_ = 0;
    grow(wanted);
  } else if (!pieces_.empty()) {
    next_ = pieces_.front().get();
    room_ = totalSize_;
  }
}

}  // namespace mox::core
