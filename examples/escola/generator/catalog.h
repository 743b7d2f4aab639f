#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "escola/generator/cell.h"

namespace escola {

// What is the same in every example database, whatever its size: places, courses, subjects and
// people who log in.

struct Unit {
  int id;
  int headOffice;  // its own id for a head office
  std::string_view name;
  std::string_view city;
  std::string_view state;
  std::string_view areaCode;
  std::string_view postalCode;  // first five digits
  int weight;                   // share of the students
  int pricePercent;             // of the course's fee
};

/// Fields of knowledge, which decide who teaches a subject.
enum class Field { kLanguages, kMathematics, kNature, kHumanities, kTechnical, kBodyAndArts };
inline constexpr int kFieldCount = 6;

struct Subject {
  int id;
  std::string_view code;
  std::string_view name;
  Field field;
  int weeklyLessons;
  int unit;  // 0 when every unit teaches it
};

struct Course {
  int id;
  int headOffice;  // 0 when every network offers it
  std::string_view name;
  std::string_view level;
  std::string_view shortName;  // behind the year in a class's name
  int years;
  int firstLevel;  // "6º ano": 6
  int entryAge;
  int weight;
  Hundredths monthlyFee;
  std::span<int const> subjects;
  std::span<std::string_view const> shifts;
};

struct User {
  int id;
  std::string_view login;
  std::string_view name;
  std::string passwordHash;  // Argon2id; empty for those who cannot log in
  int unit;                  // 0 when he has none
  bool worksByUnits;
  bool student;
  bool active;
  std::vector<int> units;
  std::vector<std::string_view> libraries;  // empty: every library
};

std::span<Unit const> units();
std::span<Subject const> subjects();
std::span<Course const> courses();
std::span<User const> users();

std::string_view fieldName(Field field);

/// "[U3]" for the unit 3, "[REDE]" for 0: stands in a text of every row, so that a row that shows
/// up where its unit must not be seen is recognised by its text alone.
std::string unitToken(int unit);

/// Staff that every unit has from the start: management, then teachers by field.
inline constexpr int kManagersPerUnit = 3;
inline constexpr int kTeachersPerField = 2;
inline constexpr int kStaffPerUnit = kManagersPerUnit + kFieldCount * kTeachersPerField;

/// Identifier of one of the unit's first employees, `place` 0 to kStaffPerUnit - 1.
inline int unitStaffId(int unit, int place) {
  return (unit - 1) * kStaffPerUnit + place + 1;
}

}  // namespace escola
