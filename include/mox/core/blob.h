#pragma once

#include <cstddef>
#include <memory>

#include "mox/core/plugin_base.h"

/// A place in a blob that is read. Belongs to one thread; the blob must outlive it.
class moxReadBlobCursor {
 public:
  virtual ~moxReadBlobCursor() = default;

  /// Copies up to `count` bytes to `target` and moves on; gives how many, 0 at the end.
  virtual std::size_t read(void* target, std::size_t count) = 0;

  /// Bytes from the blob's start.
  virtual std::size_t position() const = 0;
};

/// A place in a blob that is written. Belongs to one thread; the blob must outlive it.
class moxBlobCursor : public virtual moxReadBlobCursor {
 public:
  /// Writes over what stands at the position and lets the blob grow as needed; moves on.
  virtual void write(void const* bytes, std::size_t count) = 0;
};

/// Bytes that are only read. Reading is safe from any thread while nobody writes.
class moxReadBlob : public virtual moxPluginBase {
 public:
  virtual std::size_t size() const = 0;

  /// The first byte; may be null when size() is 0. Valid until the blob changes or dies.
  virtual char const* data() const = 0;

  /// A cursor at the first byte.
  virtual std::unique_ptr<moxReadBlobCursor> openRead() const = 0;
};

/// Bytes that are written. Registered as "moxBlob"; born empty.
class moxBlob : public virtual moxReadBlob {
 public:
  /// Replaces the content by a copy of `count` bytes.
  virtual void assign(void const* bytes, std::size_t count) = 0;

  /// Makes room; size() does not change.
  virtual void reserve(std::size_t count) = 0;

  /// Cuts, or fills up with zero bytes.
  virtual void resize(std::size_t count) = 0;

  /// The first byte, writable; as for data() const.
  virtual char* data() = 0;
  using moxReadBlob::data;

  /// A cursor at the first byte.
  virtual std::unique_ptr<moxBlobCursor> open() = 0;
};

/// A blob over bytes that somebody else owns, without copying them. Registered as "moxAdapterBlob".
class moxAdapterBlob : public virtual moxReadBlob {
 public:
  /// Shows `count` bytes at `bytes`, which must outlive the blob. `flags` is 0.
  virtual void wrap(void const* bytes, std::size_t count, int flags) = 0;
};
