#include "core/database/many_values_statement.h"

#include <cmath>
#include <stdexcept>
#include <utility>

#include "core/database/database_error.h"
#include "core/database/written_value.h"
#include "core/documents/utf8.h"
#include "core/storage/blob.h"

namespace mox::core {
namespace {

struct KindOf {
  moxValueKind operator()(MarkNull) const { return moxValueKind::kNull; }
  moxValueKind operator()(int) const { return moxValueKind::kInt; }
  moxValueKind operator()(double value) const {
    return std::isfinite(value) ? moxValueKind::kDouble : moxValueKind::kOther;
  }
  moxValueKind operator()(std::string const& value) const {
    bool const isUtf8 = findInvalidUtf8(value) == std::string_view::npos;
    return isUtf8 ? moxValueKind::kText : moxValueKind::kOther;
  }
  template <class Other>
  moxValueKind operator()(Other const&) const {
    return moxValueKind::kOther;
  }
};

/// Writes a null by its name, a number as a numeral, and a text as that of its bytes.
struct Writer {
  void operator()(MarkNull) const { sql += "null"; }
  void operator()(int value) const { sql += std::to_string(value); }
  void operator()(double value) const { appendNumeral(sql, value); }
  void operator()(std::string const& value) const { appendHexadecimal(sql, value); }
  template <class Other>
  void operator()(Other const&) const {
    throw std::logic_error("only nulls, numbers and texts are written into a statement");
  }

  std::string& sql;
};

struct Binder {
  void operator()(MarkNull) const { statement.bindNull(position); }
  void operator()(int value) const { statement.bindInt(position, value); }
  void operator()(double value) const { statement.bindDouble(position, value); }
  void operator()(std::string const& value) const { statement.bindString(position, value); }
  void operator()(KeptBytes const& value) const { statement.bindBlob(position, Blob(value.bytes)); }
  void operator()(date_t const& value) const { statement.bindDate(position, value); }
  void operator()(datetime_t const& value) const { statement.bindDateTime(position, value); }

  LineStatement& statement;
  int position;
};

template <class Day>
KeptValue dayOrNull(Day const& value) {
  return value ? KeptValue(value) : KeptValue(MarkNull{});
}

ListBinder& listBinder(LineStatement& statement) {
  auto* const binder = dynamic_cast<ListBinder*>(&statement);
  if (binder == nullptr) {
    throw std::logic_error("lists are bound only where statements take them");
  }
  return *binder;
}

}  // namespace

// The sign takes the column's type away: values then compare as those of a plain list do, by the
// type of what is looked for among them.
std::string_view boundListSelect() {
  return "select +value from mox_bound_list(?)";
}

ManyValuesStatement::ManyValuesStatement(std::shared_ptr<PhysicalConnection> line,
                                         StatementScript script, ManyValuesRules const& rules,
                                         MarkPlaces marks)
    : line_(std::move(line)),
      script_(std::move(script)),
      rules_(rules),
      marks_(std::move(marks)),
      values_(marks_.places.size()) {}

void ManyValuesStatement::setRowObserver(RowObserver observer) {
  observer_ = std::move(observer);
  if (inner_) {
    inner_->setRowObserver(observer_);
  }
}

void ManyValuesStatement::keep(int position, KeptValue value) {
  requirePosition(position, static_cast<int>(values_.size()));
  inner_.reset();
  values_[static_cast<std::size_t>(position)] = std::move(value);
}

void ManyValuesStatement::bindDate(int position, date_t const& value) {
  keep(position, dayOrNull(value));
}

void ManyValuesStatement::bindDateTime(int position, datetime_t const& value) {
  keep(position, dayOrNull(value));
}

void ManyValuesStatement::bindBlob(int position, moxReadBlob const& value) {
  keep(position, KeptBytes{std::string(value.data(), value.size())});
}

std::vector<moxValueKind> ManyValuesStatement::kinds() const {
  std::vector<moxValueKind> kinds;
  kinds.reserve(values_.size());
  for (auto const& value : values_) {
    kinds.push_back(std::visit(KindOf{}, value));
  }
  return kinds;
}

std::string ManyValuesStatement::writeStatement(ValuePlacement const& placement,
                                                std::vector<BoundMark>& marks) const {
  std::string_view const text = script_.main;
  std::string sql;
  std::size_t copied = 0;
  auto run = marks_.runs.begin();
  for (std::size_t mark = 0; mark < values_.size(); ++mark) {
    while (run != marks_.runs.end() && run->first + run->count <= mark) {
      ++run;
    }
    sql += text.substr(copied, marks_.places[mark] - copied);
    copied = marks_.places[mark] + 1;
    switch (placement.roadOf(mark)) {
      case ValueRoad::kMark:
        sql += '?';
        marks.push_back({mark, 1});
        break;
      case ValueRoad::kList:
        sql += boundListSelect();
        marks.push_back({mark, run->count});
        copied = run->behind;
        mark += run->count - 1;
        break;
      case ValueRoad::kNumeral:
      case ValueRoad::kHexadecimal:
      case ValueRoad::kNull:
        std::visit(Writer{sql}, values_[mark]);
        break;
    }
  }
  return sql.append(text.substr(copied));
}

void ManyValuesStatement::bindInner(std::vector<BoundMark> const& marks) {
  int position = 0;
  for (auto const& [first, count] : marks) {
    if (count > 1) {
      listBinder(*inner_).bindList(position, std::span(values_).subspan(first, count));
    } else {
      std::visit(Binder{*inner_, position}, values_[first]);
    }
    ++position;
  }
}

void ManyValuesStatement::prepareInner() {
  ValuePlacement const placement(marks_, kinds(), rules_);
  if (!placement.fits()) {
    throw DatabaseError("The statement cannot be sent: " + placement.describe(), "");
  }
  std::vector<BoundMark> marks;
  StatementScript script = script_;
  script.main = writeStatement(placement, marks);
  line_->ensureUsable();
  inner_ = asLineStatement(line_->prepare(std::move(script)));
  inner_->setRowObserver(observer_);
  bindInner(marks);
}

void ManyValuesStatement::execute() {
  if (!inner_) {
    prepareInner();
  }
  inner_->execute();
}

LineStatement& ManyValuesStatement::executed() const {
  if (!inner_) {
    throw std::logic_error("a statement was read that was not executed with its present values");
  }
  return *inner_;
}

bool ManyValuesStatement::fetch() {
  return executed().fetch();
}

int ManyValuesStatement::fetchBlock(std::vector<moxFieldBlock>& fields, int capacity) {
  return executed().fetchBlock(fields, capacity);
}

int ManyValuesStatement::fieldCount() const {
  return inner_ ? inner_->fieldCount() : 0;
}

moxDatabaseConnection::FieldInfo const& ManyValuesStatement::field(int index) const {
  return executed().field(index);
}

std::int64_t ManyValuesStatement::rowCount() const {
  return inner_ ? inner_->rowCount() : -1;
}

}  // namespace mox::core
