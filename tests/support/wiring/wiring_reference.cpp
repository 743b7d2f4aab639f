#include <algorithm>
#include <map>
#include <set>

#include "support/wiring/wiring.h"

// A group as anybody would work it out on paper: who changes whom, then every table from its first
// row to its last. Nothing of the module is used.
namespace mox_test::wiring {
namespace {

using Path = std::vector<std::string>;
using Row = std::array<Value, kColumns>;
using Texts = std::vector<std::string>;

/// A manager as one query sees it: the record that speaks of the query, and what was given.
struct Governor {
  Record const* record;
  std::vector<Given const*> given;
};

/// What works on one query.
struct Influences {
  std::vector<FilterSource const*> filters;
  std::vector<Governor> governors;
};

struct Applied {
  Condition condition;
  bool namesTable;
};

/// One row of the first table with those that were joined to it.
struct Joined {
  Row first;
  std::map<std::string, Row> others;  // by alias; nulls where an outer join found none
};

bool speaksOf(Record const& record, std::string const& name) {
  return std::find(record.available.begin(), record.available.end(), name) !=
             record.available.end() ||
         std::any_of(record.related.begin(), record.related.end(),
                     [&](Related const& related) { return related.filterName == name; });
}

/// One query of a run.
class Query {
 public:
  Query(Tables const& tables, SqlSource const& source, Influences const& influences,
        std::vector<int> const& units)
      : tables_(tables), source_(source), influences_(influences), units_(units) {}

  Result evaluate(std::vector<Given const*> const& own, std::optional<std::set<std::string>> among,
                  int amongColumn) {
    gather(own);
    std::vector<Joined> rows;
    for (auto const& row : joinedRows()) {
      bool const isListed =
          !among ||
          (row.first[amongColumn] && among->count(textOf(row.first[amongColumn], amongColumn)) > 0);
      if (isListed && passesText(row) && passesConditions(row) && passesUnits(row)) {
        rows.push_back(row);
      }
    }
    return project(rows);
  }

 private:
  void gather(std::vector<Given const*> const& own) {
    gatherManaged();
    for (auto const* const given : own) {
      if (given->name.empty()) {
        applied_.push_back({given->condition, given->namesTable});
      } else if (source_.token && given->name == mark()) {
        tokenValue_ = given->condition.values.at(0);
      }
    }
    for (auto const* const filter : influences_.filters) {
      for (auto const& fixed : filter->fixed) {
        gatherFixed(fixed);
      }
    }
  }

  /// A filter that answers for several columns of one query ends up on the last of them.
  void gatherManaged() {
    std::map<Given const*, Applied> conditions;
    for (auto const& governor : influences_.governors) {
      for (auto const& related : governor.record->related) {
        auto const* const given = managed(related.filterName);
        if (given == nullptr) {
          continue;
        }
        if (!related.column) {
          tokenValue_ = given->condition.values.at(0);
          continue;
        }
        auto condition = given->condition;
        condition.column = *related.column;
        conditions[given] = {condition, related.namesTable || *related.column == source_.offered};
      }
      if (source_.token && speaksOf(*governor.record, mark()) && managed(mark()) != nullptr) {
        tokenValue_ = managed(mark())->condition.values.at(0);
      }
    }
    for (auto const& [given, applied] : conditions) {
      applied_.push_back(applied);
    }
  }

  Given const* managed(std::string const& name) const {
    for (auto const& governor : influences_.governors) {
      for (auto const* const given : governor.given) {
        if (given->name == name && speaksOf(*governor.record, name)) {
          return given;
        }
      }
    }
    return nullptr;
  }

  void gatherFixed(FixedCondition const& fixed) {
    if (fixed.kind == FixedCondition::kSemFiltro) {
      return;
    }
    auto ids = fixed.ids;
    if (fixed.kind == FixedCondition::kSql) {
      ids.clear();
      for (auto const& row : tables_[static_cast<std::size_t>(fixed.table)].rows) {
        if (fixed.condition.holds(row[fixed.condition.column]) && row[kB]) {
          ids.push_back(*row[kB]);
        }
      }
    }
    applied_.push_back({{Condition::kAmong, fixed.column, ids}, true});
  }

  std::string mark() const { return "{{" + source_.token->name + "}}"; }

  std::vector<Joined> joinedRows() const {
    std::vector<Joined> rows;
    for (auto const& row : tables_[static_cast<std::size_t>(source_.table)].rows) {
      rows.push_back({row, {}});
    }
    if (source_.join) {
      rows = join(rows, *source_.join);
    }
    for (auto const* const filter : influences_.filters) {
      if (filter->join) {
        rows = join(rows, *filter->join);
      }
    }
    return rows;
  }

