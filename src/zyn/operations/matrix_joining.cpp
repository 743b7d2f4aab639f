#include "zyn/operations/matrix_joining.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

#include "mox/core/error.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/operations/operation_errors.h"

namespace {

/// Two columns that a condition compares and that hold different kinds of values. Who knows cursors
/// catches std::bad_cast, which theirs throw; who reads messages catches moxError.
class KindsDiffer final : public std::bad_cast, public moxDefaultErrorImpl<moxError> {
 public:
  explicit KindsDiffer(std::string const& message) : moxDefaultErrorImpl<moxError>(message) {}
};

[[noreturn]] void failToCompare(JoinedSource const& source, std::size_t condition) {
  auto const& columns = source.conditions[condition];
  throw KindsDiffer("JoinDataSource: coluna " + columns.sourceColumn + " do source " + source.name +
                    " não pode ser comparada com a coluna " + columns.resultColumn +
                    ": os tipos são diferentes.");
}

/// `there` is the matrix that was to have the column.
moxDefaultErrorImpl<moxError> missingColumn(JoinedSource const& source, std::string const& column,
                                            std::string const& whose, moxDataMatrix const& there) {
  return moxDefaultErrorImpl<moxError>(
      "JoinDataSource: coluna " + column + " do source " + source.name + " não localizada.",
      {"in " + whose + " " + columnsThere(there)});
}

MatrixColumn columnOf(JoinedSource const& source, std::string const& name) {
  auto column = source.matrix->columnByName(name);
  if (!column) {
    throw missingColumn(source, name, "the rows of " + source.name, *source.matrix);
  }
  return column;
}

RowMatcher::Keys sourceKeys(auto const& conditions) {
  RowMatcher::Keys keys;
  for (auto const& condition : conditions) {
    keys.push_back(condition.column);
  }
  return keys;
}

bool meetsAny(RowMatches const& matches) {
  return std::any_of(matches.listOf.begin(), matches.listOf.end(),
                     [](std::uint32_t list) { return list != JoinIndex::kNone; });
}

/// Row numbers of row numbers.
RowOrder composed(RowOrder const& rows, RowOrder const& order) {
  RowOrder made;
  made.reserve(order.size());
  for (std::uint32_t const row : order) {
    made.push_back(rows[row]);
  }
  return made;
}

RowOrder firstsBeside(JoinedRows const& joined) {
  RowOrder rows;
  rows.reserve(joined.source.size());
  for (std::size_t row = 0; row < joined.source.size(); ++row) {
    rows.push_back(joined.firstBeside(row));
  }
  return rows;
}

}  // namespace

void MatrixJoining::addSource(JoinedSource source) {
  std::uint32_t const rows = source.matrix->rowCount();
  for (auto const& column : source.columns) {
    MatrixColumn made = emptyLike(*columnOf(source, column.name));
    made->setName(column.alias);
    columns_.push_back({std::move(made), {}, {}});
  }
  hasSourceWithoutRows_ = hasSourceWithoutRows_ || rows == 0;
  sources_.push_back({std::move(source), rows, {}});
}

std::shared_ptr<moxDataMatrix> MatrixJoining::process() {
  auto result = newMatrix();
  for (auto const& column : columns_) {
    result->addColumn(column.made);
  }
  if (hasSourceWithoutRows_ || columns_.empty()) {
    return result;
  }
  for (auto& source : sources_) {
    resolveConditions(source, *result);
  }
  for (auto const& source : sources_) {
    join(source);
  }
  refuseTooManyRows(rows_);
  for (auto& column : columns_) {
    fill(column);
  }
  return result;
}

MatrixColumn MatrixJoining::own(MatrixColumn const& column, std::uint32_t rows) {
  auto& known = own_[{column, rows}];
  known = known ? known : asOwn(column, rows);
  return known;
}

std::size_t MatrixJoining::targetNamed(std::string const& name) const {
  auto const found =
      std::find_if(columns_.begin(), columns_.end(),
                   [&](ResultColumn const& column) { return column.made->getName() == name; });
  return static_cast<std::size_t>(found - columns_.begin());
}

void MatrixJoining::resolveConditions(Source& source, moxDataMatrix const& result) {
  for (auto const& condition : source.given.conditions) {
    auto const column = columnOf(source.given, condition.sourceColumn);
    std::size_t const target = targetNamed(condition.resultColumn);
    if (target == columns_.size()) {
      throw missingColumn(source.given, condition.resultColumn, "the result", result);
    }
    source.conditions.push_back({own(column, source.rows), target});
  }
}

/// Of several columns of one alias the last one of the target's kind is written. Copies take the
/// last one of any kind, so that one of another kind leaves them as they are.
std::vector<MatrixJoining::Writing> MatrixJoining::writingsOf(Source const& source) {
  std::vector<Writing> writings;
  for (auto const& column : source.given.columns) {
    std::size_t const target = targetNamed(column.alias);
    auto const from = own(columnOf(source.given, column.name), source.rows);
    bool const fits = from->getType() == columns_[target].made->getType();
    auto const known = std::find_if(writings.begin(), writings.end(), [&](Writing const& writing) {
      return writing.target == target;
    });
    if (known != writings.end()) {
      *known = {target, fits ? from : known->column, fits};
    } else if (fits) {
      writings.push_back({target, from, true});
    }
  }
  return writings;
}

void MatrixJoining::join(Source const& source) {
  if (!source.conditions.empty()) {
    match(source);
  } else if (begun_) {
    advance(crossedRows(rows_, source.rows), writingsOf(source));
  } else {
    begin(source);
  }
}

