#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace mox::cli {

/// Where bytes of a result go: standard output, a file, a string of a test.
class ByteSink {
 public:
  virtual ~ByteSink() = default;

  /// Takes all bytes, or throws moxError.
  virtual void write(std::string_view bytes) = 0;
};

/// Collects small pieces, so that the sink gets few large ones. Whoever writes calls flush() at the
/// end; what was not flushed is dropped with the buffer, as it is when a writer fails half way.
class OutputBuffer {
 public:
  explicit OutputBuffer(ByteSink& sink) : sink_(sink) {}
  OutputBuffer(OutputBuffer const&) = delete;
  OutputBuffer& operator=(OutputBuffer const&) = delete;

  void append(char character) {
    if (used_ == bytes_.size()) {
      flush();
    }
    bytes_[used_++] = character;
  }

  void append(std::string_view text);

  /// `count` times the same character.
  void pad(int count, char character = ' ');

  void appendInt(int value);

  /// As formatDouble writes it.
  void appendDouble(double value);

  void flush();

 private:
  /// Room for `count` bytes in one piece; `count` is far below the buffer's size.
  char* room(std::size_t count);

  ByteSink& sink_;
  std::array<char, 1 << 16> bytes_;
  std::size_t used_ = 0;
};

}  // namespace mox::cli
