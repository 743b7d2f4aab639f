#include <algorithm>
#include <map>

#include "support/wiring/chance.h"
#include "support/wiring/wiring.h"

namespace mox_test::wiring {
namespace {

constexpr int kTables = 4;
constexpr int kUnits = 3;
constexpr int kValues = 6;

int valueOf(Chance& chance, int column) {
  switch (column) {
    case kUnit:
      return 1 + chance.below(kUnits);
    case kText:
      return 1 + chance.below(4);
    case kId:
      return 1 + chance.below(12);
    default:
      return chance.below(kValues);
  }
}

std::vector<int> valuesOf(Chance& chance, int column, int count) {
  std::vector<int> values;
  for (int i = 0; i < count; ++i) {
    values.push_back(valueOf(chance, column));
  }
  return values;
}

int integerColumn(Chance& chance) {
  return chance.oneOf<int>({kId, kA, kB, kUnit});
}

/// Likely to let many rows pass: a run goes through several of them. A list may be empty where
/// `mayBeEmpty` says so.
Condition randomCondition(Chance& chance, int column, bool mayBeEmpty) {
  using Test = Condition::Test;
  Condition condition;
  condition.column = column;
  condition.test = column == kText
                       ? chance.oneOf<Test>({Test::kEquals, Test::kAmong, Test::kAmong})
                       : chance.oneOf<Test>({Test::kEquals, Test::kAmong, Test::kAmong,
                                             Test::kNotAmong, Test::kNotAmong, Test::kAtLeast,
                                             Test::kAtLeast, Test::kBetween, Test::kBetween});
  if (condition.test == Test::kAmong || condition.test == Test::kNotAmong) {
    bool const isEmpty = mayBeEmpty && chance.percent(5);
    int const most = condition.test == Test::kAmong ? 6 : 2;
    condition.values = valuesOf(chance, column, isEmpty ? 0 : 1 + chance.below(most));
    return condition;
  }
  condition.values = valuesOf(chance, column, 2);
  std::sort(condition.values.begin(), condition.values.end());
  if (condition.test != Test::kBetween) {
    condition.values.pop_back();
  }
  return condition;
}

Condition statedCondition(Chance& chance) {
  return randomCondition(chance, chance.below(kColumns), false);
}

/// What earlier filter sources leave room for.
struct QueryState {
  int table = 0;
  bool isPlain = false;
  bool hasWhere = false;
  bool hasToken = false;
  std::string token;
  bool tokenBound = false;  // by a manager
  bool replaced = false;
  bool ordered = false;  // by a filter source
  std::optional<int> group;
};

class Generator {
 public:
  explicit Generator(unsigned seed) : chance_(seed) {}

  Wiring make() {
    isFlat_ = chance_.percent(40);
    Wiring wiring;
    wiring.group = group(0, {});
    wiring.given = given_;
    if (chance_.percent(25)) {
      addFromOutside(wiring);
    }
    for (int unit = 1; unit <= kUnits; ++unit) {
      if (chance_.percent(65)) {
        wiring.units.push_back(unit);
      }
    }
    return wiring;
  }

 private:
  using Path = std::vector<std::string>;

  std::string fresh(char const* prefix) { return prefix + std::to_string(++names_); }

  Group group(int depth, Path const& path) {
    Group made;
    made.name = fresh("g");
    std::map<std::string, QueryState> queries;
    int const steps = 1 + chance_.below(6);
    for (int step = 0; step < steps; ++step) {
      auto const name = fresh("m");
      auto inside = path;
      inside.push_back(name);
      addMember(made, queries, name, depth, inside);
    }
    relateByValues(made);
    if (depth == 0) {
      queries_ = queries;
    }
    std::vector<std::string> withRows;
    for (auto const& member : made.members) {
      giveTo(member, path);
      if (!std::holds_alternative<Manager>(member.source)) {
        withRows.push_back(member.name);
      }
    }
    made.output = chance_.oneOf(withRows);
    made.filterSource = chance_.percent(90) ? chance_.oneOf(made.members).name : "";
    return made;
  }

