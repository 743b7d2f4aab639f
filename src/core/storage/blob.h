#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "mox/core/blob.h"

namespace mox::core {

/// Bytes in one growing buffer.
class Blob : public moxBlob {
 public:
  Blob() = default;

  /// Takes the bytes over without copying them.
  explicit Blob(std::string bytes) : bytes_(std::move(bytes)) {}

  std::string name() const override { return "moxBlob"; }
  std::size_t size() const override { return bytes_.size(); }
  char const* data() const override { return bytes_.data(); }
  std::unique_ptr<moxReadBlobCursor> openRead() const override;
  void assign(void const* bytes, std::size_t count) override;
  void reserve(std::size_t count) override;
  void resize(std::size_t count) override;
  char* data() override { return bytes_.data(); }
  std::unique_ptr<moxBlobCursor> open() override;

 private:
  std::string bytes_;
};

}  // namespace mox::core
