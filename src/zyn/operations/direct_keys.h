#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "zyn/matrix/column_copy.h"

/// A key as a digit: a number for each row, the same for equal values and below width().
class DirectKey {
 public:
  virtual ~DirectKey() = default;

  std::size_t width() const { return width_; }

  /// Adds to `places` the digits of `count` rows from `first` on, each times `stride`. `first` is a
  /// multiple of 64.
  virtual void addTo(std::uint32_t first, std::uint32_t count, std::uint32_t stride,
                     std::uint32_t* places) const = 0;

 protected:
  std::size_t width_ = 0;
};

/// Keys whose combinations are so few that each has a place of its own in an array, as days, grades
/// or classes mostly have. Whole numbers that lie close together are their own digits; other values
/// are numbered by hashing them.
class DirectKeys {
 public:
  /// The keys are columns of the module's own, with `rows` rows at least; they must outlive this.
  DirectKeys(std::vector<MatrixColumn> const& keys, std::uint32_t rows);

  /// False when the array would be large beside the rows, or a NaN is among the keys.
  bool areDirect() const { return areDirect_; }

  /// The number of places.
  std::size_t width() const { return width_; }

  /// The places of `count` rows from `first` on, a multiple of 64.
  void placesOf(std::uint32_t first, std::uint32_t count, std::uint32_t* places) const;

 private:
  bool add(moxDataMatrixColumn const& key, std::uint32_t rows);

  std::vector<std::unique_ptr<DirectKey>> keys_;
  std::size_t width_ = 1;
  bool areDirect_ = true;
};
