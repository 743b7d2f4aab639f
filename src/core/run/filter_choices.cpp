#include "core/run/filter_choices.h"

#include <unordered_set>

#include <fmt/format.h>

#include "core/database/text_dates.h"
#include "core/run/definition_run.h"
#include "mox/zyn/datasources/sql_data_source.h"
#include "mox/zyn/filters/filter_specification.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/matrix/data_matrix.h"

namespace mox::core {

namespace {

using Relation = moxSQLDataSource::Relation;
using Column = std::shared_ptr<moxDataMatrixColumn>;

/// The relation of the very column that the filter is bound to.
std::optional<Relation> relationOf(moxFilterSpecification const& specification,
                                   SourceList const& sources) {
  auto const bound = specification.getSQLDataSourceColumn();
  for (auto const& source : bound ? withMembers(sources) : SourceList()) {
    auto const sql = std::dynamic_pointer_cast<moxSQLDataSource const>(source);
    for (auto const& relation : sql ? sql->getRelations() : std::vector<Relation>()) {
      if (relation.column == bound) {
        return relation;
      }
    }
  }
  return std::nullopt;
}

/// A cell as readFilterValue takes it; of a moment the day.
class ValueText {
 public:
  explicit ValueText(Column const& column)
      : int_(std::dynamic_pointer_cast<moxDataMatrixIntColumn>(column)),
        double_(std::dynamic_pointer_cast<moxDataMatrixDoubleColumn>(column)),
        text_(std::dynamic_pointer_cast<moxDataMatrixTextColumn>(column)),
        date_(std::dynamic_pointer_cast<moxDataMatrixDateColumn>(column)) {}

  bool canTell() const { return int_ || double_ || text_ || date_; }

  std::string operator()(unsigned int row) const {
    if (int_) {
      return std::to_string(int_->getValue(row));
    }
    if (double_) {
      return fmt::format("{}", double_->getValue(row));
    }
    return text_ ? text_->getValue(row) : isoText(date_t(date_->getValue(row)));
  }

 private:
  std::shared_ptr<moxDataMatrixIntColumn> int_;
  std::shared_ptr<moxDataMatrixDoubleColumn> double_;
  std::shared_ptr<moxDataMatrixTextColumn> text_;
  std::shared_ptr<moxDataMatrixDateColumn> date_;
};

/// What stands beside the values: the description of their rows, or else the values again.
Column labelColumn(moxDataSource const& source, moxDataMatrix& matrix, Column const& values) {
  auto const* const sql = dynamic_cast<moxSQLDataSource const*>(&source);
  auto const description = sql != nullptr ? sql->getDescricaoColumn() : nullptr;
  auto const found = description ? matrix.columnByName(description->getColumnName()) : nullptr;
  return found ? found : values;
}

/// Cells as a user sees them.
class LabelText {
 public:
  explicit LabelText(Column const& column)
      : plain_(column), formatter_(column->getFormatter()), cell_(column->begin()) {}

  std::string operator()(unsigned int row) {
    if (formatter_ && cell_->goTo(row)) {
      return formatter_->asString(cell_);
    }
    return plain_.canTell() ? plain_(row) : std::string();
  }

 private:
  ValueText plain_;
  std::shared_ptr<moxGenericFormatter const> formatter_;
  std::shared_ptr<moxIterator> cell_;
};

void readChoices(Column const& values, Column const& labels, std::size_t most,
                 FilterChoices& result) {
  ValueText const valueAt(values);
  LabelText labelAt(labels);
  std::unordered_set<std::string> seen;
  for (unsigned int row = 0; row < values->numRows(); ++row) {
    if (values->isNull(row)) {
      continue;
    }
    auto const [value, isNew] = seen.insert(valueAt(row));
    if (isNew && result.choices.size() < most) {
      result.choices.push_back({*value, labelAt(row)});
    }
  }
  result.total = seen.size();
}

}  // namespace

std::optional<FilterChoices> readFilterChoices(VELMORApplication& application,
                                               moxSessionService& sessions,
                                               FilterOffer const& offer,
                                               FilterChoicesRequest const& request) {
  auto const relation = relationOf(*offer.specification, request.sources);
  if (!relation) {
    return std::nullopt;
  }
  FilterChoices result{.source = relation->dataSource, .choices = {}, .total = 0, .problem = {}};
  try {
    DefinitionRun run(application, sessions, relation->dataSource);
    run.setUnits(request.units);
    auto const matrix = run.run();
    auto const values = matrix ? matrix->columnByName(relation->columnName) : nullptr;
    if (!values || !ValueText(values).canTell()) {
      result.problem = "the definition " + quotedForMessage(relation->dataSource) +
                       " gives no column " + quotedForMessage(relation->columnName) + " of values";
      return result;
    }
    readChoices(values, labelColumn(*run.definition(), *matrix, values), request.most, result);
  } catch (moxError const& error) {
    result.problem = error.errorMessage();
  }
  return result;
}

}  // namespace mox::core
