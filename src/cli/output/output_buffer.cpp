#include "cli/output/output_buffer.h"

#include <charconv>

#include "cli/output/value_text.h"

namespace mox::cli {

void OutputBuffer::append(std::string_view text) {
  if (text.size() > bytes_.size() - used_) {
    flush();
    if (text.size() >= bytes_.size()) {
      sink_.write(text);
      return;
    }
  }
  used_ += text.copy(bytes_.data() + used_, text.size());
}

void OutputBuffer::pad(int count, char character) {
  for (int i = 0; i < count; ++i) {
    append(character);
  }
}

void OutputBuffer::appendInt(int value) {
  constexpr std::size_t kLongestInt = 11;
  char* const first = room(kLongestInt);
  used_ += static_cast<std::size_t>(std::to_chars(first, first + kLongestInt, value).ptr - first);
}

void OutputBuffer::appendDouble(double value) {
  char* const first = room(kLongestDouble);
  used_ += static_cast<std::size_t>(formatDouble(first, value) - first);
}

void OutputBuffer::flush() {
  if (used_ != 0) {
    std::size_t const count = used_;
    used_ = 0;
    sink_.write({bytes_.data(), count});
  }
}

char* OutputBuffer::room(std::size_t count) {
  if (bytes_.size() - used_ < count) {
    flush();
  }
  return bytes_.data() + used_;
}

}  // namespace mox::cli
