#include "zyn/matrix/text_sort_column.h"

#include <algorithm>
#include <bit>

namespace {

constexpr unsigned int kWordBytes = 8;
constexpr unsigned int kMaxWords = 4;  // more bytes than a sort record has room for

}  // namespace

TextSortColumn::TextSortColumn(ColumnStorage<std::string> const& storage, std::uint32_t rows,
                               bool descending)
    : cells_(storage.values.cells()),
      nulls_(storage.nulls),
      hasNulls_(storage.nulls.any()),
      descending_(descending) {
  std::uint32_t shortest = ~std::uint32_t{0};
  std::uint32_t longest = 0;
  for (std::uint32_t row = 0; row < rows; ++row) {
    std::uint32_t const length = isNull(row) ? 0 : cells_[row].size();
    shortest = std::min(shortest, length);
    longest = std::max(longest, length);
  }
  if (hasNulls_) {
    pieces_.push_back({PieceKind::kNull, 0, 1});
  }
  unsigned int const words = (longest + kWordBytes - 1) / kWordBytes;
  for (unsigned int word = 0; word < std::min(words, kMaxWords); ++word) {
    addWord(word, rows);
  }
  exact_ = words <= kMaxWords;
  if (exact_ && shortest != longest) {
    pieces_.push_back({PieceKind::kLength, 0, static_cast<unsigned int>(std::bit_width(longest))});
  }
}

void TextSortColumn::addWord(unsigned int word, std::uint32_t rows) {
  std::uint64_t common = ~std::uint64_t{0};
  std::uint64_t any = 0;
  for (std::uint32_t row = 0; row < rows; ++row) {
    std::uint64_t const bytes = isNull(row) ? 0 : cells_[row].word(word);
    common &= bytes;
    any |= bytes;
  }
  BitCompress const compress(common ^ any);
  if (compress.bits() != 0) {
    pieces_.push_back({PieceKind::kWord, word, compress.bits(), compress});
  }
}

void TextSortColumn::encodeWord(Piece const& piece, std::uint32_t firstRow, std::uint32_t count,
                                std::uint64_t* codes) const {
  for (std::uint32_t i = 0; i < count; ++i) {
    codes[i] = isNull(firstRow + i) ? 0 : cells_[firstRow + i].word(piece.word);
  }
  piece.compress.apply(codes, count);
}

void TextSortColumn::encode(unsigned int piece, std::uint32_t firstRow, std::uint32_t count,
                            std::uint64_t* codes) const {
  Piece const& wanted = pieces_[piece];
  if (wanted.kind == PieceKind::kWord) {
    encodeWord(wanted, firstRow, count, codes);
  } else {
    for (std::uint32_t i = 0; i < count; ++i) {
      bool const null = isNull(firstRow + i);
      std::uint64_t const code = wanted.kind == PieceKind::kNull ? 1 : cells_[firstRow + i].size();
      codes[i] = null ? 0 : code;
    }
  }
  if (descending_) {
    std::uint64_t const mask = ~std::uint64_t{0} >> (64 - wanted.bits);
    for (std::uint32_t i = 0; i < count; ++i) {
      codes[i] ^= mask;
    }
  }
}

int TextSortColumn::compare(std::uint32_t left, std::uint32_t right) const {
  int order = static_cast<int>(isNull(right)) - static_cast<int>(isNull(left));
  if (order == 0 && !isNull(left)) {
    order = TextRef::compare(cells_[left], cells_[right]);
  }
  return descending_ ? -order : order;
}