  std::vector<Joined> join(std::vector<Joined> const& rows, Join const& with) const {
    std::vector<Joined> joined;
    for (auto row : rows) {
      bool found = false;
      for (auto const& other : tables_[static_cast<std::size_t>(with.table)].rows) {
        if (row.first[with.column] && other[kId] == row.first[with.column]) {
          row.others[with.alias] = other;
          joined.push_back(row);
          found = true;
        }
      }
      if (!found && with.isLeft) {
        row.others[with.alias] = {};
        joined.push_back(row);
      }
    }
    return joined;
  }

  /// What the definitions say about the rows.
  bool passesText(Joined const& row) const {
    auto const passes = [&](Condition const& condition) {
      return condition.holds(row.first[condition.column]);
    };
    bool const added = std::all_of(
        influences_.filters.begin(), influences_.filters.end(),
        [&](FilterSource const* filter) { return !filter->where || passes(*filter->where); });
    if (!passesToken(row)) {
      return false;
    }
    if (source_.anyOf.size() == 2 && source_.bareOr) {
      return passes(source_.anyOf[0]) || (passes(source_.anyOf[1]) && added);
    }
    return added && (source_.anyOf.empty() ||
                     std::any_of(source_.anyOf.begin(), source_.anyOf.end(), passes));
  }

  bool passesToken(Joined const& row) const {
    if (!source_.token) {
      return true;
    }
    if (!tokenValue_) {
      return source_.token->maybeNull;
    }
    auto const value = row.first[source_.token->column];
    return value && *value >= *tokenValue_;
  }

  bool passesConditions(Joined const& row) const {
    return std::all_of(applied_.begin(), applied_.end(), [&](Applied const& applied) {
      return applied.condition.holds(row.first[applied.condition.column]);
    });
  }

  /// Whoever asks for units himself has chosen them; leaving some out is no choice.
  bool passesUnits(Joined const& row) const {
    bool const isChosen = std::any_of(applied_.begin(), applied_.end(), [](Applied const& applied) {
      return applied.namesTable && applied.condition.column == kUnit &&
             applied.condition.test != Condition::kNotAmong;
    });
    if (!source_.byUnits || isChosen) {
      return true;
    }
    auto const unit = row.first[kUnit];
    return unit ? std::find(units_.begin(), units_.end(), *unit) != units_.end()
                : source_.nullUnits && !units_.empty();
  }

  std::vector<Output> outputs() const {
    auto outputs = source_.outputs;
    for (auto const* const filter : influences_.filters) {
      if (source_.isPlain) {
        continue;
      }
      if (filter->replaces) {
        outputs.clear();
      }
      outputs.insert(outputs.end(), filter->columns.begin(), filter->columns.end());
    }
    return outputs;
  }

  std::optional<int> groupColumn() const {
    for (auto const* const filter : influences_.filters) {
      if (filter->group) {
        return filter->group;
      }
    }
    return std::nullopt;
  }

  /// An order of the filter sources takes the place of the definition's.
  std::vector<OrderBy> order() const {
    std::vector<OrderBy> order;
    for (auto const* const filter : influences_.filters) {
      if (filter->order) {
        order.push_back(*filter->order);
      }
    }
    return order.empty() && !groupColumn() ? source_.order : order;
  }

  /// Rows that make one row of the result.
  std::vector<std::vector<Joined>> grouped(std::vector<Joined> const& rows) const {
    std::vector<std::vector<Joined>> groups;
    auto const column = groupColumn();
    for (auto const& row : rows) {
      auto const same =
          std::find_if(groups.begin(), groups.end(), [&](std::vector<Joined> const& group) {
            return column && group[0].first[*column] == row.first[*column];
          });
      if (same == groups.end()) {
        groups.push_back({row});
      } else {
        same->push_back(row);
      }
    }
    return groups;
  }

  static int compare(std::vector<OrderBy> const& order, Joined const& left, Joined const& right) {
    for (auto const& by : order) {
      auto const a = left.first[by.column];
      auto const b = right.first[by.column];
      if (a != b) {
        return (a < b) != by.descending ? -1 : 1;  // no value is the least of all
      }
    }
    return 0;
  }

  Result project(std::vector<Joined> const& rows) const {
    auto groups = grouped(rows);
    auto const keys = order();
    std::stable_sort(groups.begin(), groups.end(), [&](auto const& left, auto const& right) {
      return compare(keys, left[0], right[0]) < 0;
    });
    Result result;
    auto const columns = outputs();
    for (auto const& column : columns) {
      result.names.push_back(column.name);
    }
    for (std::size_t i = 0; i < groups.size(); ++i) {
      Texts row;
      for (auto const& column : columns) {
        row.push_back(cell(column, groups[i]));
      }
      result.rows.push_back(row);
      if (i > 0 && compare(keys, groups[i - 1][0], groups[i][0]) == 0) {
        ++result.ties.back();
      } else {
        result.ties.push_back(1);
      }
    }
    return result;
  }

