#include "core/storage/blob.h"

#include <algorithm>
#include <cstring>

#include "core/storage/memory_cursor.h"

namespace mox::core {

namespace {

class WritingCursor : public moxBlobCursor {
 public:
  explicit WritingCursor(std::string& bytes) : bytes_(bytes) {}

  std::size_t read(void* target, std::size_t count) override {
    std::size_t const taken = std::min(count, overlap(count));
    if (taken > 0) {
      std::memcpy(target, bytes_.data() + position_, taken);
    }
    position_ += taken;
    return taken;
  }

  std::size_t position() const override { return position_; }

  void write(void const* bytes, std::size_t count) override {
    if (count == 0) {
      return;
    }
    if (position_ > bytes_.size()) {
      bytes_.resize(position_);
    }
    // replace() also copes with bytes that lie in this very blob.
    bytes_.replace(position_, overlap(count), static_cast<char const*>(bytes), count);
    position_ += count;
  }

 private:
  /// How many of `count` bytes from the position on are there already.
  std::size_t overlap(std::size_t count) const {
    return std::min(count, bytes_.size() - std::min(position_, bytes_.size()));
  }

  std::string& bytes_;
  std::size_t position_ = 0;  // may lie beyond the end when the blob was cut meanwhile
};

}  // namespace

std::unique_ptr<moxReadBlobCursor> Blob::openRead() const {
  return std::make_unique<MemoryCursor>(*this);
}

void Blob::assign(void const* bytes, std::size_t count) {
  if (count == 0) {
    bytes_.clear();
    return;
  }
  bytes_.assign(static_cast<char const*>(bytes), count);
}

void Blob::reserve(std::size_t count) {
  bytes_.reserve(count);
}

void Blob::resize(std::size_t count) {
  bytes_.resize(count);
}

std::unique_ptr<moxBlobCursor> Blob::open() {
  return std::make_unique<WritingCursor>(bytes_);
}

}  // namespace mox::core
