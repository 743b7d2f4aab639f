#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/run/filter_argument.h"

class moxDadoDataSource;
class moxDataSource;
class moxGroupDataSource;

namespace mox::core {

using SourceList = std::vector<std::shared_ptr<moxDataSource const>>;

/// The sources, and the members of the groups among them at any depth, external ones too: all whose
/// statements a run can send, and all who rule their filters. Each definition once. Throws moxError
/// "Fonte de dados externa inválida" for a member without a source that can be found and for a
/// group that holds itself; its details name both.
SourceList withMembers(SourceList const& sources);

/// The members of the groups among the sources at any depth, by their names there, in their order;
/// the members of a group that stands in several places once. Throws as withMembers does.
std::vector<std::pair<std::string, std::shared_ptr<moxDataSource const>>> namedMembers(
    SourceList const& sources);

/// The source in force of a member. Throws as withMembers does.
std::shared_ptr<moxDataSource const> sourceOfMember(moxDadoDataSource const& member,
                                                    std::string const& group);

/// What the members that join the group's filter screen offer, each aimed at its member:
/// "group->member". `group` is the group's own aim. The filters of the member that the group's own
/// filters go to are not among them.
void appendMemberOffers(moxGroupDataSource const& definition, std::string const& group,
                        std::vector<FilterOffer>& offers);

}  // namespace mox::core
