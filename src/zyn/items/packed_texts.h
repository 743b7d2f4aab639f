#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string_view>

/// Some texts in one block of memory, for objects of which a start makes tens of thousands and
/// which are hardly changed afterwards: a std::string each would cost 32 bytes even where it is
/// empty, and a block of its own from 16 characters on. Reading is safe from any thread.
template <std::size_t count>
class PackedTexts {
 public:
  using Views = std::array<std::string_view, count>;

  /// Good until the next change. Empty for a text that was never set.
  std::string_view operator[](std::size_t index) const {
    if (!block_) {
      return {};
    }
    std::size_t const begin = index == 0 ? 0 : block_[index - 1];
    return {bytes() + begin, block_[index] - begin};
  }

  Views all() const {
    Views texts;
    for (std::size_t i = 0; i < count; ++i) {
      texts[i] = (*this)[i];
    }
    return texts;
  }

  /// Replaces all; `texts` may be views of these. Throws std::length_error beyond 4 GB.
  void assign(Views const& texts) {
    std::size_t size = 0;
    std::array<std::uint32_t, count> ends;
    for (std::size_t i = 0; i < count; ++i) {
      size += texts[i].size();
      if (size > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("the texts of an object are too long");
      }
      ends[i] = static_cast<std::uint32_t>(size);
    }
    constexpr std::size_t kWord = sizeof(std::uint32_t);
    auto block =
        std::make_unique_for_overwrite<std::uint32_t[]>(count + (size + kWord - 1) / kWord);
    auto* at = reinterpret_cast<char*>(std::copy(ends.begin(), ends.end(), block.get()));
    for (auto const& text : texts) {
      at = std::copy(text.begin(), text.end(), at);
    }
    block_ = std::move(block);
  }

  void set(std::size_t index, std::string_view text) {
    Views texts = all();
    texts[index] = text;
    assign(texts);
  }

 private:
  char const* bytes() const { return reinterpret_cast<char const*>(block_.get() + count); }

  std::unique_ptr<std::uint32_t[]> block_;  // the end of each text, then their bytes; or nothing
};
