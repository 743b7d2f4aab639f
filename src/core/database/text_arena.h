#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace mox::core {

/// Room for the texts of a block of rows. Copies stay where they are until clear(); the memory is
/// used again for the next block.
class TextArena {
 public:
  /// A copy of the bytes, valid until clear().
  std::string_view copy(char const* bytes, std::size_t count) {
    if (count > static_cast<std::size_t>(end_ - next_)) {
      nextChunk(count);
    }
    char* const target = next_;
    std::memcpy(target, bytes, count);
    next_ += count;
    return {target, count};
  }
  std::string_view copy(std::string_view text) { return copy(text.data(), text.size()); }

  /// Drops all texts. Keeps chunks of the usual size only, so that one huge value is not held for
  /// ever.
  void clear();

 private:
  struct Chunk {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
  };

  void nextChunk(std::size_t least);

  std::vector<Chunk> chunks_;
  std::size_t used_ = 0;  // chunks in use, the current one included
  char* next_ = nullptr;
  char* end_ = nullptr;
};

}  // namespace mox::core