  void addMember(Group& made, std::map<std::string, QueryState>& queries, std::string const& name,
                 int depth, Path const& path) {
    Member member;
    member.name = name;
    member.definition = fresh("d");
    member.isExternal = !isFlat_ && chance_.percent(35);
    int const kind = chance_.below(100);
    if (queries.empty() || kind < 35) {
      if (!isFlat_ && depth < 2 && chance_.percent(20)) {
        auto const inner = std::make_shared<Group>(group(depth + 1, path));
        member.definition = inner->name;
        member.source = inner;
        tables_[name] = tables_[inner->output];
      } else {
        member.source = query(queries[name]);
        tables_[name] = queries[name].table;
      }
    } else if (kind < 68) {
      member.source = filterSource(made, queries, member);
    } else {
      member.source = manager(queries, member);
    }
    made.members.push_back(member);
  }

  SqlSource query(QueryState& state) {
    SqlSource source;
    source.isPlain = chance_.percent(25);
    source.table = chance_.below(kTables);
    source.byUnits = chance_.percent(40);
    source.offered = chance_.percent(50) ? kUnit : kA;
    source.nullUnits = chance_.percent(50);
    if (!source.isPlain && chance_.percent(30)) {
      source.join = join(source.table);
    }
    for (int i = chance_.percent(50) ? 1 + chance_.below(2) : 0; i > 0; --i) {
      source.anyOf.push_back(statedCondition(chance_));
    }
    if (chance_.percent(30)) {
      source.token = {fresh("t"), integerColumn(chance_), chance_.percent(50)};
    }
    source.bareOr = !source.isPlain && source.byUnits && !source.token && chance_.percent(60);
    source.outputs = outputs(source);
    for (int i = chance_.below(3); i > 0; --i) {
      source.order.push_back({chance_.below(kColumns), chance_.percent(50)});
    }
    if (source.order.size() == 2 && source.order[0].column == source.order[1].column) {
      source.order.pop_back();
    }
    state.table = source.table;
    state.isPlain = source.isPlain;
    state.hasWhere = !source.anyOf.empty() || source.token;
    state.hasToken = source.token.has_value();
    state.token = source.token ? source.token->name : "";
    return source;
  }

  Join join(int table) {
    Join made;
    made.alias = fresh("j");
    made.table = (table + 1 + chance_.below(kTables - 1)) % kTables;
    made.isLeft = chance_.percent(50);
    made.column = chance_.oneOf<int>({kId, kA, kB});
    return made;
  }

  std::vector<Output> outputs(SqlSource const& source) {
    std::vector<Output> outputs;
    for (int column = 0; column < kColumns; ++column) {
      outputs.push_back(
          {"x" + columnName(source.table, column), Output::kColumn, column, 0, "", 0});
    }
    if (chance_.percent(25)) {
      outputs.push_back({fresh("y"), Output::kSum, kA, integerColumn(chance_), "", 0});
    }
    if (source.join) {
      outputs.push_back({fresh("y"), Output::kJoined, chance_.below(kColumns), 0,
                         source.join->alias, source.join->table});
    }
    chance_.shuffle(outputs);
    return outputs;
  }

  /// By its own name, or by one of the definition's that the member relates to it.
  std::string nameFor(Member& member, std::string const& target) {
    if (!member.isExternal || chance_.percent(40)) {
      return target;
    }
    auto const external = fresh("e");
    member.relations.emplace_back(external, target);
    return external;
  }

  FilterSource filterSource(Group const& made, std::map<std::string, QueryState>& queries,
                            Member& member) {
    auto const* const target = chance_.oneOf(changeable(made));
    auto filter = change(queries[made.queryBehind(target)->name]);
    filter.source = nameFor(member, target->name);
    tables_[member.name] = filter.table;
    return filter;
  }

  static std::vector<Member const*> changeable(Group const& group) {
    std::vector<Member const*> members;
    for (auto const& each : group.members) {
      if (std::holds_alternative<SqlSource>(each.source) ||
          std::holds_alternative<FilterSource>(each.source)) {
        members.push_back(&each);
      }
    }
    return members;
  }

