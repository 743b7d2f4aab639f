#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

/// Where the bytes of long texts live. Bytes once written never move and never change, so that
/// references stay good while the arena grows, and a column may share another's bytes instead of
/// copying them.
class TextArena {
 public:
  TextArena() = default;

  /// A copy would write its next text where the original does; share() is what is meant instead.
  TextArena(TextArena const&) = delete;
  TextArena& operator=(TextArena const&) = delete;

  /// The bytes stay where they are; the other is empty afterwards.
  TextArena(TextArena&& other) noexcept { swap(other); }
  TextArena& operator=(TextArena&& other) noexcept {
    TextArena taken(std::move(other));
    swap(taken);
    return *this;
  }

  /// Copies the bytes and gives their new place. Throws std::bad_alloc.
  char const* store(std::string_view bytes) {
    if (bytes.size() > room_) {
      addChunk(bytes.size());
    }
    char* const place = next_;
    copyBytes(place, bytes.data(), bytes.size());
    next_ += bytes.size();
    room_ -= bytes.size();
    return place;
  }

  /// Keeps the other arena's bytes alive until this one is cleared or dies; what the other adds
  /// later is not covered.
  void share(TextArena const& other);

  /// Lets go of all bytes; those that another arena shares live on there.
  void clear();

  /// Bytes held, shared ones not counted.
  std::size_t capacity() const { return capacity_; }

 private:
  /// Most texts are short, and a call to copy one costs more than the copy: 16 to 32 bytes are two
  /// pieces, which overlap. Shorter ones seldom come here.
  static void copyBytes(char* to, char const* from, std::size_t count) {
    constexpr std::size_t kPiece = 16;
    if (count < kPiece || count > 2 * kPiece) {
      std::char_traits<char>::copy(to, from, count);
      return;
    }
    char head[kPiece];
    char tail[kPiece];
    std::char_traits<char>::copy(head, from, kPiece);
    std::char_traits<char>::copy(tail, from + count - kPiece, kPiece);
    std::char_traits<char>::copy(to, head, kPiece);
    std::char_traits<char>::copy(to + count - kPiece, tail, kPiece);
  }

  void addChunk(std::size_t atLeast);

  void swap(TextArena& other) noexcept {
    std::swap(chunks_, other.chunks_);
    std::swap(next_, other.next_);
    std::swap(room_, other.room_);
    std::swap(capacity_, other.capacity_);
  }

  std::vector<std::shared_ptr<char[]>> chunks_;
  char* next_ = nullptr;
  std::size_t room_ = 0;      // bytes left behind next_
  std::size_t capacity_ = 0;  // bytes of the chunks made here
};
