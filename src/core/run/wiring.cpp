#include "core/run/wiring.h"

#include <algorithm>
#include <set>
#include <utility>

#include "core/run/chain.h"
#include "core/run/filter_value.h"
#include "mox/core/error.h"
#include "mox/zyn/datasources/dado_data_source.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/filter_data_source.h"
#include "mox/zyn/datasources/group_data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/datasources/sql_data_source_column.h"

namespace mox::core {

namespace {

using Member = std::shared_ptr<moxDadoDataSource const>;
using Source = std::shared_ptr<moxDataSource const>;

constexpr std::size_t kMostNestedGroups = 64;
constexpr std::size_t kMostProblems = 50;  // who reads more of them mends none
constexpr std::size_t kMostChanges = 10'000;

template <class T>
bool isA(Source const& source) {
  return std::dynamic_pointer_cast<T const>(source) != nullptr;
}

/// By which name the group knows what the definition of an external member calls `name`.
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

bool hasColumn(moxDataSource const& source, std::string const& name) {
  auto const columns = source.getColumns();
  return columns.empty() ||  // known only when it has run
         std::any_of(columns.begin(), columns.end(),
                     [&](auto const& column) { return column.first == name; });
}

/// Table and column that the module restricts to units; both empty for a query that keeps to none.
std::pair<std::string, std::string> unitColumnOf(moxSQLDataSource const& query) {
  auto const column = query.getUnidadeColumn().first;
  if (!column) {
    return {};
  }
  auto const origin = column->getColumnNameOrigin();
  return {column->getTableName(), origin.empty() ? column->getColumnName() : origin};
}

bool hasCondition(moxFilterDataSourceSpec const& condition) {
  return condition.getTipo() != moxFilterDataSourceSpec::kSemFiltro;
}

void addText(FilterSourceChange& change, char const* piece, std::string text) {
  if (!text.empty()) {
    change.texts.push_back({piece, std::move(text)});
  }
}

/// One group: its members by place, with their sources as far as these can be found.
class GroupCheck {
 public:
  GroupCheck(moxGroupDataSource const& group, Wiring& wiring)
      : group_(group),
        groupName_(quotedForMessage(group.getName())),
        members_(group.dataSources().get()),
        wiring_(wiring) {
    std::erase(members_, nullptr);
    for (auto const& member : members_) {
      sources_.push_back(find(*member));
    }
  }

  void check() {
    checkNames();
    for (std::size_t i = 0; i < members_.size(); ++i) {
      checkRelation(i);
      checkInputs(i);
      if (isA<moxFilterDataSource>(sources_[i])) {
        checkFilterSource(i);
      } else if (auto const manager =
                     std::dynamic_pointer_cast<moxManageFilterDataSource const>(sources_[i])) {
        checkManager(i, *manager);
      }
    }
  }

  std::vector<Source> const& sources() const { return sources_; }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  void tell(std::string problem) {
    if (wiring_.problems.size() < kMostProblems) {
      wiring_.problems.push_back(std::move(problem));
    }
  }

  std::string memberName(std::size_t index) const {
    return "the member " + quotedForMessage(members_[index]->getName()) + " of the group " +
           groupName_;
  }

  Source find(moxDadoDataSource const& member) {
    auto const named = member.dataSourceExterno();
    auto const name =
        "the member " + quotedForMessage(member.getName()) + " of the group " + groupName_;
    try {
      auto source = member.getDataSource();
      if (!source) {
        tell(name + " has no source");
      }
      return source;
    } catch (moxError const&) {
      tell(name + " names " + quotedForMessage(named) +
           ", which is no source that this session finds");
      return {};
    }
  }

  std::size_t placeOf(std::string const& name) const {
    for (std::size_t i = 0; i < members_.size(); ++i) {
      if (members_[i]->getName() == name) {
        return i;
      }
    }
    return kNone;
  }

  void checkNames() {
    auto const output = group_.getOutputSource();
    auto const filterSource = group_.getFilterSource();
    if (output.empty()) {
      tell("the group " + groupName_ + " names no member whose rows it gives");
    } else if (placeOf(output) == kNone) {
      tell("the group " + groupName_ + " gives the rows of its member " + quotedForMessage(output) +
           ", which it does not have");
    }
    if (!filterSource.empty() && placeOf(filterSource) == kNone) {
      tell("the filters of the group " + groupName_ + " go to its member " +
           quotedForMessage(filterSource) + ", which it does not have");
    }
    std::set<std::string> names;
    for (auto const& member : members_) {
      if (!names.insert(member->getName()).second) {
        tell("the group " + groupName_ + " has two members called " +
             quotedForMessage(member->getName()));
      }
    }
  }

  /// The place of the member that another one works on, which must run ahead of it.
  std::size_t target(std::size_t index, std::string const& verb, std::string const& name) {
    auto const place = placeOf(name);
    if (place == kNone) {
      tell(memberName(index) + " " + verb + " the member " + quotedForMessage(name) +
           ", which the group does not have");
      return kNone;
    }
    if (place == index) {
      tell(memberName(index) + " " + verb + " itself");
      return kNone;
    }
    if (place > index) {
      tell(memberName(index) + " " + verb + " the member " + quotedForMessage(name) +
           ", which stands behind it");
      return kNone;
    }
    return place;
  }

