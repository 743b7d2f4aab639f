#include "zyn/datasources/sql_statement_run.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "mox/core/application.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/sql/composed_select.h"
#include "zyn/datasources/sql_statement_texts.h"
#include "zyn/datasources/statement_report.h"
#include "zyn/datasources/statement_tokens.h"
#include "zyn/datasources/token_binder.h"
#include "zyn/datasources/unit_restriction.h"

namespace {

/// A filter that served as a token's value is no condition any more. A token that stands twice
/// takes a second filter of its name along, which would have no mark.
void takeOutParameters(SQLStatementRun::Filters& filters, std::vector<std::string> const& tokens) {
  for (auto const& token : tokens) {
    auto const key = tokenColumn(token);
    auto const served = std::find_if(filters.begin(), filters.end(), [&](auto const& filter) {
      return filter->getColumnName() == key;
    });
    if (served != filters.end()) {
      filters.erase(served);
    }
  }
}

bool hasCondition(moxFilterDataSourceSpec const& condition) {
  auto const kind = condition.getTipo();
  return kind == moxFilterDataSourceSpec::kValor || kind == moxFilterDataSourceSpec::kSql;
}

}  // namespace

SQLStatementRun::SQLStatementRun(moxSQLDataSource const& definition,
                                 moxDataSourceExecutionContext const& context, std::string source)
    : definition_(definition),
      context_(context),
      source_(std::move(source)),
      report_(reportOf(context)),
      loader_(moxApp->get<moxDataMatrixSQLLoader>("moxDataMatrixSQLLoader")),
      matrix_(moxApp->get<moxDataMatrix>("moxDataMatrix")),
      filters_(*loader_, report_ != nullptr) {
  loader_->setDataMatrix(matrix_);
}

void SQLStatementRun::compose(FilterSources const& filterSources) {
  auto const unitColumn = unitColumnOf(definition_);
  auto texts = composeSQLStatement(definition_, filterSources);
  encloseCondition(definition_, texts);
  auto const joiningWord = texts.where.empty() ? definition_.getWhereAnd() : "and";
  auto statement = parseTokens(texts.select + texts.from + texts.join + texts.where);
  if (!unitColumn.second.empty()) {
    requireRestrictable(definition_, statement.query, texts, joiningWord);
  }
  loader_->setSql(statement.query, "", texts.tail, unitColumn, joiningWord,
                  definition_.getUnidadeColumn().second);
  loader_->setPrefixSufix(definition_.getPrefix(), definition_.getSufix());
  if (!texts.ordered) {
    addOrder();
  }
  tokens_ = std::move(statement.tokens);
}

void SQLStatementRun::addOrder() {
  for (auto const& [column, descending] : definition_.getOrderColumns()) {
    loader_->addOrderColumn(column->getTableName(), column->getColumnNameOrigin(), descending);
  }
}

void SQLStatementRun::bind(std::vector<ManageFilterData> const& managers, Filters ownFilters) {
  managed_ = std::make_unique<ManagedFilters>(managers, context_);
  TokenBinder binder(definition_, context_, ownFilters, *managed_, filters_);
  for (auto const& token : tokens_) {
    binder.bind(token);
  }
  takeOutParameters(ownFilters, tokens_);
  managed_->addConditions(definition_, filters_);
  for (auto const& filter : ownFilters) {
    filters_.addCondition(filter, moxRunOrigin::kUserFilter);
  }
}

void SQLStatementRun::restrict(StatementFilters::Filter const& filter,
                               std::string const& relatedSource, std::string const& column) {
  filters_.addCondition(filter, moxRunOrigin::kRelation, relatedSource, column);
}

void SQLStatementRun::addFixedConditions(FilterSources const& filterSources) {
  for (auto const& filterSource : filterSources) {
    for (auto const& condition : filterSource->getFiltersSpec()) {
      auto const filter = hasCondition(*condition) ? condition->getDataMatrixFilter() : nullptr;
      if (filter) {
        filters_.addCondition(filter, moxRunOrigin::kFilterSource, filterSource->getName());
      }
    }
  }
}

void SQLStatementRun::execute() {
  managed_->rename();
  loadRows();
  managed_->restoreNames();
  dressMatrix();
}

void SQLStatementRun::loadRows() {
  auto const units = context_.getIdUnidadeNegocio();
  int const headOffice = context_.getIdUnidadeMatriz();
  if (report_ != nullptr) {
    if (auto const* const composer = dynamic_cast<moxSelectComposer const*>(loader_.get())) {
      recordStatement(*report_, source_, composer->compose(units, headOffice), filters_);
    }
    recordUnused(*report_->runRecorder(), *managed_);
    if (!report_->runRecorder()->executes()) {
      return;
    }
  }
  loader_->execute(units, headOffice);
}

/// The first column of a name counts, be it with a formatter or without.
void SQLStatementRun::dressMatrix() const {
  std::unordered_map<std::string, moxSQLDataSource::ConstColumn> byName;
  for (auto const& column : definition_.columns()) {
    byName.emplace(column->getColumnName(), column);
  }
  for (unsigned int i = 0; i < matrix_->columnCount(); ++i) {
    auto const column = matrix_->columnAt(i);
    auto const found = byName.find(column->getName());
    if (found == byName.end()) {
      continue;
    }
    if (auto const formatter = found->second->getFormatter()) {
      column->setFormatter(formatter);
    }
  }
}
