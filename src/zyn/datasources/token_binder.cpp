#include "zyn/datasources/token_binder.h"

#include <algorithm>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "mox/zyn/sql/data_matrix_sql_unique_filters.h"
#include "zyn/datasources/statement_tokens.h"
#include "zyn/frame/current_user.h"

namespace {

constexpr char const* kDefaultUnit = "p_idUnidadeNegocioPadrao";
constexpr char const* kHeadOffice = "p_idUnidadeNegocioMatriz";
constexpr char const* kUser = "p_idUsuario";

/// The run's unit when it is for one; a run for several, or none, takes the session's.
int defaultUnit(moxDataSourceExecutionContext const& context) {
  auto const units = context.getIdUnidadeNegocio();
  if (units.size() == 1) {
    return units.front();
  }
  auto const user = currentUser();
  return user ? user->defaultUnit() : 0;
}

int userId() {
  auto const user = currentUser();
  if (!user) {
    throw moxDefaultErrorImpl<moxError>(
        "Não foi possível filtrar o usuário pois não existe sessão ativa");
  }
  return user->userId();
}

std::optional<int> builtInValue(std::string const& token,
                                moxDataSourceExecutionContext const& context) {
  if (token == kDefaultUnit) {
    return defaultUnit(context);
  }
  if (token == kHeadOffice) {
    return context.getIdUnidadeMatriz();
  }
  if (token == kUser) {
    return userId();
  }
  return std::nullopt;
}

/// A list without values binds a null by itself.
void makeUnset(moxDataMatrixSQLFilter* filter) {
  if (auto* const integer = dynamic_cast<moxDataMatrixSQLIntegerUniqueFilter*>(filter)) {
    integer->setNull();
  } else if (auto* const date = dynamic_cast<moxDataMatrixSQLDateUniqueFilter*>(filter)) {
    date->setNull();
  } else if (dynamic_cast<moxDataMatrixSQLIntegerInFilter*>(filter) == nullptr) {
    throw moxDefaultErrorImpl<moxError>("Formato de parâmetro não implementado");
  }
}

}  // namespace

void TokenBinder::bind(std::string const& token) {
  auto const key = tokenColumn(token);
  bool const bound = bindOwn(key) || managed_.bindToken(key, statement_) || bindDeclared(key) ||
                     bindBuiltIn(token, key);
  if (!bound) {
    throw moxDefaultErrorImpl<moxError>("Filtro com token " + token + " não localizado");
  }
}

bool TokenBinder::bindOwn(std::string const& key) {
  for (auto const& filter : ownFilters_) {
    if (filter->getColumnName() == key) {
      statement_.addParameter(filter, key, moxRunOrigin::kUserFilter);
      return true;
    }
  }
  return false;
}

bool TokenBinder::bindDeclared(std::string const& key) {
  for (auto const& specification : specifications()) {
    if (specification->getColumn() == key) {
      auto const filter = specification->createFilter();
      makeUnset(filter.get());
      statement_.addParameter(filter, key, moxRunOrigin::kUnsetParameter);
      return true;
    }
  }
  return false;
}

bool TokenBinder::bindBuiltIn(std::string const& token, std::string const& key) {
  auto const value = builtInValue(token, context_);
  if (!value) {
    return false;
  }
  auto const filter =
      moxApp->get<moxDataMatrixSQLIntegerUniqueFilter>("moxDataMatrixSQLIntegerUniqueFilter");
  filter->setColumnName({}, key);
  filter->setValue(*value);
  statement_.addParameter(filter, key, moxRunOrigin::kSessionToken);
  return true;
}

std::vector<std::shared_ptr<moxFilterSpecification const>> const& TokenBinder::specifications() {
  if (!specifications_) {
    specifications_ = definition_.getFilters();
  }
  return *specifications_;
}
