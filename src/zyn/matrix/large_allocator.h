#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

/// An allocator for arrays that may hold millions of values: large ones are asked of the system in
/// huge pages. Sorting and gathering jump about in such arrays, and with small pages half of their
/// time goes into finding the page and into the first touch of each.
template <class T>
class LargeAllocator {
 public:
  using value_type = T;

  LargeAllocator() = default;
  template <class U>
  LargeAllocator(LargeAllocator<U> const&) noexcept {}  // NOLINT: implicit, as allocators are

  T* allocate(std::size_t count) {
    if (count > static_cast<std::size_t>(-1) / sizeof(T)) {
      throw std::bad_array_new_length();
    }
    std::size_t const bytes = count * sizeof(T);
    void* const place = bytes < kHugePage ? std::malloc(bytes) : allocateLarge(bytes);
    if (place == nullptr) {
      throw std::bad_alloc();
    }
    return static_cast<T*>(place);
  }

  void deallocate(T* place, std::size_t) noexcept { std::free(place); }

  friend bool operator==(LargeAllocator const&, LargeAllocator const&) { return true; }

 private:
  static constexpr std::size_t kHugePage = std::size_t{2} << 20;

  static void* allocateLarge(std::size_t bytes) {
    std::size_t const rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
    void* const place = rounded < bytes ? nullptr : std::aligned_alloc(kHugePage, rounded);
#if defined(__linux__)
    if (place != nullptr) {
      ::madvise(place, rounded, MADV_HUGEPAGE);  // a wish: without it the array works as well
    }
#endif
    return place;
  }
};
