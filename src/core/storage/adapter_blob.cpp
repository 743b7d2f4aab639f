#include "core/storage/adapter_blob.h"

#include <stdexcept>

#include "core/storage/memory_cursor.h"

namespace mox::core {

std::unique_ptr<moxReadBlobCursor> AdapterBlob::openRead() const {
  return std::make_unique<MemoryCursor>(*this);
}

void AdapterBlob::wrap(void const* bytes, std::size_t count, int flags) {
  if (flags != 0) {
    throw std::logic_error("AdapterBlob::wrap knows no flags");
  }
  if (bytes == nullptr && count > 0) {
    throw std::logic_error("AdapterBlob::wrap was given a size but no bytes");
  }
  bytes_ = static_cast<char const*>(bytes);
  size_ = count;
}

}  // namespace mox::core
