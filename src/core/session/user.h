#pragma once

#include <set>
#include <string>
#include <vector>

namespace mox::core {

/// A business unit that a user may work in.
struct UserUnit {
  int id = 0;
  int headOffice = 0;  // 0 when unknown

  bool operator==(UserUnit const&) const = default;
};

/// A user as a directory knows him. A plain value: a session takes a copy when it is opened.
struct User {
  int id = 0;
  std::string login = {};
  std::string name = {};                 // for people; the login when the directory has no other
  int defaultUnit = 0;                   // 0 when none was chosen
  std::vector<UserUnit> units = {};      // by id, each once; the default unit, if any, among them
  bool worksByUnits = false;             // sees only rows of his units
  bool student = false;                  // has a module for students open
  std::set<std::string> libraries = {};  // libraries that he may use; empty: all of them
};

/// The user with no other units than `unitIds`, the first of which becomes the default unless the
/// present default is among them. Throws moxError, naming the unit, for one that is not his. An
/// empty list changes nothing.
User restrictedToUnits(User user, std::vector<int> const& unitIds);

/// Brings `units` into the order and the uniqueness that a User promises, the default unit
/// included.
void normalizeUnits(User& user, int headOfficeOfDefault);

}  // namespace mox::core