  void checkRelation(std::size_t index) {
    auto const relation = members_[index]->getDataSourceRelation();
    if (relation.dataSource.empty()) {
      return;
    }
    auto const place = target(index, "is restricted by the values of", relation.dataSource);
    if (place == kNone) {
      return;
    }
    if (sources_[place] && !hasColumn(*sources_[place], relation.columnName)) {
      tell(memberName(index) + " is restricted by the column " +
           quotedForMessage(relation.columnName) + " of the member " +
           quotedForMessage(relation.dataSource) + ", which has no such column");
    }
    auto const bare = relation.tableName.empty();
    auto const& own =
        relation.columnNameOrigin.empty() ? relation.column : relation.columnNameOrigin;
    tellReplacedRule(index, index, "", bare ? own : std::string());
    if (sources_[index] && !isA<moxSQLDataSource>(sources_[index])) {
      tell(memberName(index) + " is restricted by the values of the member " +
           quotedForMessage(relation.dataSource) + ", but is no query");
    }
  }

  /// A member computes its rows from those of the members ahead of it, and of nobody else.
  void checkInputs(std::size_t index) {
    if (!sources_[index]) {
      return;
    }
    for (auto const& input : inputNamesOf(*sources_[index])) {
      if (input.empty()) {
        tell(memberName(index) + " names no source whose rows it reads");
        continue;
      }
      auto const place = target(index, "reads", nameInGroup(*members_[index], input));
      if (place != kNone && givesNoRows(sources_[place])) {
        tell(memberName(index) + " reads the member " +
             quotedForMessage(members_[place]->getName()) + ", which gives no rows");
      }
    }
  }

  static bool givesNoRows(Source const& source) {
    return source && (changesData(*source) || isA<moxManageFilterDataSource>(source));
  }

  /// Along filter sources that change each other; each step goes to an earlier member, so it ends.
  void checkFilterSource(std::size_t index) {
    std::size_t place = index;
    while (isA<moxFilterDataSource>(sources_[place])) {
      auto const filter = std::dynamic_pointer_cast<moxFilterDataSource const>(sources_[place]);
      place = target(place, "changes", nameInGroup(*members_[place], filter->getDataSourceName()));
      if (place == kNone) {
        return;
      }
    }
    if (isA<moxSQLDataSource>(sources_[place])) {
      addChange(index, place);
    } else if (sources_[place]) {
      tell(memberName(index) + " changes the member " +
           quotedForMessage(members_[place]->getName()) + ", which is no query");
    }
  }

  /// The module takes a condition on the very unit column for the caller's own restriction.
  void tellReplacedRule(std::size_t index, std::size_t query, std::string const& table,
                        std::string const& column) {
    auto const sql = std::dynamic_pointer_cast<moxSQLDataSource const>(sources_[query]);
    if (sql && !column.empty() && unitColumnOf(*sql) == std::pair(table, column)) {
      tell(memberName(index) + " puts a condition on the unit column of the member " +
           quotedForMessage(members_[query]->getName()) +
           ", which takes the place of the rule on units");
    }
  }

  void addChange(std::size_t index, std::size_t query) {
    auto const filter = std::dynamic_pointer_cast<moxFilterDataSource const>(sources_[index]);
    for (auto const& condition : filter->getFiltersSpec()) {
      auto const column = condition->getColumnOrigin();
      if (hasCondition(*condition)) {
        tellReplacedRule(index, query, column.tableName, column.columnNameOrigin);
      }
    }
    bool const replaces = filter->getTipoRetornoSelect() == moxFilterDataSource::kSubstitui;
    FilterSourceChange change{.group = group_.getName(),
                              .member = members_[index]->getName(),
                              .query = members_[query]->getName(),
                              .texts = {}};
    addText(change, replaces ? "select" : "columns", filter->getSelectPlain());
    addText(change, "join", filter->getSQLJoin());
    addText(change, "where", filter->getSQLWhere());
    addText(change, "group", filter->getSQLGroup());
    addText(change, "order", filter->getSQLOrder());
    if (wiring_.changes.size() < kMostChanges) {
      wiring_.changes.push_back(std::move(change));
    }
  }

  void checkManager(std::size_t index, moxManageFilterDataSource const& manager) {
    for (auto const& ruled : manager.getSources()) {
      auto const name = nameInGroup(*members_[index], ruled.name);
      auto const place = target(index, "rules", name);
      if (place != kNone && sources_[place] && !isA<moxSQLDataSource>(sources_[place])) {
        tell(memberName(index) + " rules the member " + quotedForMessage(name) +
             ", which is no query");
      }
    }
  }

  moxGroupDataSource const& group_;
  std::string groupName_;
  std::vector<Member> members_;
  std::vector<Source> sources_;
  Wiring& wiring_;
};

class WiringCheck {
 public:
  void check(moxDataSource const& source, std::size_t depth) {
    auto const* const group = dynamic_cast<moxGroupDataSource const*>(&source);
    if (group == nullptr || !seen_.insert(group).second || depth > kMostNestedGroups) {
      return;
    }
    GroupCheck members(*group, wiring);
    members.check();
    for (auto const& member : members.sources()) {
      if (member) {
        check(*member, depth + 1);
      }
    }
  }

  Wiring wiring;

 private:
  std::set<moxDataSource const*> seen_;
};

}  // namespace

Wiring readWiring(moxDataSource const& definition) {
  WiringCheck check;
  if (auto const* const filter = dynamic_cast<moxFilterDataSource const*>(&definition)) {
    check.wiring.problems.push_back(
        "a filter source changes a statement only as a member of a group; by itself it gives the "
        "rows of " +
        quotedForMessage(filter->getDataSourceName()) + " as they are");
  }
  try {
    check.check(definition, 0);
  } catch (moxError const& error) {
    check.wiring.problems.push_back(error.errorMessage());
  }
  return check.wiring;
}

}  // namespace mox::core
