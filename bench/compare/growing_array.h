#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace bench {

/// What a floor appends to: an array in address space that is taken at once and becomes memory, in
/// huge pages, as it is written. It never moves and never asks whether there is room, which no
/// vector can do; a floor with vectors would be a weaker one.
template <class T>
class GrowingArray {
 public:
  explicit GrowingArray(std::size_t capacity) : bytes_(capacity * sizeof(T) + kHugePage) {
    void* const place = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (place == MAP_FAILED) {
      throw std::bad_alloc();
    }
    base_ = place;
    auto const address = reinterpret_cast<std::uintptr_t>(place);
    items_ = reinterpret_cast<T*>((address + kHugePage - 1) / kHugePage * kHugePage);
    if (capacity * sizeof(T) >= kHugePage) {
      madvise(items_, capacity * sizeof(T), MADV_HUGEPAGE);
    }
  }

  GrowingArray(GrowingArray&& other) noexcept
      : base_(std::exchange(other.base_, nullptr)),
        items_(std::exchange(other.items_, nullptr)),
        size_(std::exchange(other.size_, 0)),
        bytes_(std::exchange(other.bytes_, 0)) {}
  GrowingArray& operator=(GrowingArray&& other) noexcept {
    std::swap(base_, other.base_);
    std::swap(items_, other.items_);
    std::swap(size_, other.size_);
    std::swap(bytes_, other.bytes_);
    return *this;
  }
  ~GrowingArray() {
    if (base_ != nullptr) {
      munmap(base_, bytes_);
    }
  }

  /// The caller stays within the capacity.
  void push(T const& item) { items_[size_++] = item; }
  void setSize(std::size_t size) { size_ = size; }

  T& operator[](std::size_t index) { return items_[index]; }
  T const& operator[](std::size_t index) const { return items_[index]; }
  T* data() { return items_; }
  T const* data() const { return items_; }
  std::size_t size() const { return size_; }

 private:
  static constexpr std::size_t kHugePage = std::size_t{2} << 20;

  void* base_ = nullptr;
  T* items_ = nullptr;  // where the first huge page begins
  std::size_t size_ = 0;
  std::size_t bytes_ = 0;  // of the address space taken
};

}  // namespace bench
