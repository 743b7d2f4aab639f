#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "mox/core/compress.h"

namespace mox::core {

/// Compression in the zlib format (RFC 1950).
class ZCompress : public moxCompress {
 public:
  /// How far data may grow while it is decompressed.
  struct Bounds {
    std::size_t maxBytes = std::size_t{256} << 20;
    std::size_t maxRatio = 1000;                          // plain bytes a compressed byte
    std::size_t ratioAppliesFrom = std::size_t{1} << 20;  // plain bytes
  };

  ZCompress() = default;
  explicit ZCompress(Bounds bounds) : bounds_(bounds) {}

  std::string name() const override { return "moxZCompress"; }
  std::shared_ptr<moxBlob> compress(moxReadBlob const& plain) const override;
  std::shared_ptr<moxBlob> compress(moxReadBlobCursor& plain) const override;
  std::shared_ptr<moxBlob> decompress(moxReadBlob const& compressed) const override;
  std::shared_ptr<moxBlob> decompress(moxReadBlobCursor& compressed) const override;

 private:
  Bounds bounds_;
};

}  // namespace mox::core
