#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/definitions/definition_view.h"
#include "mox/zyn/datasources/dado_data_source.h"
#include "mox/zyn/datasources/data_source.h"

namespace mox::cli {

/// A member of a group with the source that the calling thread's session finds for it.
struct WiredMember {
  std::shared_ptr<moxDadoDataSource const> member;
  std::shared_ptr<moxDataSource const> source;  // empty where there is none
  std::string defect;                           // why the source was not found

  /// The member that stands for what its source calls `name`.
  std::string memberFor(std::string const& name) const;
};

/// The members of a group, in order. A name is found at once: a group may have many members, and a
/// wire many stations.
class WiredMembers {
 public:
  void add(WiredMember member);

  std::size_t size() const { return members_.size(); }
  WiredMember const& operator[](std::size_t index) const { return members_[index]; }

  /// The first of the first `count` members that is called so.
  std::optional<std::size_t> find(std::string const& name, std::size_t count) const;
  std::optional<std::size_t> find(std::string const& name) const { return find(name, size()); }

 private:
  std::vector<WiredMember> members_;
  std::unordered_map<std::string, std::size_t> firstOf_;
};

/// Where the member's change goes, or what it passes on: one for a filter source, one for each
/// governed source of a manager, none for others. As in a run, only members ahead of it are found.
std::vector<WireView> wiresOf(WiredMembers const& members, std::size_t index);

/// The member's link to another one, if it has one, and what is wrong with it.
std::optional<MemberRelationView> relationOf(WiredMembers const& members, std::size_t index);

}  // namespace mox::cli
