#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "zyn/format/cell_text.h"
#include "zyn/format/text_buffer.h"

/// The texts of a CellText, byte for byte, for whoever writes a million of them. Settings are taken
/// over once, and numbers and dates written where they will stand. Made right before its cells are
/// written, and used no longer than its CellText; belongs to one thread.
class CellWriter {
 public:
  explicit CellWriter(CellText const& text);

  /// Bytes that a text may take without looking after room for them itself.
  std::size_t room() const { return room_; }

  /// Writes the text of a row from `place` on, where there must be room() bytes, and gives the
  /// text's end. A text that takes more finds itself room, and `rest` bytes behind it.
  char* write(TextBuffer& buffer, char* place, std::size_t rest, unsigned int row);

 private:
  struct Integers {
    ColumnStorage<int> const* cells;
    NumberLayout layout;
  };
  struct Decimals {
    ColumnStorage<double> const* cells;
    NumberLayout layout;
  };
  /// Texts of days that were met: there are far fewer days than cells. A day's text stands where
  /// its number tells, until another day takes the place.
  struct DayText {
    static constexpr std::size_t kBytes = 12;

    std::uint32_t day = 0;  // from the first day that there is; 0 for none
    char bytes[kBytes];
  };
  struct Dates {
    ColumnStorage<datetime_t> const* cells;
    DateMask const* mask;
    std::vector<DayText> known;  // empty where texts are too long to be kept
  };
  struct Texts {
    ColumnStorage<std::string> const* cells;
  };
  struct Others {};
  using Road = std::variant<Others, Integers, Decimals, Dates, Texts>;

  bool takeIntegers();
  bool takeDecimals();
  bool takeDates();
  bool takeTexts();
  static char* put(char* place, std::string const& text);
  char* writeInteger(Integers const& road, char* place, unsigned int row) const;
  char* writeDecimal(Decimals const& road, char* place, unsigned int row) const;
  char* writeDate(Dates& road, char* place, unsigned int row) const;
  static char* putDate(Dates& road, char* place, datetime_t const& moment);
  char* writeText(Texts const& road, TextBuffer& buffer, char* place, std::size_t rest,
                  unsigned int row) const;
  char* writeOther(TextBuffer& buffer, char* place, std::size_t rest, unsigned int row) const;

  CellText const* text_;
  Road road_;
  std::string prefix_;
  std::string suffix_;
  bool isBare_ = true;  // nothing stands before or behind the text
  std::size_t room_ = 0;
};