  void addFromOutside(Wiring& wiring) {
    auto const members = changeable(wiring.group);
    if (members.empty()) {
      return;
    }
    auto const* const target = chance_.oneOf(members);
    auto filter = change(queries_[wiring.group.queryBehind(target)->name]);
    bool const isFilterSource = target->name == wiring.group.filterSource;
    filter.source = isFilterSource && chance_.percent(50) ? "" : "x->" + target->name;
    Member outside;
    outside.name = outside.definition = fresh("o");
    outside.source = filter;
    wiring.outside.push_back(outside);
  }

  FilterSource change(QueryState& state) {
    FilterSource filter;
    filter.table = state.table;
    addTexts(filter, state);
    addColumns(filter, state);
    for (int i = chance_.percent(50) ? 1 + chance_.below(2) : 0; i > 0; --i) {
      filter.fixed.push_back(fixedCondition());
    }
    return filter;
  }

  /// A text of one piece takes a join and a condition at its end only while it has no condition.
  void addTexts(FilterSource& filter, QueryState& state) {
    bool const takesText = !state.isPlain || !state.hasWhere;
    if (takesText && chance_.percent(25)) {
      filter.join = join(state.table);
    }
    if (takesText && chance_.percent(40)) {
      filter.where = statedCondition(chance_);
    }
    if (chance_.percent(25)) {
      int const column = state.group ? *state.group : chance_.below(kColumns);
      filter.order = {column, chance_.percent(50)};
      state.ordered = true;
    }
  }

  void addColumns(FilterSource& filter, QueryState& state) {
    if (state.group || chance_.percent(60)) {
      return;
    }
    filter.replaces = !state.replaced && chance_.percent(50);
    state.replaced = state.replaced || filter.replaces;
    if (filter.replaces && !state.isPlain && !state.ordered && chance_.percent(60)) {
      int const column = chance_.below(kColumns);
      filter.group = state.group = column;
      filter.columns = {{fresh("c"), Output::kColumn, column, 0, "", 0},
                        {fresh("c"), Output::kCount, 0, 0, "", 0},
                        {fresh("c"), Output::kMaximum, integerColumn(chance_), 0, "", 0}};
      return;
    }
    for (int i = 1 + chance_.below(2); i > 0; --i) {
      filter.columns.push_back(addedColumn(filter));
    }
  }

  Output addedColumn(FilterSource const& filter) {
    auto const name = fresh("c");
    switch (chance_.below(filter.join ? 4 : 3)) {
      case 0:
        return {name, Output::kColumn, chance_.below(kColumns), 0, "", 0};
      case 1:
        return {name, Output::kSum, integerColumn(chance_), integerColumn(chance_), "", 0};
      case 2:
        return {name, Output::kConstant, chance_.below(9), 0, "", 0};
      default:
        return {name, Output::kJoined,    chance_.below(kColumns),
                0,    filter.join->alias, filter.join->table};
    }
  }

  FixedCondition fixedCondition() {
    FixedCondition fixed;
    fixed.kind = static_cast<FixedCondition::Kind>(chance_.below(3));
    fixed.column = integerColumn(chance_);
    fixed.ids = valuesOf(chance_, fixed.column, chance_.percent(5) ? 0 : 2 + chance_.below(4));
    fixed.table = chance_.below(kTables);
    fixed.condition = statedCondition(chance_);
    return fixed;
  }

  Manager manager(std::map<std::string, QueryState>& queries, Member& member) {
    Manager made;
    std::vector<std::string> filterNames;
    for (int i = 1 + chance_.below(3); i > 0; --i) {
      filterNames.push_back(fresh("F"));
    }
    for (auto& [name, state] : queries) {
      if (chance_.percent(70)) {
        made.records.push_back(record(member, name, state, filterNames));
      }
    }
    return made;
  }

  Record record(Member& member, std::string const& query, QueryState& state,
                std::vector<std::string> const& filterNames) {
    Record made;
    made.source = nameFor(member, query);
    made.table = state.table;
    made.token = state.token;
    for (auto const& filterName : filterNames) {
      if (chance_.percent(30)) {
        made.available.push_back(filterName);
      }
      for (int i = chance_.percent(10) ? 2 : chance_.below(2); i > 0; --i) {
        made.related.push_back({filterName, chance_.oneOf<int>({kId, kA, kB, kUnit, kUnit}),
                                chance_.percent(60), chance_.percent(50)});
      }
    }
    if (state.hasToken && !state.tokenBound && chance_.percent(60)) {
      state.tokenBound = true;
      if (chance_.percent(50)) {
        made.available.push_back("{{" + state.token + "}}");
      } else {
        made.related.push_back({chance_.oneOf(filterNames), std::nullopt, false, false});
      }
    }
    chance_.shuffle(made.related);
    return made;
  }

