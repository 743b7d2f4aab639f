#include "zyn/matrix/text_sort_column.h"

#include <algorithm>
#include <array>
#include <bit>

namespace {

constexpr unsigned int kWordBytes = 8;
constexpr unsigned int kMaxWords = 4;  // more bytes than a sort record has room for

/// What the texts have in common. Nulls count as empty texts.
struct Survey {
  std::uint32_t shortest = ~std::uint32_t{0};
  std::uint32_t longest = 0;
  std::array<std::uint64_t, kMaxWords> common;  // bits that are set in every row's word
  std::array<std::uint64_t, kMaxWords> any{};   // and in some row's

  Survey() { common.fill(~std::uint64_t{0}); }

  std::uint64_t varyingBits(unsigned int word) const { return common[word] ^ any[word]; }
};

/// Looks at the texts once, at the first two words alone while no text is longer: the others are
/// zero then.
Survey surveyOf(TextRef const* cells, NullBits const* nulls, std::uint32_t rows) {
  Survey survey;
  for (std::uint32_t row = 0; row < rows; ++row) {
    TextRef const text = nulls != nullptr && nulls->test(row) ? TextRef() : cells[row];
    survey.shortest = std::min(survey.shortest, text.size());
    survey.longest = std::max(survey.longest, text.size());
    unsigned int const words = text.size() <= 2 * kWordBytes ? 2 : kMaxWords;
    for (unsigned int word = 0; word < words; ++word) {
      std::uint64_t const bytes = text.word(word);
      survey.common[word] &= bytes;
      survey.any[word] |= bytes;
    }
    for (unsigned int word = words; word < kMaxWords; ++word) {
      survey.common[word] = 0;
    }
  }
  return survey;
}

}  // namespace

TextSortColumn::TextSortColumn(ColumnStorage<std::string> const& storage, std::uint32_t rows,
                               bool descending)
    : cells_(storage.values.cells()),
      nulls_(storage.nulls),
      hasNulls_(storage.nulls.any()),
      descending_(descending) {
  Survey const survey = surveyOf(cells_, hasNulls_ ? &nulls_ : nullptr, rows);
  if (hasNulls_) {
    pieces_.push_back({PieceKind::kNull, 0, 1});
  }
  unsigned int const words = (survey.longest + kWordBytes - 1) / kWordBytes;
  for (unsigned int word = 0; word < std::min(words, kMaxWords); ++word) {
    addWord(word, survey.varyingBits(word));
  }
  exact_ = words <= kMaxWords;
  if (exact_ && survey.shortest != survey.longest) {
    pieces_.push_back(
        {PieceKind::kLength, 0, static_cast<unsigned int>(std::bit_width(survey.longest))});
  }
}

void TextSortColumn::addWord(unsigned int word, std::uint64_t varyingBits) {
  BitCompress const compress(varyingBits);
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
