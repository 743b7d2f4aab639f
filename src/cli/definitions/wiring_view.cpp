#include "cli/definitions/wiring_view.h"

#include <algorithm>
#include <optional>
#include <set>

#include <fmt/format.h>

#include "mox/core/error.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"

namespace mox::cli {

namespace {

bool isQuery(WiredMember const& member) {
  return dynamic_cast<moxSQLDataSource const*>(member.source.get()) != nullptr;
}

moxFilterDataSource const* asFilterSource(WiredMember const& member) {
  return dynamic_cast<moxFilterDataSource const*>(member.source.get());
}

// A chain as long as this is no wiring that anybody drew, and each of its members is followed.
constexpr std::size_t kMostStations = 1000;

std::string notAhead(std::string const& name) {
  return fmt::format("no member ahead of it is called \"{}\"", name);
}

/// From filter source to filter source, up to the query that they change in the end.
WireView filterWire(WiredMembers const& members, std::size_t index) {
  WireView wire{.source = asFilterSource(members[index])->getDataSourceName(),
                .through = {},
                .target = {},
                .defect = {}};
  std::set<std::size_t> passed;
  for (std::size_t at = index; passed.insert(at).second;) {
    if (passed.size() > kMostStations) {
      wire.through.clear();
      wire.defect = fmt::format("the way goes by more than {} filter sources", kMostStations);
      return wire;
    }
    auto const name = members[at].memberFor(asFilterSource(members[at])->getDataSourceName());
    auto const next = members.find(name, index + 1);
    if (!next) {
      wire.defect = notAhead(name);
      return wire;
    }
    if (isQuery(members[*next])) {
      wire.target = name;
      return wire;
    }
    if (asFilterSource(members[*next]) == nullptr) {
      wire.defect = fmt::format("\"{}\" is neither a query nor a filter source", name);
      return wire;
    }
    wire.through.push_back(name);
    at = *next;
  }
  wire.defect = "the filter sources change each other in a ring";
  return wire;
}

WireView managerWire(WiredMembers const& members, std::size_t index, std::string const& source) {
  auto const name = members[index].memberFor(source);
  WireView wire{.source = source, .through = {}, .target = {}, .defect = {}};
  auto const governed = members.find(name, index + 1);
  if (!governed) {
    wire.defect = notAhead(name);
  } else if (!isQuery(members[*governed])) {
    wire.defect = fmt::format("\"{}\" is no query", name);
  } else {
    wire.target = name;
  }
  return wire;
}

std::string relationDefect(WiredMembers const& members, moxDadoDataSource::Relation const& link) {
  auto const found = members.find(link.dataSource);
  if (!found) {
    return fmt::format("no member is called \"{}\"", link.dataSource);
  }
  auto const& source = members[*found].source;
  if (!source) {
    return {};
  }
  try {
    auto const columns = source->getColumns();
    bool const isThere = std::ranges::any_of(
        columns, [&](auto const& column) { return column.first == link.columnName; });
    return isThere ? "" : fmt::format("it has no column \"{}\"", link.columnName);
  } catch (moxError const& error) {
    return error.errorMessage();
  }
}

}  // namespace

std::string WiredMember::memberFor(std::string const& name) const {
  if (!member->dataSourceExterno().empty()) {
    for (auto const& [external, internal] : member->getDataSourceExternalRelation()) {
      if (external == name) {
        return internal;
      }
    }
  }
  return name;
}

void WiredMembers::add(WiredMember member) {
  firstOf_.try_emplace(member.member->getName(), members_.size());
  members_.push_back(std::move(member));
}

std::optional<std::size_t> WiredMembers::find(std::string const& name, std::size_t count) const {
  auto const found = firstOf_.find(name);
  return found != firstOf_.end() && found->second < count ? std::optional(found->second)
                                                          : std::nullopt;
}

std::vector<WireView> wiresOf(WiredMembers const& members, std::size_t index) {
  auto const* const source = members[index].source.get();
  if (asFilterSource(members[index]) != nullptr) {
    return {filterWire(members, index)};
  }
  std::vector<WireView> wires;
  if (auto const* const manager = dynamic_cast<moxManageFilterDataSource const*>(source)) {
    for (auto const& governed : manager->getSources()) {
      wires.push_back(managerWire(members, index, governed.name));
    }
  }
  return wires;
}

std::optional<MemberRelationView> relationOf(WiredMembers const& members, std::size_t index) {
  auto const link = members[index].member->getDataSourceRelation();
  if (link.dataSource.empty() && link.column.empty()) {
    return {};
  }
  return MemberRelationView{
      .member = link.dataSource,
      .memberColumn = link.columnName,
      .column = {link.tableNameOrigin, link.columnNameOrigin, link.tableName, link.column},
      .defect = relationDefect(members, link)};
}

}  // namespace mox::cli
