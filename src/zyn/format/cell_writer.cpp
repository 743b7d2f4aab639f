#include "zyn/format/cell_writer.h"

#include <algorithm>
#include <cstring>

#include "zyn/format/text_formatter.h"
#include "zyn/matrix/common_column.h"

namespace {

constexpr std::size_t kShortText = 32;
constexpr std::uint64_t kSecondsPerDay = 86'400;
constexpr std::int64_t kSecondsToYear0 = std::int64_t{719'528} * 86'400;  // before any date
constexpr std::size_t kKnownDays = 4096;                                  // eleven years, in 64 KiB

template <class T>
ColumnStorage<T> const* storageOf(CellText const& text) {
  auto const* const own = dynamic_cast<CommonColumn<T> const*>(text.column().get());
  return own == nullptr ? nullptr : &own->storage();
}

template <class Formatter>
Formatter const* formatterOf(CellText const& text) {
  return dynamic_cast<Formatter const*>(text.formatter().get());
}

template <class T>
bool isEmpty(ColumnStorage<T> const& cells, unsigned int row) {
  return row >= cells.size() || cells.nulls.test(row);
}

/// Copies a text of at most kShortText bytes by pieces of fixed sizes, which may overlap, or reach
/// beyond its end where the bytes are the reference's own.
char* putShort(char* place, TextRef const& text) {
  constexpr std::size_t kPiece = 16;
  char const* const bytes = text.data();
  std::size_t const count = text.size();
  if (text.isInline()) {
    std::memcpy(place, bytes, TextRef::kInlineBytes);
  } else if (count >= kPiece) {
    std::memcpy(place, bytes, kPiece);
    std::memcpy(place + count - kPiece, bytes + count - kPiece, kPiece);
  } else {
    std::memcpy(place, bytes, kPiece / 2);
    std::memcpy(place + count - kPiece / 2, bytes + count - kPiece / 2, kPiece / 2);
  }
  return place + count;
}

}  // namespace

CellWriter::CellWriter(CellText const& text) : text_(&text) {
  if (text.formatter() && (takeIntegers() || takeDecimals() || takeDates() || takeTexts())) {
    prefix_ = text.formatter()->getPrefix();
    suffix_ = text.formatter()->getSuffix();
    room_ += prefix_.size() + suffix_.size();
    isBare_ = prefix_.empty() && suffix_.empty();
  }
}

bool CellWriter::takeIntegers() {
  auto const* const cells = storageOf<int>(*text_);
  auto const* const formatter = formatterOf<IntegralFormatter>(*text_);
  if (cells == nullptr || formatter == nullptr || formatter->getSpanSize() != 0) {
    return false;
  }
  road_ = Integers{cells, formatter->layout()};
  room_ = kNumberRoom;
  return true;
}

bool CellWriter::takeDecimals() {
  auto const* const cells = storageOf<double>(*text_);
  auto const* const formatter = formatterOf<DecimalFormatter>(*text_);
  if (cells == nullptr || formatter == nullptr || formatter->getSpanSize() != 0 ||
      formatter->getAllowShrinkPrecision()) {
    return false;
  }
  road_ = Decimals{cells, formatter->layout()};
  room_ = kNumberRoom;
  return true;
}

bool CellWriter::takeDates() {
  auto const* const cells = storageOf<datetime_t>(*text_);
  auto const* const formatter = formatterOf<DateFormatter>(*text_);
  if (cells == nullptr || formatter == nullptr || formatter->compiledMask().fixedLength() == 0) {
    return false;
  }
  DateMask const& mask = formatter->compiledMask();
  bool const isShort = mask.fixedLength() <= DayText::kBytes;
  road_ = Dates{cells, &mask, std::vector<DayText>(isShort ? kKnownDays : 0)};
  room_ = std::max(mask.fixedLength(), DayText::kBytes);
  return true;
}

bool CellWriter::takeTexts() {
  auto const* const cells = storageOf<std::string>(*text_);
  if (cells == nullptr || formatterOf<TextFormatter>(*text_) == nullptr) {
    return false;
  }
  road_ = Texts{cells};
  room_ = kShortText;
  return true;
}

char* CellWriter::put(char* place, std::string const& text) {
  return std::copy(text.begin(), text.end(), place);
}

char* CellWriter::write(TextBuffer& buffer, char* place, std::size_t rest, unsigned int row) {
  char* end = nullptr;
  if (auto const* const integers = std::get_if<Integers>(&road_)) {
    end = writeInteger(*integers, place, row);
  } else if (auto const* const texts = std::get_if<Texts>(&road_)) {
    end = writeText(*texts, buffer, place, rest, row);
  } else if (auto const* const decimals = std::get_if<Decimals>(&road_)) {
    end = writeDecimal(*decimals, place, row);
  } else if (auto* const dates = std::get_if<Dates>(&road_)) {
    end = writeDate(*dates, place, row);
  }
  return end != nullptr ? end : writeOther(buffer, place, rest, row);
}

char* CellWriter::writeInteger(Integers const& road, char* place, unsigned int row) const {
  if (isEmpty(*road.cells, row)) {
    return place;
  }
  int const value = road.cells->values.cells()[row];
  return isBare_ ? putInteger(place, value, road.layout)
                 : put(putInteger(put(place, prefix_), value, road.layout), suffix_);
}

/// Empty for a number that is written by the library.
char* CellWriter::writeDecimal(Decimals const& road, char* place, unsigned int row) const {
  if (isEmpty(*road.cells, row)) {
    return place;
  }
  double const value = road.cells->values.cells()[row];
  if (isBare_) {
    return putDecimal(place, value, road.layout);
  }
  char* const end = putDecimal(put(place, prefix_), value, road.layout);
  return end == nullptr ? end : put(end, suffix_);
}

/// Empty for a year that is written by the library.
char* CellWriter::writeDate(Dates& road, char* place, unsigned int row) const {
  if (isEmpty(*road.cells, row) || !road.cells->values.cells()[row]) {
    return place;
  }
  datetime_t const& moment = road.cells->values.cells()[row];
  if (isBare_) {
    return putDate(road, place, moment);
  }
  char* const end = putDate(road, put(place, prefix_), moment);
  return end == nullptr ? end : put(end, suffix_);
}

char* CellWriter::putDate(Dates& road, char* place, datetime_t const& moment) {
  auto const seconds = static_cast<std::uint64_t>(moment.asTime_t() + kSecondsToYear0);
  std::uint64_t const day = seconds / kSecondsPerDay;
  if (road.known.empty() || day * kSecondsPerDay != seconds) {
    return road.mask->put(place, moment);
  }
  DayText& known = road.known[day % kKnownDays];
  if (known.day != day) {
    known.day = 0;
    if (road.mask->put(known.bytes, moment) == nullptr) {
      return nullptr;
    }
    known.day = static_cast<std::uint32_t>(day);
  }
  std::memcpy(place, known.bytes, DayText::kBytes);
  return place + road.mask->fixedLength();
}

char* CellWriter::writeText(Texts const& road, TextBuffer& buffer, char* place, std::size_t rest,
                            unsigned int row) const {
  if (isEmpty(*road.cells, row) || road.cells->values.cells()[row].size() == 0) {
    return place;
  }
  TextRef const& text = road.cells->values.cells()[row];
  if (text.size() <= kShortText) {
    return isBare_ ? putShort(place, text) : put(putShort(put(place, prefix_), text), suffix_);
  }
  place = buffer.room(place, prefix_.size() + text.size() + suffix_.size() + rest);
  place = put(place, prefix_);
  std::memcpy(place, text.data(), text.size());
  return put(place + text.size(), suffix_);
}

char* CellWriter::writeOther(TextBuffer& buffer, char* place, std::size_t rest,
                             unsigned int row) const {
  std::string const text = text_->at(row);
  return put(buffer.room(place, text.size() + rest), text);
}
