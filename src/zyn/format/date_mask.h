#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "mox/core/date.h"
#include "mox/core/datetime.h"

/// A strftime mask, taken apart once. The conversions of common masks are written by hand; a mask
/// with any other one goes to strftime as it is. Read by any thread.
class DateMask {
 public:
  /// What strftime is given: a text that needs as many bytes, its end mark included, is dropped.
  static constexpr std::size_t kTextLimit = 100;

  /// The empty mask.
  DateMask() = default;
  explicit DateMask(std::string const& mask);

  /// Appends the moment's text, or nothing when it takes 100 bytes or more. Precondition: not the
  /// empty moment.
  void appendTo(std::string& out, datetime_t const& moment) const;

  /// The same for a day, at midnight.
  void appendTo(std::string& out, date_t const& day) const;

  /// The length of all texts that are written by hand; 0 when the mask needs the library, or gives
  /// nothing.
  std::size_t fixedLength() const { return needsLibrary_ || length_ >= kTextLimit ? 0 : length_; }

  /// Writes a text of fixedLength(), which is not 0, from `place` on; gives its end. Empty, with
  /// nothing written, for a year that only the library writes. Precondition: not the empty moment.
  char* put(char* place, datetime_t const& moment) const;

 private:
  enum class Part : char { kByte, kDay, kMonth, kYear, kShortYear, kHour, kMinute, kSecond };
  struct Piece {
    Part part;
    char byte;  // kByte only
  };
  struct Civil;

  static char* putPiece(char* end, Piece piece, Civil const& civil);
  char* putAll(char* place, Civil const& civil) const;
  bool takeConversion(char conversion);
  void addByte(char byte) { pieces_.push_back({Part::kByte, byte}); }
  void addDate(Part first, char separator, Part second, Part third);
  bool isByHand(Civil const& civil) const;
  void appendByHand(std::string& out, Civil const& civil) const;
  void appendByLibrary(std::string& out, std::tm const& parts) const;

  std::string mask_;
  std::vector<Piece> pieces_;
  std::size_t length_ = 0;     // bytes of a text written by hand
  bool needsLibrary_ = false;  // pieces_ is not the whole mask
};

/// The broken down time for a moment whose class gives none: normalised by the C library. An hour
/// in summer time stays the hour that was given.
std::tm normalizedMoment(std::tm parts);

/// The same for a day.
std::tm normalizedDay(std::tm parts);
