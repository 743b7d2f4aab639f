#include "support/wiring/wiring.h"

#include <algorithm>

namespace mox_test::wiring {
namespace {

std::string listOf(std::vector<int> const& values, int column) {
  std::string list;
  for (int const value : values) {
    auto const text = textOf(value, column);
    list += (list.empty() ? "" : ", ") + (column == kText ? "'" + text + "'" : text);
  }
  return list;
}

}  // namespace

std::string columnName(int table, int column) {
  constexpr char const* kNames[] = {"id", "a", "b", "u", "s"};
  return kNames[column] + std::to_string(table);
}

std::string textOf(Value value, int column) {
  return value ? (column == kText ? "s" : "") + std::to_string(*value) : "null";
}

bool Condition::holds(Value value) const {
  if (!value) {
    return false;
  }
  bool const isAmong = std::find(values.begin(), values.end(), *value) != values.end();
  switch (test) {
    case kEquals:
      return *value == values[0];
    case kAmong:
      return isAmong;
    case kNotAmong:
      return !values.empty() && !isAmong;
    case kAtLeast:
      return *value >= values[0];
    case kBetween:
      return *value >= values[0] && *value <= values[1];
  }
  return false;
}

std::string Condition::sql(int table) const {
  auto const name = std::string(kAlias) + "." + columnName(table, column);
  auto const list = listOf(values, column);
  switch (test) {
    case kEquals:
      return name + " = " + list;
    case kAmong:
      return name + " in (" + list + ")";
    case kNotAmong:
      return name + " not in (" + list + ")";
    case kAtLeast:
      return name + " >= " + list;
    case kBetween:
      return name + " between " + std::to_string(values[0]) + " and " + std::to_string(values[1]);
  }
  return {};
}

std::string Join::sql(int firstTable) const {
  return (isLeft ? "left join t" : "join t") + std::to_string(table) + " " + alias + " on " +
         alias + "." + columnName(table, kId) + " = " + kAlias + "." +
         columnName(firstTable, column);
}

std::string Member::target(std::string const& named) const {
  if (isExternal) {
    for (auto const& [external, internal] : relations) {
      if (external == named) {
        return internal;
      }
    }
  }
  return named;
}

Member const* Group::find(std::string const& member) const {
  auto const found = std::find_if(members.begin(), members.end(),
                                  [&](Member const& each) { return each.name == member; });
  return found == members.end() ? nullptr : &*found;
}

Member const* Group::queryBehind(Member const* member) const {
  while (auto const* const chained = std::get_if<FilterSource>(&member->source)) {
    member = find(member->target(chained->source));
  }
  return member;
}

Member const* Wiring::changedFromOutside(Member const& filterSource) const {
  auto const& aim = std::get<FilterSource>(filterSource.source).source;
  auto const mark = aim.find("->");
  return group.find(mark == std::string::npos ? group.filterSource : aim.substr(mark + 2));
}

bool Wiring::isFlat() const {
  return std::none_of(group.members.begin(), group.members.end(), [](Member const& member) {
    return member.isExternal || std::holds_alternative<std::shared_ptr<Group>>(member.source);
  });
}

}  // namespace mox_test::wiring
