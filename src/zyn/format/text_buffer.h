#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

/// Room for bytes that are written from a place on. Whoever writes asks for the most it may need
/// and then writes without asking for each byte; the place is the writer's to keep.
class TextBuffer {
 public:
  explicit TextBuffer(std::size_t capacity)
      : bytes_(std::make_unique_for_overwrite<char[]>(capacity)), capacity_(capacity) {}

  char* begin() { return bytes_.get(); }
  std::size_t sizeUpTo(char const* place) const {
    return static_cast<std::size_t>(place - bytes_.get());
  }

  /// The place itself, or its like where there is room for `count` more bytes; what stands before
  /// it is kept.
  char* room(char* place, std::size_t count) {
    return count <= capacity_ - sizeUpTo(place) ? place : grown(place, count);
  }

 private:
  char* grown(char const* place, std::size_t count) {
    std::size_t const used = sizeUpTo(place);
    TextBuffer larger(std::max(2 * capacity_, used + count));
    std::memcpy(larger.begin(), begin(), used);
    std::swap(bytes_, larger.bytes_);
    std::swap(capacity_, larger.capacity_);
    return begin() + used;
  }

  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_;
};
