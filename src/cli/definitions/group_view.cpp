#include "cli/definitions/group_view.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/definitions/source_view.h"
#include "cli/definitions/wiring_view.h"
#include "mox/core/error.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"

namespace mox::cli {

namespace {

constexpr std::size_t kDeepest = 64;  // of groups that can be run

WiredMember wiredMember(std::shared_ptr<moxDadoDataSource const> const& member) {
  WiredMember wired{.member = member, .source = {}, .defect = {}};
  try {
    wired.source = member->getDataSource();
    wired.defect = wired.source ? "" : "it has no source";
  } catch (moxError const& error) {
    wired.defect = error.errorMessage();
  }
  return wired;
}

WiredMembers wiredMembers(moxGroupDataSource const& group) {
  WiredMembers members;
  for (auto const& member : group.dataSources().get()) {
    if (member) {
      members.add(wiredMember(member));
    }
  }
  return members;
}

/// Kinds without data of their own, or with members: what they do is part of the wiring.
bool belongsToWiring(moxDataSource const& source) {
  return dynamic_cast<moxFilterDataSource const*>(&source) != nullptr ||
         dynamic_cast<moxManageFilterDataSource const*>(&source) != nullptr ||
         dynamic_cast<moxGroupDataSource const*>(&source) != nullptr;
}

/// Tells the member's source, when nobody did.
void addMemberSource(MemberView& view, moxDataSource const& source, ViewTrail& trail) {
  view.className = source.name();
  if (!view.external.empty() && !belongsToWiring(source)) {
    return;
  }
  view.ring = std::ranges::find(trail.above, &source) != trail.above.end();
  view.repeated = view.ring || !trail.met.insert(&source).second;
  if (view.repeated || trail.above.size() >= kDeepest) {
    return;
  }
  DefinitionView told;
  told.name = source.getName();
  told.kind = "data-source";
  told.className = source.name();
  addSource(told, source, trail);
  view.source.push_back(std::move(told));
}

MemberView memberView(moxGroupDataSource const& group, WiredMembers const& members,
                      std::size_t index, ViewTrail& trail) {
  auto const& wired = members[index];
  MemberView view;
  view.name = wired.member->getName();
  view.external = wired.member->dataSourceExterno();
  view.isOutput = view.name == group.getOutputSource();
  view.isFilterSource = view.name == group.getFilterSource();
  view.joinsFilterScreen = wired.member->getUnificarTelaFiltro();
  view.inputs = wired.member->getDataSourceExternalRelation();
  view.relation = relationOf(members, index);
  view.wires = wiresOf(members, index);
  view.defect = wired.defect;
  if (wired.source) {
    addMemberSource(view, *wired.source, trail);
  }
  return view;
}

/// The other end of the wires.
void tellTargets(std::vector<MemberView>& members, WiredMembers const& wired) {
  for (std::size_t i = 0; i < members.size(); ++i) {
    auto const* const source = wired[i].source.get();
    bool const changes = dynamic_cast<moxFilterDataSource const*>(source) != nullptr;
    for (auto const& wire : members[i].wires) {
      auto const target = wire.target.empty() ? std::nullopt : wired.find(wire.target);
      if (target) {
        auto& names = changes ? members[*target].changedBy : members[*target].governedBy;
        names.push_back(members[i].name);
      }
    }
  }
}

bool hasMember(moxGroupDataSource const& group, std::string const& name) {
  auto const members = group.dataSources().get();
  return std::ranges::any_of(members,
                             [&](auto const& member) { return member->getName() == name; });
}

}  // namespace

GroupView groupView(moxGroupDataSource const& group, ViewTrail& trail) {
  trail.met.insert(&group);
  trail.above.push_back(&group);
  GroupView view{.outputSource = group.getOutputSource(),
                 .filterSource = group.getFilterSource(),
                 .members = {}};
  auto const members = wiredMembers(group);
  for (std::size_t i = 0; i < members.size(); ++i) {
    view.members.push_back(memberView(group, members, i, trail));
  }
  tellTargets(view.members, members);
  trail.above.pop_back();
  return view;
}

std::vector<std::string> groupDefects(moxGroupDataSource const& group) {
  std::vector<std::string> defects;
  auto const output = group.getOutputSource();
  if (!hasMember(group, output)) {
    defects.push_back(
        output.empty()
            ? std::string("no member is named that gives the result")
            : fmt::format("no member is called \"{}\", which is to give the result", output));
  }
  auto const filters = group.getFilterSource();
  if (!filters.empty() && !hasMember(group, filters)) {
    defects.push_back(
        fmt::format("no member is called \"{}\", whose filters are to be the group's", filters));
  }
  return defects;
}

}  // namespace mox::cli
