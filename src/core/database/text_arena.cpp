#include "core/database/text_arena.h"

#include <algorithm>

namespace mox::core {
namespace {

constexpr std::size_t kChunkSize = std::size_t{256} << 10;

}  // namespace

void TextArena::clear() {
  std::erase_if(chunks_, [](Chunk const& chunk) { return chunk.size > kChunkSize; });
  used_ = 0;
  next_ = nullptr;
  end_ = nullptr;
}

void TextArena::nextChunk(std::size_t least) {
  if (used_ == chunks_.size() || chunks_[used_].size < least) {
    std::size_t const size = std::max(least, kChunkSize);
    auto const place = chunks_.begin() + static_cast<std::ptrdiff_t>(used_);
    chunks_.insert(place, Chunk{std::make_unique_for_overwrite<char[]>(size), size});
  }
  Chunk const& chunk = chunks_[used_];
  ++used_;
  next_ = chunk.bytes.get();
  end_ = next_ + chunk.size;
}

}  // namespace mox::core
