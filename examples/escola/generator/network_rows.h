#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "escola/generator/generation.h"

namespace escola {

/// The rows that do not depend on the size: units, users, settings, panels, favourites, courses,
/// subjects, calendar, and the staff that each unit has from the start.
void writeNetworkRows(Context& context);

/// Writes one employee and gives his identifier. `unit` 0 is staff of the whole network; `user` 0
/// is nobody.
struct Employee {
  int unit = 0;
  int headOffice = 0;
  int user = 0;
  std::string_view name;  // empty: drawn
  std::string role;
  Hundredths salary;
  Day hiredBy;
  std::optional<Day> left;
};
int writeEmployee(Context& context, Employee const& employee);

}  // namespace escola
