#pragma once

#include <algorithm>
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
    copyBytes(place, bytes, count);
    next_ += count;
    room_ -= count;
    return {place, count};
  }

  /// Ends all views. Keeps one piece of memory that would have held the whole block, up to a bound.
  void clear();

 private:
  /// Most texts are short, and a call to copy one costs more than the copy: up to 32 bytes are two
  /// pieces of a fixed size, which overlap.
  static void copyBytes(char* to, char const* from, std::size_t count) {
    if (count > 32) {
      std::memcpy(to, from, count);
    } else if (count >= 16) {
      copyEnds<16>(to, from, count);
    } else if (count >= 8) {
      copyEnds<8>(to, from, count);
    } else if (count >= 4) {
      copyEnds<4>(to, from, count);
    } else {
      std::copy_n(from, count, to);
    }
  }

  template <std::size_t kPiece>
  static void copyEnds(char* to, char const* from, std::size_t count) {
    char head[kPiece];
    char tail[kPiece];
    std::memcpy(head, from, kPiece);
    std::memcpy(tail, from + count - kPiece, kPiece);
    std::memcpy(to, head, kPiece);
    std::memcpy(to + count - kPiece, tail, kPiece);
  }

  void grow(std::size_t count);

  std::vector<std::unique_ptr<char[]>> pieces_;
  char* next_ = nullptr;
  std::size_t room_ = 0;       // bytes left from next_ on
  std::size_t lastSize_ = 0;   // of the last piece
  std::size_t totalSize_ = 0;  // of all pieces
};

}  // namespace mox::core
