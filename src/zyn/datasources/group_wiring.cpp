#include "zyn/datasources/group_wiring.h"

#include <algorithm>
#include <utility>

#include "mox/core/error.h"
#include "zyn/datasources/run_recorder.h"

namespace {

std::string quoted(std::string const& name) {
  return "\"" + name + "\"";
}

/// By which name the group knows what the member's source calls `name`.
std::string nameInGroup(moxDadoDataSource const& member, std::string const& name) {
  if (!member.dataSourceExterno().empty()) {
    for (auto const& [external, internal] : member.getDataSourceExternalRelation()) {
      if (external == name) {
        return internal;
      }
    }
  }
  return name;
}

/// The member that a filter source from outside aims at. A dash anywhere in its source's name
/// counts as the mark's, and the character behind it as the mark's second one. Empty for the member
/// that the group's filters go to.
std::string memberAimedAt(std::string const& dataSourceName) {
  constexpr std::size_t kMarkLength = 2;
  auto const mark = dataSourceName.find('-');
  bool const aims = mark != std::string::npos && dataSourceName.size() > mark + kMarkLength;
  return aims ? dataSourceName.substr(mark + kMarkLength) : std::string();
}

/// The member's own column as conditions on its query call it.
std::string conditionColumn(moxDadoDataSource::Relation const& relation) {
  auto const& column =
      relation.columnNameOrigin.empty() ? relation.column : relation.columnNameOrigin;
  bool const bare = relation.tableName.empty() || column.empty();
  return bare ? column : relation.tableName + '.' + column;
}

[[noreturn]] void fail(char const* message, std::string const& detail) {
  throw moxDefaultErrorImpl<moxError>(message, {detail});
}

}  // namespace

void GroupWiring::addMembersOf(moxGroupDataSource const& definition) {
  for (auto const& member : definition.dataSources().get()) {
    if (member) {
      add(member, true);
    }
  }
}

void GroupWiring::add(Member const& member, bool ofDefinition) {
  members_.push_back(wired(member, ofDefinition));
  updateRelation(members_.size() - 1);
}

GroupWiring::Wired GroupWiring::wired(Member const& member, bool ofDefinition) const {
  Wired wired;
  wired.member = member;
  wired.name = member->getName();
  wired.source = member->getDataSource();
  wired.execution = wired.source ? wired.source->createExecution() : nullptr;
  if (!wired.execution) {
    fail("Fonte de dados externa inválida",
         "the member " + quoted(wired.name) + " of the group " + quoted(group_) + " has no source");
  }
  wired.sql = std::dynamic_pointer_cast<moxSQLDataSourceExecution>(wired.execution);
  wired.filter = std::dynamic_pointer_cast<moxFilterDataSource const>(wired.source);
  wired.ofDefinition = ofDefinition;
  return wired;
}

void GroupWiring::updateRelation(std::size_t index) {
  auto const& wired = members_[index];
  if (wired.filter || !wired.member->dataSourceExterno().empty()) {
    wired.execution->setDataSourceExternalRelation(wired.member->getDataSourceExternalRelation());
  }
  restrict(wired);
  if (wired.filter) {
    attach(index, wired.filter);
  } else if (auto const manager =
                 std::dynamic_pointer_cast<moxManageFilterDataSource const>(wired.source)) {
    rule(wired, *manager);
  }
}

/// The query itself tells, when it runs, what came of the restriction.
void GroupWiring::restrict(Wired const& wired) const {
  auto const relation = wired.member->getDataSourceRelation();
  if (relation.dataSource.empty()) {
    return;
  }
  auto const notRestricted =
      quoted(wired.name) + " is not restricted by " + quoted(relation.dataSource) + ": ";
  if (!wired.sql) {
    tell(notRestricted + "it is no query");
  } else if (!wired.sql->setDataSourceFilterRelation(relation.dataSource, relation.columnName,
                                                     conditionColumn(relation))) {
    tell(notRestricted + "the relation does not name a column on either side");
  }
}

