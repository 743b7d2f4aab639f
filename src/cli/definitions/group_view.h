#pragma once

#include <set>
#include <vector>

#include "cli/definitions/definition_view.h"
#include "mox/zyn/datasources/group_data_source.h"

namespace mox::cli {

/// Which sources were told already, and which ones hold the one at work.
struct ViewTrail {
  std::set<moxDataSource const*> met;
  std::vector<moxDataSource const*> above;
};

/// The members of a group, with what they hold and where their changes go. Groups that hold each
/// other come to an end: each is told once.
GroupView groupView(moxGroupDataSource const& group, ViewTrail& trail);

/// What keeps the group from giving a result or filters, by itself; sentences.
std::vector<std::string> groupDefects(moxGroupDataSource const& group);

}  // namespace mox::cli