  static std::string cell(Output const& output, std::vector<Joined> const& group) {
    auto const& row = group[0];
    switch (output.shape) {
      case Output::kColumn:
        return textOf(row.first[output.first], output.first);
      case Output::kSum:
        return textOf(sum(row.first[output.first], row.first[output.second]), kA);
      case Output::kConstant:
        return textOf(output.first, kA);
      case Output::kJoined:
        return textOf(row.others.at(output.alias)[output.first], output.first);
      case Output::kCount:
        return std::to_string(group.size());
      case Output::kMaximum:
        break;
    }
    Value maximum;
    for (auto const& each : group) {
      maximum = std::max(maximum, each.first[output.first]);
    }
    return textOf(maximum, output.first);
  }

  static Value sum(Value left, Value right) {
    return left && right ? Value(*left + *right) : Value();
  }

  Tables const& tables_;
  SqlSource const& source_;
  Influences const& influences_;
  std::vector<int> const& units_;
  std::vector<Applied> applied_;
  Value tokenValue_;
};

/// The members of one group, in their order.
class GroupRun {
 public:
  GroupRun(Tables const& tables, Wiring const& wiring, Group const& group, Path path)
      : tables_(tables), wiring_(wiring), group_(group), path_(std::move(path)) {}

  std::vector<std::pair<std::string, Result>> const& run() {
    for (auto const& member : group_.members) {
      std::visit([&](auto const& source) { wire(member, source); }, member.source);
    }
    if (path_.empty()) {
      for (auto const& outside : wiring_.outside) {
        auto const* const query = group_.queryBehind(wiring_.changedFromOutside(outside));
        influences_[query->name].filters.push_back(&std::get<FilterSource>(outside.source));
      }
    }
    for (auto const& member : group_.members) {
      std::visit([&](auto const& source) { evaluate(member, source); }, member.source);
    }
    return results_;
  }

  Result const* result(std::string const& name) const {
    for (auto const& [known, result] : results_) {
      if (known == name) {
        return &result;
      }
    }
    return nullptr;
  }

 private:
  void wire(Member const&, SqlSource const&) {}
  void wire(Member const&, std::shared_ptr<Group> const&) {}

  void wire(Member const& member, FilterSource const& filter) {
    influences_[group_.queryBehind(&member)->name].filters.push_back(&filter);
  }

  void wire(Member const& member, Manager const& manager) {
    for (auto const& record : manager.records) {
      influences_[member.target(record.source)].governors.push_back({&record, givenTo(member)});
    }
  }

  /// What the user gave stands ahead of what the program gave.
  std::vector<Given const*> givenTo(Member const& member) const {
    auto path = path_;
    path.push_back(member.name);
    std::vector<Given const*> found;
    for (bool const isFixed : {false, true}) {
      for (auto const& given : wiring_.given) {
        if (given.path == path && given.isFixed == isFixed) {
          found.push_back(&given);
        }
      }
    }
    return found;
  }

  void evaluate(Member const& member, SqlSource const& source) {
    Query query(tables_, source, influences_[member.name], wiring_.units);
    results_.emplace_back(member.name,
                          query.evaluate(givenTo(member), valuesFor(member),
                                         member.byValues ? member.byValues->ownColumn : kId));
  }

  /// None for a member that no other one restricts: also where the other one is not there, or has
  /// no such column.
  std::optional<std::set<std::string>> valuesFor(Member const& member) const {
    auto const* const other = member.byValues ? result(member.byValues->member) : nullptr;
    if (other == nullptr) {
      return std::nullopt;
    }
    auto const found = std::find(other->names.begin(), other->names.end(), member.byValues->column);
    if (found == other->names.end()) {
      return std::nullopt;
    }
    std::set<std::string> values;
    for (auto const& row : other->rows) {
      values.insert(row[static_cast<std::size_t>(found - other->names.begin())]);
    }
    values.erase("null");
    return values;
  }

  void evaluate(Member const& member, FilterSource const& filter) {
    results_.emplace_back(member.name, *result(member.target(filter.source)));
  }

  void evaluate(Member const&, Manager const&) {}

  void evaluate(Member const& member, std::shared_ptr<Group> const& group) {
    auto path = path_;
    path.push_back(member.name);
    GroupRun inner(tables_, wiring_, *group, path);
    inner.run();
    results_.emplace_back(member.name, *inner.result(group->output));
  }

  Tables const& tables_;
  Wiring const& wiring_;
  Group const& group_;
  Path path_;
  std::map<std::string, Influences> influences_;
  std::vector<std::pair<std::string, Result>> results_;
};

}  // namespace

std::vector<std::pair<std::string, Result>> evaluateMembers(Tables const& tables,
                                                            Wiring const& wiring) {
  return GroupRun(tables, wiring, wiring.group, {}).run();
}

Result evaluateOutput(Tables const& tables, Wiring const& wiring) {
  GroupRun run(tables, wiring, wiring.group, {});
  run.run();
  return *run.result(wiring.group.output);
}

}  // namespace mox_test::wiring
