#include "core/storage/z_compress.h"

#include <sys/mman.h>
#include <zlib.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "core/storage/blob.h"
#include "mox/core/error.h"

namespace mox::core {

namespace {

constexpr std::size_t kWindow = std::size_t{64} << 10;

// What one step may add to data that is decompressed. The library copies the last 32 KiB aside at
// the end of each.
constexpr std::size_t kInflatedStep = std::size_t{256} << 10;

[[noreturn]] void fail(std::string message) {
  throw moxDefaultErrorImpl<moxError>(std::move(message));
}

[[noreturn]] void fail(std::string message, std::string const& where) {
  throw moxDefaultErrorImpl<moxError>(std::move(message), {where});
}

std::string atByte(std::size_t offset) {
  return "noticed at byte " + std::to_string(offset) + " of the compressed data";
}

/// Asks the system for large pages under memory that is about to be written from end to end: to
/// bring in small ones by the thousand costs half as much as to inflate into them. Without large
/// pages nothing changes.
void askForLargePages(void* begin, std::size_t size) {
  constexpr std::size_t kLargePage = std::size_t{2} << 20;
  if (std::align(kLargePage, kLargePage, begin, size) != nullptr) {
    ::madvise(begin, size - size % kLargePage, MADV_HUGEPAGE);
  }
}

/// What both directions share: a window of input filled from a cursor, and output that grows by a
/// step at a time, so that a bound is noticed before much is written beyond it.
class Stream {
 public:
  explicit Stream(moxReadBlobCursor& source, std::size_t step = kWindow)
      : source_(source), step_(step), input_(kWindow) {}

  Stream(Stream const&) = delete;
  Stream& operator=(Stream const&) = delete;

  /// Makes input available when all was used; false when the source has ended.
  bool refill() {
    if (z_.avail_in == 0) {
      z_.next_in = input_.data();
      z_.avail_in = static_cast<uInt>(source_.read(input_.data(), input_.size()));
    }
    return z_.avail_in > 0;
  }

  void makeRoom() {
    if (output_.size() == produced()) {
      output_.resize(produced() + step_);
    }
    z_.next_out = reinterpret_cast<Bytef*>(output_.data()) + produced();
    z_.avail_out = static_cast<uInt>(output_.size() - produced());
  }

  /// Takes memory for so much output at once. What is never written costs nothing, but to grow by
  /// doubling copies all of it.
  void expect(std::size_t size) {
    output_.reserve(size);
    askForLargePages(output_.data(), output_.capacity());
  }

  /// Whether one more step needs memory.
  bool isFull() const { return output_.capacity() < produced() + step_; }

  std::shared_ptr<moxBlob> takeOutput() {
    output_.resize(produced());
    return std::make_shared<Blob>(std::move(output_));
  }

  std::size_t consumed() const { return z_.total_in; }
  std::size_t produced() const { return z_.total_out; }
  z_stream& z() { return z_; }

 private:
  moxReadBlobCursor& source_;
  std::size_t const step_;  // bytes
  std::vector<Bytef> input_;
  std::string output_;
  z_stream z_ = {};
};

class Deflater {
 public:
  explicit Deflater(moxReadBlobCursor& source) : stream_(source) {
    if (deflateInit(&stream_.z(), Z_DEFAULT_COMPRESSION) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  ~Deflater() { deflateEnd(&stream_.z()); }

  Deflater(Deflater const&) = delete;
  Deflater& operator=(Deflater const&) = delete;

  std::shared_ptr<moxBlob> run() {
    int status = Z_OK;
    while (status != Z_STREAM_END) {
      int const mode = stream_.refill() ? Z_NO_FLUSH : Z_FINISH;
      stream_.makeRoom();
      status = deflate(&stream_.z(), mode);
    }
    return stream_.takeOutput();
  }

 private:
  Stream stream_;
};

class Inflater {
 public:
  /// `size` is how long the source is, 0 where that is not known.
  Inflater(moxReadBlobCursor& source, std::size_t size, ZCompress::Bounds const& bounds)
      : stream_(source, kInflatedStep), size_(size), bounds_(bounds) {
    if (inflateInit(&stream_.z()) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  ~Inflater() { inflateEnd(&stream_.z()); }

  Inflater(Inflater const&) = delete;
  Inflater& operator=(Inflater const&) = delete;

  std::shared_ptr<moxBlob> run() {
    while (step()) {
      checkBounds();
      expectTheRest();
    }
    checkBounds();
    if (stream_.refill()) {
      fail("The compressed data has further bytes behind its end.", atByte(stream_.consumed()));
    }
    return stream_.takeOutput();
  }

 private:
  /// False at the end of the stream.
  bool step() {
    // Without input there may still be output that found no room in the last step.
    bool const hasInput = stream_.refill();
    stream_.makeRoom();
    int const status = inflate(&stream_.z(), Z_NO_FLUSH);
    if (status == Z_OK || status == Z_STREAM_END) {
      return status == Z_OK;
    }
    if (status == Z_MEM_ERROR) {
      throw std::bad_alloc();
    }
    if (hasInput) {
      fail("The compressed data is damaged.", atByte(stream_.consumed()) + reason());
    }
    if (stream_.consumed() == 0) {
      fail("The compressed data is empty.");
    }
    fail("The compressed data ends too early.", atByte(stream_.consumed()));
  }

  /// What follows will grow about as what came so far did, and no further than is allowed.
  void expectTheRest() {
    if (stream_.consumed() == 0 || size_ <= stream_.consumed() || !stream_.isFull()) {
      return;
    }
    double const growth =
        static_cast<double>(stream_.produced()) / static_cast<double>(stream_.consumed());
    double const expected = 1.1 * growth * static_cast<double>(size_);
    stream_.expect(std::min(static_cast<std::size_t>(expected), bounds_.maxBytes) + kInflatedStep);
  }

  std::string reason() {
    return stream_.z().msg != nullptr ? std::string(": ") + stream_.z().msg : "";
  }

  void checkBounds() const {
    std::size_t const produced = stream_.produced();
    if (produced > bounds_.maxBytes) {
      fail("The compressed data grows beyond " + std::to_string(bounds_.maxBytes) + " bytes.",
           atByte(stream_.consumed()));
    }
    if (produced > bounds_.ratioAppliesFrom && produced / bounds_.maxRatio > stream_.consumed()) {
      fail("The compressed data grows beyond " + std::to_string(bounds_.maxRatio) +
               " times its size.",
           atByte(stream_.consumed()));
    }
  }

  Stream stream_;
  std::size_t const size_;  // bytes
  ZCompress::Bounds bounds_;
};

}  // namespace

std::shared_ptr<moxBlob> ZCompress::compress(moxReadBlob const& plain) const {
  return compress(*plain.openRead());
}

std::shared_ptr<moxBlob> ZCompress::compress(moxReadBlobCursor& plain) const {
  return Deflater(plain).run();
}

std::shared_ptr<moxBlob> ZCompress::decompress(moxReadBlob const& compressed) const {
  return Inflater(*compressed.openRead(), compressed.size(), bounds_).run();
}

std::shared_ptr<moxBlob> ZCompress::decompress(moxReadBlobCursor& compressed) const {
  return Inflater(compressed, 0, bounds_).run();
}

}  // namespace mox::core