  void relateByValues(Group& made) {
    for (auto& member : made.members) {
      if (!std::holds_alternative<SqlSource>(member.source) || !chance_.percent(25)) {
        continue;
      }
      auto const& other = chance_.oneOf(made.members);
      bool const isText = chance_.percent(20);
      int const column = isText ? kText : integerColumn(chance_);
      member.byValues = ByValues{other.name, "x" + columnName(tables_[other.name], column),
                                 isText ? kText : integerColumn(chance_)};
    }
  }

  void giveTo(Member const& member, Path const& path) {
    auto inside = path;
    inside.push_back(member.name);
    if (auto const* const source = std::get_if<SqlSource>(&member.source)) {
      giveToQuery(*source, inside);
    } else if (auto const* const managed = std::get_if<Manager>(&member.source)) {
      giveToManager(*managed, inside);
    }
  }

  Given given(Path const& path) {
    Given made;
    made.path = path;
    made.atGroup = chance_.percent(50);
    made.isFixed = chance_.percent(25);
    made.namesTable = chance_.percent(70);
    return made;
  }

  void giveToQuery(SqlSource const& source, Path const& path) {
    for (int i = chance_.percent(40) ? 1 + chance_.below(2) : 0; i > 0; --i) {
      auto made = given(path);
      made.table = source.table;
      made.condition = randomCondition(chance_, chance_.below(kColumns), true);
      given_.push_back(made);
    }
    if (source.token && chance_.percent(50)) {
      giveValue(path, "{{" + source.token->name + "}}");
    }
    if (chance_.percent(5)) {
      giveValue(path, "{{" + fresh("nobody") + "}}");
    }
  }

  void giveValue(Path const& path, std::string const& name) {
    auto made = given(path);
    made.name = name;
    made.condition = {Condition::kEquals, kA, {chance_.below(kValues)}};
    given_.push_back(made);
  }

  /// A filter that answers for a token has one value.
  void giveToManager(Manager const& managed, Path const& path) {
    std::map<std::string, bool> answersForToken;
    for (auto const& record : managed.records) {
      for (auto const& name : record.available) {
        answersForToken[name] = answersForToken[name] || name[0] == '{';
      }
      for (auto const& related : record.related) {
        answersForToken[related.filterName] =
            answersForToken[related.filterName] || !related.column;
      }
    }
    for (auto const& [name, isForToken] : answersForToken) {
      if (isForToken && chance_.percent(70)) {
        giveValue(path, name);
      } else if (!isForToken && chance_.percent(60)) {
        auto made = given(path);
        made.name = name;
        made.condition = randomCondition(chance_, kA, true);
        given_.push_back(made);
      }
    }
  }

  Chance chance_;
  bool isFlat_ = false;
  int names_ = 0;
  std::map<std::string, QueryState> queries_;  // of the outermost group
  std::map<std::string, int> tables_;          // the first table of a member's rows
  std::vector<Given> given_;
};

}  // namespace

Tables randomTables(unsigned seed) {
  Chance chance(seed);
  Tables tables(kTables);
  for (auto& table : tables) {
    int const rows = chance.percent(4) ? 0 : 1 + chance.below(14);
    for (int id = 1; id <= rows; ++id) {
      std::array<Value, kColumns> row;
      row[kId] = id > 1 && chance.percent(15) ? id - 1 : id;
      for (int const column : {kA, kB, kUnit, kText}) {
        row[static_cast<std::size_t>(column)] =
            chance.percent(12) ? Value() : Value(valueOf(chance, column));
      }
      table.rows.push_back(row);
    }
  }
  return tables;
}

Wiring randomWiring(unsigned seed) {
  return Generator(seed).make();
}

}  // namespace mox_test::wiring
