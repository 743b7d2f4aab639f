#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "mox/core/blob.h"

namespace mox::core {

/// A window on somebody else's bytes; empty until it is told which.
class AdapterBlob : public moxAdapterBlob {
 public:
  std::string name() const override { return "moxAdapterBlob"; }
  std::size_t size() const override { return size_; }
  char const* data() const override { return bytes_; }
  std::unique_ptr<moxReadBlobCursor> openRead() const override;
  void wrap(void const* bytes, std::size_t count, int flags) override;

 private:
  char const* bytes_ = nullptr;  // not owned
  std::size_t size_ = 0;
};

}  // namespace mox::core
