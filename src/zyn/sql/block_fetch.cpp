#include "zyn/sql/block_fetch.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <new>
#include <set>
#include <stdexcept>
#include <string_view>

#include "mox/core/application.h"
#include "mox/core/blob.h"
#include "mox/core/row_block_reader.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/matrix/data_matrix_columns.h"

namespace {

// Large enough to pay for a call a block, small enough that a block of all fields stays in the
// second cache.
constexpr int kBlockRows = 1024;

using FieldType = moxDatabaseConnection::FieldType;
using NullBytes = std::array<std::uint8_t, kBlockRows>;
using BlobPointer = std::shared_ptr<moxReadBlob>;

/// The lowest bit of each of eight bytes, which are 0 or 1, as one byte: the multiplication moves
/// each bit to its place in the highest byte, and no two of its products meet.
std::uint8_t bitsOf(std::uint8_t const* bytes) {
  static_assert(std::endian::native == std::endian::little);
  constexpr std::uint64_t kSpread = 0x0102040810204080;
  std::uint64_t eight = 0;
  std::memcpy(&eight, bytes, sizeof eight);
  return static_cast<std::uint8_t>(eight * kSpread >> 56U);
}

/// Adds `rows` flags, of which the last up to seven are asked one by one. Columns that are filled
/// by blocks alone have a multiple of eight rows before.
void appendNulls(NullBits& bits, NullBytes const& bytes, std::size_t rows) {
  std::size_t const start = bits.size();
  bits.pushValid(rows);
  std::size_t row = 0;
  if (start % 8 == 0) {
    for (; row + 8 <= rows; row += 8) {
      bits.setEight(start + row, bitsOf(bytes.data() + row));
    }
  }
  for (; row < rows; ++row) {
    if (bytes[row] != 0) {
      bits.setBlank(start + row);
    }
  }
}

/// Makes room for `rows` cells. A large array takes address space well ahead of its rows: that
/// costs nothing until it is touched, while doubling would have the system clear, and the loop
/// copy, all of it once more.
template <class Array>
void growFor(Array& cells, std::size_t rows) {
  constexpr std::size_t kLargeBytes = std::size_t{1} << 20;
  constexpr std::size_t kLeastRoom = std::size_t{64} << 20;  // bytes; holds most results whole
  constexpr std::size_t kGrowth = 8;
  constexpr std::size_t kCellBytes = sizeof(cells[0]);
  if (rows <= cells.capacity() || cells.size() * kCellBytes < kLargeBytes) {
    return;  // enough room, or the array grows by itself
  }
  try {
    cells.reserve(std::max(kGrowth * cells.size(), kLeastRoom / kCellBytes));
  } catch (std::bad_alloc const&) {
    cells.reserve(rows + cells.size() / 2);  // address space is short
  }
}

/// The way of one field from blocks of rows into a column.
class BlockSink {
 public:
  virtual ~BlockSink() = default;

  /// Room for the field's next kBlockRows values.
  virtual moxFieldBlock offer() = 0;

  /// Takes over as many of them as were read.
  virtual void take(std::size_t rows) = 0;
};

class PassedOver final : public BlockSink {
 public:
  moxFieldBlock offer() override {
    moxFieldBlock block;
    block.wanted = false;
    return block;
  }
  void take(std::size_t) override {}
};

/// Shared by the kinds: rows count once their null flags are there. Whatever an exception leaves in
/// the values beyond them is taken back when the sink goes.
template <class T>
class StorageSink : public BlockSink {
 public:
  StorageSink(ColumnStorage<T>& storage, std::size_t expectedRows) : storage_(storage) {
    if (expectedRows > 0) {
      storage_.reserve(expectedRows + kBlockRows);  // the last block is offered in full
    }
  }
  StorageSink(StorageSink const&) = delete;
  StorageSink& operator=(StorageSink const&) = delete;
  ~StorageSink() override { cells().resize(committed()); }

 protected:
  auto& cells() { return storage_.values.array(); }
  std::size_t committed() const { return storage_.nulls.size(); }

  /// The cells behind the committed ones, all with the value that stands under a null.
  typename ColumnStorage<T>::Cell* freshCells(std::size_t rows) {
    growFor(cells(), committed() + rows);
    cells().resize(committed() + rows);
    return cells().data() + committed();
  }

  /// Nulls are told by writing a 1, and are forgotten from block to block.
  moxFieldBlock blockReadAs(FieldType type) {
    nulls_.fill(0);
    moxFieldBlock block;
    block.readAs = type;
    block.nulls = nulls_.data();
    return block;
  }

  bool isNull(std::size_t row) const { return nulls_[row] != 0; }

  void commit(std::size_t rows) {
    cells().resize(committed() + rows);
    appendNulls(storage_.nulls, nulls_, rows);
  }

  ColumnStorage<T>& storage_;

 private:
  NullBytes nulls_{};
};

/// Values of natural width: the statement writes them into the column's own array.
template <class T>
class PlainSink final : public StorageSink<T> {
 public:
  using StorageSink<T>::StorageSink;

  moxFieldBlock offer() override { return point(this->freshCells(kBlockRows)); }
  void take(std::size_t rows) override { this->commit(rows); }