void GroupWiring::attach(std::size_t index, FilterSource const& filter) const {
  auto const& query = queryBehind(index);
  query.sql->addFiltersDataSource(filter);
  auto const& through = members_[index];
  tell("filter source " + quoted(filter == through.filter ? through.name : filter->getName()) +
       " changes " + quoted(query.name));
}

/// The end of the chain of filter sources that change each other. A member is met once.
GroupWiring::Wired const& GroupWiring::queryBehind(std::size_t index) const {
  std::vector<bool> visited(members_.size(), false);
  while (!visited[index] && members_[index].filter) {
    visited[index] = true;
    auto const& at = members_[index];
    auto const target = nameInGroup(*at.member, at.filter->getDataSourceName());
    auto const next = find(target);
    if (next == kNone) {
      fail("Não localizado source origem do filtro",
           "the filter source " + quoted(at.name) + " of the group " + quoted(group_) +
               " changes " + quoted(target) + ", which is no member ahead of it");
    }
    index = next;
  }
  auto const& end = members_[index];
  if (!end.sql) {
    fail("Não localizado source origem do filtro",
         quoted(end.name) + " of the group " + quoted(group_) +
             (end.filter ? " is a filter source that changes itself"
                         : " is neither a query nor a filter source"));
  }
  return end;
}

void GroupWiring::rule(Wired const& manager, moxManageFilterDataSource const& definition) const {
  for (auto& record : definition.getSources()) {
    auto const target = nameInGroup(*manager.member, record.name);
    bool rules = false;
    for (auto const& wired : members_) {
      if (wired.sql && wired.name == target) {
        wired.sql->addManageFiltersData({manager.name, record.avaliable, record.related});
        rules = true;
      }
    }
    tell("filter manager " + quoted(manager.name) +
         (rules ? " rules " + quoted(target)
                : " does not rule " + quoted(target) + ": no query of that name is ahead of it"));
  }
}

void GroupWiring::ruleMember(std::string const& name, ManageFilterData manager) {
  auto const givenFor = std::exchange(manager.name, name);
  for (auto const& wired : members_) {
    if (wired.sql && wired.name == name) {
      wired.sql->addManageFiltersData(manager);
      tell("filter manager " + quoted(givenFor) + " of the group rules " + quoted(name));
    }
  }
}

void GroupWiring::changeMember(std::string const& name, FilterSource const& filter) {
  auto const aimedAt = memberAimedAt(filter->getDataSourceName());
  auto const& target = aimedAt.empty() ? name : aimedAt;
  bool changes = false;
  for (std::size_t i = 0; i < members_.size(); ++i) {
    auto const& wired = members_[i];
    if (wired.name != target) {
      continue;
    }
    if (wired.sql) {
      wired.sql->addFiltersDataSource(filter);
      tell("filter source " + quoted(filter->getName()) + " changes " + quoted(target));
      changes = true;
    } else if (wired.filter && wired.ofDefinition) {
      attach(i, filter);
      changes = true;
    }
  }
  if (!changes) {
    tell("filter source " + quoted(filter->getName()) +
         " changes nothing: no query and no filter " + "source is called " + quoted(target));
  }
}

GroupWiring::Execution GroupWiring::executionOf(std::string const& name) const {
  auto const index = find(name);
  return index == kNone ? nullptr : members_[index].execution;
}

std::vector<moxDataSourceToProcess> GroupWiring::list() const {
  std::vector<moxDataSourceToProcess> list;
  list.reserve(members_.size());
  for (auto const& wired : members_) {
    list.push_back({wired.name, {!wired.member->dataSourceExterno().empty(), wired.execution}});
  }
  return list;
}

/// The first member of that name.
std::size_t GroupWiring::find(std::string const& name) const {
  for (std::size_t i = 0; i < members_.size(); ++i) {
    if (members_[i].name == name) {
      return i;
    }
  }
  return kNone;
}

void GroupWiring::tell(std::string sentence) const {
  if (recorder_ != nullptr) {
    recorder_->wired(std::move(sentence));
  }
}
