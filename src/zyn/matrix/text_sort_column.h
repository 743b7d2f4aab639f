#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zyn/matrix/bit_compress.h"
#include "zyn/matrix/column_storage.h"
#include "zyn/matrix/sort_column.h"

/// Texts as numbers: a bit for the null, the bytes in words of eight with the bits left out that
/// are the same in every row (a common beginning costs nothing, letters cost five or six bits), and
/// the length, which tells "a" from "a" with a zero byte behind. Only the first words are taken;
/// longer texts are told apart by comparing.
class TextSortColumn final : public SortColumn {
 public:
  /// `storage` must outlive the column.
  TextSortColumn(ColumnStorage<std::string> const& storage, std::uint32_t rows, bool descending);

  unsigned int pieceCount() const override { return static_cast<unsigned int>(pieces_.size()); }
  unsigned int pieceBits(unsigned int piece) const override { return pieces_[piece].bits; }
  void encode(unsigned int piece, std::uint32_t firstRow, std::uint32_t count,
              std::uint64_t* codes) const override;
  bool isExact() const override { return exact_; }
  int compare(std::uint32_t left, std::uint32_t right) const override;

 private:
  enum class PieceKind { kNull, kWord, kLength };

  struct Piece {
    PieceKind kind;
    unsigned int word = 0;  // which eight bytes, for kWord
    unsigned int bits = 0;
    BitCompress compress{0};  // for kWord
  };

  bool isNull(std::uint32_t row) const { return hasNulls_ && nulls_.test(row); }
  void addWord(unsigned int word, std::uint64_t varyingBits);
  void encodeWord(Piece const& piece, std::uint32_t firstRow, std::uint32_t count,
                  std::uint64_t* codes) const;

  TextRef const* cells_;
  NullBits const& nulls_;
  bool hasNulls_;
  bool descending_;
  bool exact_ = true;
  std::vector<Piece> pieces_;
};