 private:
  moxFieldBlock point(std::int32_t* place) {
    auto block = this->blockReadAs(FieldType::kInt);
    block.ints = place;
    return block;
  }
  moxFieldBlock point(double* place) {
    auto block = this->blockReadAs(FieldType::kDouble);
    block.doubles = place;
    return block;
  }
  moxFieldBlock point(datetime_t* place) {
    auto block = this->blockReadAs(FieldType::kDate);
    block.dates = place;
    return block;
  }
};

/// Bytes that belong to the statement until its next block, copied into the column.
template <class T>
class BytesSink : public StorageSink<T> {
 public:
  using StorageSink<T>::StorageSink;

 protected:
  moxFieldBlock offerBytes(FieldType type) {
    auto block = this->blockReadAs(type);
    block.texts = bytes_.data();
    return block;
  }

  std::array<std::string_view, kBlockRows> bytes_;
};

class TextSink final : public BytesSink<std::string> {
 public:
  using BytesSink::BytesSink;

  moxFieldBlock offer() override { return offerBytes(FieldType::kText); }

  void take(std::size_t rows) override {
    TextRef* const target = freshCells(rows);
    for (std::size_t row = 0; row < rows; ++row) {
      if (!isNull(row)) {
        target[row] = storage_.values.intern(bytes_[row]);
      }
    }
    commit(rows);
  }
};

class BlobSink final : public BytesSink<BlobPointer> {
 public:
  using BytesSink::BytesSink;

  moxFieldBlock offer() override { return offerBytes(FieldType::kBlob); }

  void take(std::size_t rows) override {
    BlobPointer* const target = freshCells(rows);
    for (std::size_t row = 0; row < rows; ++row) {
      if (!isNull(row)) {
        target[row] = copyOf(bytes_[row]);
      }
    }
    commit(rows);
  }

 private:
  static BlobPointer copyOf(std::string_view bytes) {
    auto blob = moxApp->get<moxBlob>("moxBlob");
    blob->assign(bytes.data(), bytes.size());
    return blob;
  }
};

template <class T>
std::unique_ptr<BlockSink> makeSink(ColumnStorage<T>& storage, std::size_t expectedRows) {
  return std::make_unique<PlainSink<T>>(storage, expectedRows);
}
std::unique_ptr<BlockSink> makeSink(ColumnStorage<std::string>& storage, std::size_t expectedRows) {
  return std::make_unique<TextSink>(storage, expectedRows);
}
std::unique_ptr<BlockSink> makeSink(ColumnStorage<BlobPointer>& storage, std::size_t expectedRows) {
  return std::make_unique<BlobSink>(storage, expectedRows);
}

using Sinks = std::vector<std::unique_ptr<BlockSink>>;
using Columns = std::vector<std::shared_ptr<moxDataMatrixColumn>>;

bool hasRepeatedColumn(Columns const& columns) {
  std::set<moxDataMatrixColumn const*> seen;
  for (auto const& column : columns) {
    if (column && !seen.insert(column.get()).second) {
      return true;
    }
  }
  return false;
}

/// Empty for a column of foreign make.
std::unique_ptr<BlockSink> sinkFor(moxDataMatrixColumn* column, std::size_t expectedRows) {
  if (column == nullptr) {
    return std::make_unique<PassedOver>();
  }
  std::unique_ptr<BlockSink> sink;
  withStorage(*column, [&](auto& storage) { sink = makeSink(storage, expectedRows); });
  return sink;
}

/// One sink a column; none at all when a column has no sink.
Sinks sinksFor(Columns const& columns, std::size_t expectedRows) {
  Sinks sinks;
  for (auto const& column : columns) {
    auto sink = sinkFor(column.get(), expectedRows);
    if (!sink) {
      return {};
    }
    sinks.push_back(std::move(sink));
  }
  return sinks;
}

int fetchBlock(moxRowBlockReader& reader, Sinks const& sinks, std::vector<moxFieldBlock>& fields) {
  for (std::size_t i = 0; i < sinks.size(); ++i) {
    fields[i] = sinks[i]->offer();
  }
  int const rows = reader.fetchBlock(fields, kBlockRows);
  if (rows < 0 || rows > kBlockRows) {
    throw std::logic_error("a statement read more rows than it was given room for");
  }
  for (auto const& sink : sinks) {
    sink->take(static_cast<std::size_t>(rows));
  }
  return rows;
}

}  // namespace

bool fetchByBlocks(moxDatabaseConnection::PreparedStatement& statement,
                   std::vector<std::shared_ptr<moxDataMatrixColumn>> const& columns,
                   std::size_t expectedRows) {
  auto* const reader = dynamic_cast<moxRowBlockReader*>(&statement);
  auto const fieldCount = static_cast<std::size_t>(statement.fieldCount());
  if (reader == nullptr || columns.size() != fieldCount || hasRepeatedColumn(columns)) {
    return false;
  }
  auto const sinks = sinksFor(columns, expectedRows);
  if (sinks.empty()) {
    return false;
  }
  std::vector<moxFieldBlock> fields(sinks.size());
  while (fetchBlock(*reader, sinks, fields) == kBlockRows) {
  }
  return true;
}
