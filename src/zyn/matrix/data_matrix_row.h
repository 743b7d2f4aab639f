#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_column.h"
#include "mox/zyn/matrix/data_matrix_row.h"

/// The cursors that move in step and, while a filter is in force, the index that says where they
/// go.
class DataMatrixRow final : public moxDataMatrixRow,
                            public std::enable_shared_from_this<DataMatrixRow> {
 public:
  class Index;

  DataMatrixRow();
  ~DataMatrixRow() override;
  DataMatrixRow(DataMatrixRow const&) = delete;
  DataMatrixRow& operator=(DataMatrixRow const&) = delete;

  std::string name() const override { return "moxDataMatrixRow"; }

  void addIterator(std::shared_ptr<moxIterator> iterator) override;
  std::vector<std::shared_ptr<moxIterator>> getIterators() override;
  std::vector<std::shared_ptr<moxIterator const>> getIterators() const override;
  std::shared_ptr<moxIterator> getIterator(unsigned int index) override;
  std::shared_ptr<moxIterator const> getIterator(unsigned int index) const override;
  unsigned int totalIterators() const override;
  void removeIterator(std::shared_ptr<moxIterator> iterator) override;
  void removeIteratorAt(unsigned int index) override;
  bool next() override;
  bool previous() override;
  bool goTo(unsigned int row) override;
  bool goToEnd() override;
  std::shared_ptr<moxIterator> findIterator(std::string const& columnName) override;
  std::shared_ptr<moxIterator const> findIterator(std::string const& columnName) const override;
  bool atEnd() const override;
  std::shared_ptr<moxDataMatrixRow> clone() const override;
  bool beginWithFilter(std::vector<std::shared_ptr<moxIterator>> const& keys,
                       std::vector<std::shared_ptr<moxIterator const>> const& values) override;
  void clearFilter() override;
  unsigned int count() const override;

 private:
  /// The place of the first cursor over a column of that name; totalIterators() when there is none.
  std::size_t placeOf(std::string const& columnName) const;
  void useIndexOver(std::vector<std::shared_ptr<moxIterator>> const& keys);
  void copyFilterTo(DataMatrixRow& copy) const;

  std::vector<std::shared_ptr<moxIterator>> cursors_;

  /// The column of each cursor, kept alive: a cursor does not own its column, and a matrix may drop
  /// one while somebody still holds a row of it. Empty for a column that no shared_ptr holds.
  std::vector<std::shared_ptr<moxDataMatrixColumn>> columns_;

  std::vector<std::shared_ptr<moxIterator>> filterKeys_;  // empty without a filter
  std::unique_ptr<Index> index_;                          // null without a filter
};

/// The column of a cursor, to be held beside it; empty for a column that no shared_ptr holds, whose
/// owner answers for its life himself.
std::shared_ptr<moxDataMatrixColumn> columnToKeep(moxIterator const& cursor);
