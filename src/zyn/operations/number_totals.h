#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "zyn/matrix/column_copy.h"
#include "zyn/matrix/large_allocator.h"
#include "zyn/operations/packed_grouping.h"

/// What can be known of the numbers of a group; several together.
enum class NumberTotal : unsigned int { kSum = 1, kMin = 2, kMax = 4 };

/// Sums, lowest and highest numbers, and how many there are, of each group and several columns. All
/// that is kept of a group stands in one record, so that a row costs one place in memory, whatever
/// is asked for.
class NumberTotals final : public GroupTaker {
 public:
  /// Asks for a total of a column of the module's own with whole numbers or doubles; before the
  /// first rows are taken. The column must outlive this.
  void ask(MatrixColumn const& source, NumberTotal total);

  /// Asks for the number of rows.
  void askRows() { countsRows_ = true; }

  bool isEmpty() const { return sources_.empty() && !countsRows_; }

  void take(std::uint32_t from, std::uint32_t count, std::uint32_t const* groups,
            std::uint32_t groupCount) override;
  void restart() override { groupCount_ = 0; }

  /// Replaces the values of `target`, a column of the same kind: the total of each group, null for
  /// a group without a value.
  void write(MatrixColumn const& source, NumberTotal total, moxDataMatrixColumn& target) const;

  /// Replaces the values of a column of whole numbers: how many values each group has, null for
  /// none.
  void writeCounts(MatrixColumn const& source, moxDataMatrixColumn& target) const;

  /// The number of rows of each group.
  void writeRows(moxDataMatrixColumn& target) const;

 private:
  struct Source {
    MatrixColumn column;
    unsigned int totals = 0;
    std::size_t place = 0;  // in a record
    void (*take)(NumberTotals& all, Source const& source, std::uint32_t from, std::uint32_t count,
                 std::uint32_t const* groups) = nullptr;
  };

  template <class T, unsigned int kTotals, bool kCountsRows>
  static void takeRows(NumberTotals& all, Source const& source, std::uint32_t from,
                       std::uint32_t count, std::uint32_t const* groups);
  template <class T, bool kCountsRows>
  static void choose(Source& source);

  Source const& sourceOf(MatrixColumn const& column) const;
  void layOut();
  void addGroups(std::uint32_t groupCount);
  void takeFar(std::uint32_t from, std::uint32_t count, std::uint32_t const* groups);
  void takeNear(std::uint32_t from, std::uint32_t count, std::uint32_t const* groups);
  void countRows(std::uint32_t count, std::uint32_t const* groups);

  std::vector<Source> sources_;
  bool countsRows_ = false;
  std::size_t stride_ = 0;   // bytes of a record; 0 before the first rows
  std::vector<char> blank_;  // the record of a group without rows
  std::vector<char, LargeAllocator<char>> records_;
  std::uint32_t groupCount_ = 0;
};
