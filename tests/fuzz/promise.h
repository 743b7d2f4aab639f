#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "core/storage/adapter_blob.h"
#include "mox/core/error.h"

namespace mox::fuzz {

inline void require(bool kept, char const* promise) {
  if (!kept) {
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
  }
}

/// False when `read` refuses its bytes with a moxError, the only failure that it may have.
template <class Read>
bool accepted(Read read) {
  try {
    read();
    return true;
  } catch (moxError const& error) {
    require(!error.errorMessage().empty(), "a failure has a message");
    require(error.errorMessage().find('\n') == std::string::npos, "a message is one line");
    return false;
  }
}

inline mox::core::AdapterBlob blobOver(std::string_view bytes) {
  mox::core::AdapterBlob blob;
  blob.wrap(bytes.data(), bytes.size(), 0);
  return blob;
}

}  // namespace mox::fuzz