void MatrixJoining::begin(Source const& source) {
  for (auto const& writing : writingsOf(source)) {
    columns_[writing.target].from = writing.column;
  }
  rows_ = source.rows;
  begun_ = true;
}

void MatrixJoining::match(Source const& source) {
  if (rows_ == 0) {
    return;
  }
  if (!canCompareAll(source)) {
    advance({}, {});
    return;
  }
  auto const writings = writingsOf(source);
  RowMatcher const matcher(sourceKeys(source.conditions), source.rows);
  RowMatches matches = matcher.match(keysOf(source.conditions), rows_);
  JoinedRows joined = rowsThatMeet(matches);
  if (changesOwnKeys(source, writings)) {
    auto const stayed = static_cast<std::uint32_t>(joined.stayed);
    matches = matcher.match(keysOnceWritten(source, writings, joined), stayed);
  }
  addCopies(joined, matches);
  advance(std::move(joined), writings);
}

/// Conditions are tried in their order, so that one that cannot be tried only fails where all
/// before it hold. False when it is never tried: then nothing meets.
bool MatrixJoining::canCompareAll(Source const& source) {
  auto const differs = [&](Condition const& condition) {
    return condition.column->getType() != columns_[condition.target].made->getType();
  };
  auto const& all = source.conditions;
  auto const bad = std::find_if(all.begin(), all.end(), differs);
  if (bad == all.end()) {
    return true;
  }
  std::vector<Condition> const tried(all.begin(), bad);
  if (tried.empty() ||
      meetsAny(RowMatcher(sourceKeys(tried), source.rows).match(keysOf(tried), rows_))) {
    failToCompare(source.given, tried.size());
  }
  return false;
}

/// Whether the first meeting changes what the further ones are compared with. A column written with
/// the very values that it is compared with stays the same, but for a number, which may become a
/// NaN.
bool MatrixJoining::changesOwnKeys(Source const& source,
                                   std::vector<Writing> const& writings) const {
  auto const& conditions = source.conditions;
  return std::any_of(writings.begin(), writings.end(), [&](Writing const& writing) {
    auto const compares = [&](Condition const& condition) {
      return condition.target == writing.target;
    };
    auto const keeps = [&](Condition const& condition) {
      return compares(condition) && condition.column == writing.column &&
             writing.column->getType() != moxDataMatrixTypes::Double;
    };
    return std::any_of(conditions.begin(), conditions.end(), compares) &&
           std::none_of(conditions.begin(), conditions.end(), keeps);
  });
}

RowMatcher::Keys MatrixJoining::keysOf(std::vector<Condition> const& conditions) const {
  RowMatcher::Keys keys;
  for (auto const& condition : conditions) {
    keys.push_back(cellsOf(columns_[condition.target]));
  }
  return keys;
}

RowMatcher::Keys MatrixJoining::keysOnceWritten(Source const& source,
                                                std::vector<Writing> const& writings,
                                                JoinedRows const& joined) const {
  RowMatcher::Keys keys = keysOf(source.conditions);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    auto const written = std::find_if(
        writings.begin(), writings.end(),
        [&](Writing const& writing) { return writing.target == source.conditions[i].target; });
    if (written != writings.end()) {
      keys[i] = gathered(written->column, joined.source);
    } else if (!joined.unchanged) {
      keys[i] = gathered(keys[i], joined.before);
    }
  }
  return keys;
}

MatrixColumn MatrixJoining::cellsOf(ResultColumn const& column) const {
  if (column.from) {
    return column.rows ? gathered(column.from, *column.rows) : column.from;
  }
  MatrixColumn nulls = emptyLike(*column.made);
  withStorage(*nulls, [&](auto& storage) { appendNulls(storage, rows_); });
  return nulls;
}

void MatrixJoining::advance(JoinedRows joined, std::vector<Writing> const& writings) {
  for (auto const& writing : writings) {
    columns_[writing.target].rows = {};
    columns_[writing.target].from = {};
  }
  rows_ = static_cast<std::uint32_t>(joined.source.size());
  Rows const first = std::all_of(writings.begin(), writings.end(),
                                 [](Writing const& writing) { return writing.isForCopies; })
                         ? nullptr
                         : std::make_shared<RowOrder const>(firstsBeside(joined));
  if (!joined.unchanged) {
    follow(std::make_shared<RowOrder const>(std::move(joined.before)));
  }
  Rows const source = std::make_shared<RowOrder const>(std::move(joined.source));
  for (auto const& writing : writings) {
    columns_[writing.target].from = writing.column;
    columns_[writing.target].rows = writing.isForCopies ? source : first;
  }
}

/// Columns that took the same rows go on doing so.
void MatrixJoining::follow(Rows const& before) {
  std::map<Rows, Rows> known;
  known[nullptr] = before;
  for (auto& column : columns_) {
    if (column.from) {
      auto& rows = known[column.rows];
      rows = rows ? rows : std::make_shared<RowOrder const>(composed(*column.rows, *before));
      column.rows = rows;
    }
  }
}

void MatrixJoining::fill(ResultColumn& column) const {
  withStorage(*column.made, [&]<class T>(ColumnStorage<T>& target) {
    if (!column.from) {
      appendNulls(target, rows_);
      return;
    }
    auto const& from = dynamic_cast<CommonColumn<T> const&>(*column.from).storage();
    if (column.rows) {
      gatherRows(from, *column.rows, target);
    } else {
      appendRows(from, rows_, target);
    }
  });
  column.from = {};
  column.rows = {};
}
