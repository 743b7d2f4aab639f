#include "core/run/unit_confinement.h"

#include <algorithm>

#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"

namespace mox::core {

namespace {

// By this name the module knows a column that holds head offices and not units.
constexpr char const* kHeadOfficeColumn = "id_unidadematriz";

constexpr char const* kSessionTokens[] = {"{{p_idUnidadeNegocioPadrao}}",
                                          "{{p_idUnidadeNegocioMatriz}}", "{{p_idUsuario}}"};

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

std::string nameOf(FilterArgument const& argument) {
  return "filter " + quotedForMessage(argument.text.empty()
                                          ? argument.offer.specification->getColumn()
                                          : argument.text);
}

}  // namespace

UnitConfinement::UnitConfinement(std::vector<std::shared_ptr<moxDataSource const>> const& sources,
                                 UnitScope scope)
    : scope_(std::move(scope)) {
  for (auto const& source : sources) {
    auto const sql = std::dynamic_pointer_cast<moxSQLDataSource const>(source);
    auto const column = sql ? sql->getUnidadeColumn().first : nullptr;
    if (!column) {
      continue;
    }
    auto const origin = column->getColumnNameOrigin();
    auto const restricted = origin.empty() ? column->getColumnName() : origin;
    for (auto const& name : {column->getColumnName(), restricted}) {
      unitColumns_.insert(name);
      if (restricted == kHeadOfficeColumn) {
        headOfficeColumns_.insert(name);
      }
    }
  }
  std::erase(scope_.units, 0);  // a session in which no unit was chosen
}

FilterArgument UnitConfinement::confined(FilterArgument argument) const {
  auto const& specification = *argument.offer.specification;
  auto const column = specification.getColumn();
  if (std::find(std::begin(kSessionTokens), std::end(kSessionTokens), column) !=
      std::end(kSessionTokens)) {
    throw FilterArgumentError(nameOf(argument) + ": the session alone says what " + column +
                              " stands for");
  }
  if (!unitColumns_.contains(column)) {
    return argument;
  }
  std::vector<int> allowed = scope_.units;
  if (headOfficeColumns_.contains(column)) {
    allowed.assign(scope_.headOffice == 0 ? 0 : 1, scope_.headOffice);
  }
  auto const kept = std::visit(UnitSelection(std::move(allowed)), argument.value);
  if (!kept || testsSubquery(specification)) {
    throw FilterArgumentError(nameOf(argument) + ": " + quotedForMessage(column) +
                              " is a business unit, and takes no filter but one of whole numbers");
  }
  argument.value = *kept;
  argument.keptToUnits = true;
  return argument;
}

}  // namespace mox::core
