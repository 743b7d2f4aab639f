#include "core/run/group_members.h"

#include <algorithm>
#include <set>

#include "mox/core/error_with_details.h"
#include "mox/zyn/datasources/dado_data_source.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/group_data_source.h"

namespace mox::core {

namespace {

using Source = std::shared_ptr<moxDataSource const>;

// Far more than a definition needs that works. Groups that name each other fan out at every level.
constexpr std::size_t kMostNestedGroups = 64;
constexpr std::size_t kMostMembersOnAScreen = 10'000;

/// The words of the module, for a wiring that it cannot run either.
[[noreturn]] void failInvalid(std::string const& detail) {
  throw moxDefaultErrorImpl<moxError>("Fonte de dados externa inválida", {detail});
}

std::string memberText(moxDadoDataSource const& member, std::string const& group) {
  return "the member " + quotedForMessage(member.getName()) + " of the group " +
         quotedForMessage(group);
}

/// An editor may have put in an empty one, which counts for nothing.
std::vector<std::shared_ptr<moxDadoDataSource const>> membersOf(moxGroupDataSource const& group) {
  auto members = group.dataSources().get();
  std::erase(members, nullptr);
  return members;
}

/// The groups that are being looked into, outermost first.
class OpenGroups {
 public:
  void enter(moxGroupDataSource const& group) {
    if (std::find(groups_.begin(), groups_.end(), &group) != groups_.end()) {
      failInvalid("the group " + quotedForMessage(group.getName()) + " holds itself");
    }
    if (groups_.size() == kMostNestedGroups) {
      failInvalid("groups are nested more than " + std::to_string(kMostNestedGroups) + " deep");
    }
    groups_.push_back(&group);
  }
  void leave() { groups_.pop_back(); }

 private:
  std::vector<moxGroupDataSource const*> groups_;
};

class MemberCollector {
 public:
  void add(Source const& source) {
    auto const group = std::dynamic_pointer_cast<moxGroupDataSource const>(source);
    if (group) {
      open_.enter(*group);  // ahead of the test below, which a ring would pass
    }
    if (seen_.insert(source.get()).second) {
      collected_.push_back(source);
      if (group) {
        addMembers(*group);
      }
    }
    if (group) {
      open_.leave();
    }
  }

  SourceList const& collected() const { return collected_; }

 private:
  void addMembers(moxGroupDataSource const& group) {
    for (auto const& member : membersOf(group)) {
      add(sourceOfMember(*member, group.getName()));
    }
  }

  SourceList collected_;
  std::set<moxDataSource const*> seen_;
  OpenGroups open_;
};

class OfferCollector {
 public:
  explicit OfferCollector(std::vector<FilterOffer>& offers) : offers_(offers) {}

  void add(moxGroupDataSource const& group, std::string const& aim) {
    open_.enter(group);
    for (auto const& member : membersOf(group)) {
      bool const takesTheGroups = member->getName() == group.getFilterSource();
      if (takesTheGroups || member->getUnificarTelaFiltro()) {
        addMember(*member, *sourceOfMember(*member, group.getName()),
                  aim + "->" + member->getName(), takesTheGroups);
      }
    }
    open_.leave();
  }

 private:
  void addMember(moxDadoDataSource const& member, moxDataSource const& source,
                 std::string const& aim, bool takesTheGroups) {
    if (!takesTheGroups) {
      for (auto const& specification : member.getFilters()) {
        offers_.push_back({aim, specification});
      }
    }
    if (++members_ > kMostMembersOnAScreen) {
      failInvalid("more than " + std::to_string(kMostMembersOnAScreen) +
                  " members join one filter screen");
    }
    if (auto const* const group = dynamic_cast<moxGroupDataSource const*>(&source)) {
      add(*group, aim);
    }
  }

  std::vector<FilterOffer>& offers_;
  OpenGroups open_;
  std::size_t members_ = 0;
};

}  // namespace

Source sourceOfMember(moxDadoDataSource const& member, std::string const& group) {
  Source source;
  auto const named = member.dataSourceExterno();
  try {
    source = member.getDataSource();
  } catch (moxError const& error) {
    throw moxErrorWithDetails(error, {},
                              {memberText(member, group) + " names " + quotedForMessage(named) +
                               ", which is no source that this session finds"});
  }
  if (!source) {
    failInvalid(memberText(member, group) + " has no source");
  }
  return source;
}

std::vector<std::pair<std::string, Source>> namedMembers(SourceList const& sources) {
  std::vector<std::pair<std::string, Source>> named;
  for (auto const& source : withMembers(sources)) {
    auto const group = std::dynamic_pointer_cast<moxGroupDataSource const>(source);
    if (!group) {
      continue;
    }
    for (auto const& member : membersOf(*group)) {
      named.emplace_back(member->getName(), sourceOfMember(*member, group->getName()));
    }
  }
  return named;
}

SourceList withMembers(SourceList const& sources) {
  MemberCollector collector;
  for (auto const& source : sources) {
    collector.add(source);
  }
  return collector.collected();
}

void appendMemberOffers(moxGroupDataSource const& definition, std::string const& group,
                        std::vector<FilterOffer>& offers) {
  OfferCollector(offers).add(definition, group);
}

}  // namespace mox::core
