#pragma once

#include <memory>

#include "mox/core/plugin_base.h"

class moxBlob;
class moxReadBlob;
class moxReadBlobCursor;

/// Squeezes bytes and gets them back. Registered as "moxZCompress", which works in the zlib format.
/// Keeps no state between calls: safe from any thread.
///
/// The forms that take a cursor start at its position, read to the end of its blob or file, and
/// leave the cursor there. Results are never empty pointers.
class moxCompress : public virtual moxPluginBase {
 public:
  /// Empty input gives a short stream that decompresses to nothing.
  virtual std::shared_ptr<moxBlob> compress(moxReadBlob const& plain) const = 0;
  virtual std::shared_ptr<moxBlob> compress(moxReadBlobCursor& plain) const = 0;

  /// Throws moxError for input that is empty or ends too early, that is damaged, that has bytes
  /// behind its end, and for one that grows beyond 256 MiB or, from 1 MiB on, beyond a thousand
  /// times its own size. The bounds act while the data grows, so memory stays within them.
  virtual std::shared_ptr<moxBlob> decompress(moxReadBlob const& compressed) const = 0;
  virtual std::shared_ptr<moxBlob> decompress(moxReadBlobCursor& compressed) const = 0;
};
