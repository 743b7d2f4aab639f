#include "core/run/unit_confinement.h"

#include <algorithm>

#include "core/run/group_members.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"

namespace mox::core {

namespace {

// By this name the module knows a column that holds head offices and not units.
constexpr char const* kHeadOfficeColumn = "id_unidadematriz";

constexpr char const* kSessionTokens[] = {"{{p_idUnidadeNegocioPadrao}}",
                                          "{{p_idUnidadeNegocioMatriz}}", "{{p_idUsuario}}"};

constexpr std::uint8_t kUnit = 1;
constexpr std::uint8_t kHeadOffice = 2;

/// The units of a scope that a filter lets through; empty for one that is no test of units.
class UnitSelection {
 public:
  explicit UnitSelection(std::vector<int> allowed) : allowed_(std::move(allowed)) {}

  std::optional<FilterValue> operator()(FilterOne<int> const& one) const {
    return thoseThat([&](int unit) { return unit == one.value; });
  }

  std::optional<FilterValue> operator()(FilterRange<int> const& range) const {
    return thoseThat([&](int unit) {
      return (!range.min || unit >= *range.min) && (!range.max || unit <= *range.max);
    });
  }

  std::optional<FilterValue> operator()(FilterList<int> const& list) const {
    return thoseThat([&](int unit) {
      return std::find(list.values.begin(), list.values.end(), unit) != list.values.end();
    });
  }

  template <class Other>
  std::optional<FilterValue> operator()(Other const&) const {
    return std::nullopt;
  }

 private:
  template <class Test>
  FilterValue thoseThat(Test test) const {
    FilterList<int> kept;
    std::copy_if(allowed_.begin(), allowed_.end(), std::back_inserter(kept.values), test);
    return kept;
  }

  std::vector<int> allowed_;
};

/// Such a filter tests a subquery of its own, and not the column that it is named by.
bool testsSubquery(moxFilterSpecification const& specification) {
  return std::dynamic_pointer_cast<moxDataMatrixSQLIntegerUniqueSQLFilter>(
             specification.createFilter()) != nullptr;
}

bool isSessionToken(std::string const& column) {
  return std::find(std::begin(kSessionTokens), std::end(kSessionTokens), column) !=
         std::end(kSessionTokens);
}

std::string nameOf(FilterArgument const& argument) {
  return "filter " + quotedForMessage(argument.text.empty()
                                          ? argument.offer.specification->getColumn()
                                          : argument.text);
}

}  // namespace

UnitConfinement::UnitConfinement(std::vector<std::shared_ptr<moxDataSource const>> const& sources,
                                 UnitScope scope)
    : scope_(std::move(scope)) {
  std::vector<ManageFilterData> managers;
  for (auto const& source : withMembers(sources)) {
    if (auto const sql = std::dynamic_pointer_cast<moxSQLDataSource const>(source)) {
      addUnitColumn(*sql);
    } else if (auto const manager =
                   std::dynamic_pointer_cast<moxManageFilterDataSource const>(source)) {
      auto const records = manager->getSources();
      managers.insert(managers.end(), records.begin(), records.end());
    }
  }
  bool grew = true;
  while (grew) {  // what one manager renames may be what another one puts on a unit column
    grew = false;
    for (auto const& manager : managers) {
      grew = addNamesOf(manager) || grew;
    }
  }
  std::erase(scope_.units, 0);  // a session in which no unit was chosen
}

void UnitConfinement::addUnitColumn(moxSQLDataSource const& source) {
  auto const column = source.getUnidadeColumn().first;
  if (!column) {
    return;
  }
  keepsToUnits_ = true;
  auto const origin = column->getColumnNameOrigin();
  auto const restricted = origin.empty() ? column->getColumnName() : origin;
  for (auto const& name : {column->getColumnName(), restricted}) {
    if (!name.empty()) {
      unitNames_[name] |= restricted == kHeadOfficeColumn ? kHeadOffice : kUnit;
    }
  }
}

/// Whichever source the manager says that it rules: the group may know it under another name.
bool UnitConfinement::addNamesOf(ManageFilterData const& manager) {
  bool grew = false;
  for (auto const& related : manager.related) {
    for (auto const& target : {related.columnName, related.columnNameOrigin}) {
      grew = addName(related.filterNameRelac, target) || grew;
    }
  }
  return grew;
}

/// A filter called `name` is put on `target`. Whether that says anything new.
bool UnitConfinement::addName(std::string const& name, std::string const& target) {
  bool grew = false;
  auto const token = tokensByName_.find(target);
  if (isSessionToken(target) || token != tokensByName_.end()) {
    grew = tokensByName_.emplace(name, isSessionToken(target) ? target : token->second).second;
  }
  auto const kinds = kindsOf(name) | kindsOf(target);
  if (kinds != kindsOf(name)) {
    unitNames_[name] = static_cast<Kinds>(kinds);
    grew = true;
  }
  return grew;
}

UnitConfinement::Kinds UnitConfinement::kindsOf(std::string const& name) const {
  auto const found = unitNames_.find(name);
  return found != unitNames_.end() ? found->second : 0;
}

/// Where one name stands for columns of both kinds, a number must be right for either.
std::vector<int> UnitConfinement::allowedFor(Kinds kinds) const {
  std::vector<int> allowed = scope_.units;
  if ((kinds & kHeadOffice) != 0) {
    bool const known = scope_.headOffice != 0;
    bool const isUnit =
        std::find(allowed.begin(), allowed.end(), scope_.headOffice) != allowed.end();
    bool const right = known && ((kinds & kUnit) == 0 || isUnit);
    allowed.assign(right ? 1 : 0, scope_.headOffice);
  }
  return allowed;
}

FilterArgument UnitConfinement::confined(FilterArgument argument) const {
  auto const& specification = *argument.offer.specification;
  auto const column = specification.getColumn();
  auto const token = tokensByName_.find(column);
  if (isSessionToken(column) || token != tokensByName_.end()) {
    throw FilterArgumentError(nameOf(argument) + ": the session alone says what " +
                              (token != tokensByName_.end() ? token->second : column) +
                              " stands for");
  }
  auto const kinds = kindsOf(column);
  if (kinds == 0) {
    return argument;
  }
  auto const kept = std::visit(UnitSelection(allowedFor(kinds)), argument.value);
  if (!kept || testsSubquery(specification)) {
    throw FilterArgumentError(nameOf(argument) + ": " + quotedForMessage(column) +
                              " is a business unit, and takes no filter but one of whole numbers");
  }
  argument.value = *kept;
  argument.keptToUnits = true;
  return argument;
}

}  // namespace mox::core
