#include "fuzz/targets.h"

#include "core/storage/z_compress.h"
#include "fuzz/promise.h"
#include "mox/core/blob.h"

namespace mox::fuzz {

void decompress(std::string_view bytes) {
  // Small bounds let the fuzzer reach them.
  mox::core::ZCompress const compress(mox::core::ZCompress::Bounds{1 << 20, 100, 1 << 12});
  std::shared_ptr<moxBlob> plain;
  if (!accepted([&] { plain = compress.decompress(blobOver(bytes)); })) {
    return;
  }
  require(plain->size() <= (1 << 20), "the bound holds");
  auto const again = mox::core::ZCompress().decompress(*mox::core::ZCompress().compress(*plain));
  require(std::string_view(again->data(), again->size()) ==
              std::string_view(plain->data(), plain->size()),
          "compressing and decompressing gives the same bytes");
}

}  // namespace mox::fuzz
