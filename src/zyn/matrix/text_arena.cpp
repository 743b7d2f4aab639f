#include "zyn/matrix/text_arena.h"

#include <algorithm>

namespace {

constexpr std::size_t kFirstChunk = 1024;
constexpr std::size_t kLargestChunk = std::size_t{1} << 20;

}  // namespace

void TextArena::share(TextArena const& other) {
  if (&other == this) {
    return;
  }
  chunks_.insert(chunks_.end(), other.chunks_.begin(), other.chunks_.end());
}

void TextArena::clear() {
  chunks_.clear();
  next_ = nullptr;
  room_ = 0;
  capacity_ = 0;
}

void TextArena::addChunk(std::size_t atLeast) {
  // Doubling keeps small columns small; the cap keeps the waste at the end of a large one small.
  std::size_t const wanted = std::clamp(capacity_, kFirstChunk, kLargestChunk);
  std::size_t const size = std::max(wanted, atLeast);
  std::shared_ptr<char[]> chunk(new char[size]);
  char* const start = chunk.get();
  chunks_.push_back(std::move(chunk));
  next_ = start;
  room_ = size;
  capacity_ += size;
}
