#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace mox::core {

/// Keeps the bytes of one block of rows in one place until the next block. Memory is used anew for
/// each block; views stay valid until clear(). Belongs to one thread.
class BlockArena {
 public:
  /// A copy of the bytes.
  std::string_view keep(char const* bytes, std::size_t count) {
    if (count == 0) {
      return {};
    }
    if (count > room_) {
      grow(count);
    }
    char* const place = next_;
    std::memcpy(place, bytes, count);
    next_ += count;
    room_ -= count;
    return {place, count};
  }

  /// Ends all views. Keeps one piece of memory that would have held the whole block, up to a bound.
  void clear();

 private:
  void grow(std::size_t count);

  std::vector<std::unique_ptr<char[]>> pieces_;
  char* next_ = nullptr;
  std::size_t room_ = 0;       // bytes left from next_ on
  std::size_t lastSize_ = 0;   // of the last piece
  std::size_t totalSize_ = 0;  // of all pieces
};

}  // namespace mox::core
