#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "mox/core/blob.h"

namespace mox::core {

/// Reads any blob that has its bytes in memory.
class MemoryCursor : public moxReadBlobCursor {
 public:
  explicit MemoryCursor(moxReadBlob const& blob) : blob_(blob) {}

  std::size_t read(void* target, std::size_t count) override {
    std::size_t const size = blob_.size();
    std::size_t const taken = std::min(count, size - std::min(position_, size));
    if (taken > 0) {
      std::memcpy(target, blob_.data() + position_, taken);
    }
    position_ += taken;
    return taken;
  }

  std::size_t position() const override { return position_; }

 private:
  moxReadBlob const& blob_;
  std::size_t position_ = 0;  // may lie beyond the end when the blob was cut meanwhile
};

}  // namespace mox::core
