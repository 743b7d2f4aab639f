#include "zyn/operations/block_run.h"

#include <algorithm>
#include <optional>
#include <typeinfo>
#include <utility>
#include <vector>

#include "zyn/expressions/arithmetic.h"
#include "zyn/expressions/expression_context.h"
#include "zyn/matrix/typed_iterator.h"
#include "zyn/operations/block_machine.h"

namespace {

/// Rows that every column has before the next ones are computed: few enough that a column which
/// reads another finds it in the processor's cache.
constexpr std::size_t kRowsAtOnce = 1024;

/// The storage under one of the module's own cursors; null under any other. The cursor must stand
/// on the first row, as the row's number is taken for its place.
template <class T>
ColumnStorage<T> const* storageUnder(moxIterator const& cursor) {
  if (typeid(cursor) != typeid(moxTypedIterator<T>) || cursor.pos() != 0) {
    return nullptr;
  }
  return &static_cast<moxTypedIterator<T> const&>(cursor).column().storage();
}

class BlockRun {
 public:
  explicit BlockRun(ComputedColumns& columns) : columns_(columns.all()), rows_(columns.rows()) {}

  /// False when some expression cannot run over blocks.
  bool compile() {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (!compile(i)) {
        return false;
      }
    }
    return true;
  }

  void run() {
    std::size_t const last = lastRow();
    for (std::size_t first = 0; first < last; first += kRowsAtOnce) {
      end_ = std::min(last, first + kRowsAtOnce);
      computeBlock(first);
      if (divides_ != nullptr) {
        divides_->failDivision();
      }
    }
  }

 private:
  /// What computes a column.
  struct Machine {
    std::optional<BlockMachine> blocks;  // empty when the text is no expression
    bool hasValue = false;
  };

  bool compile(std::size_t index) {
    ComputedColumn const& column = columns_[index];
    if (!column.isParsed) {
      machines_.push_back({});
      return true;
    }
    auto const* const context = dynamic_cast<moxExParser::Context const*>(column.context.get());
    if (context == nullptr) {
      return false;
    }
    auto program = compileExpression(context->operations(), [&](ColumnOperation const& operation) {
      return columnReadBy(operation, index);
    });
    if (!program) {
      return false;
    }
    bool const hasValue = program->result || program->alwaysDividesByZero;
    machines_.push_back({BlockMachine(std::move(*program), places_), hasValue});
    return true;
  }

  std::optional<ReadColumn> columnReadBy(ColumnOperation const& operation, std::size_t index) {
    moxIterator const& cursor = operation.cursor();
    ReadColumn column;
    if (cursor.getType() == moxDataMatrixTypes::Int) {
      column.ints = storageUnder<int>(cursor);
    } else if (cursor.getType() == moxDataMatrixTypes::Double) {
      column.doubles = storageUnder<double>(cursor);
    } else {
      return column;  // texts, dates and blobs are no numbers, whoever made them
    }
    if (!column.hasNumbers()) {
      return {};
    }
    column.origin = originOf(column, index);
    return column;
  }

  ReadColumn::Origin originOf(ReadColumn const& read, std::size_t index) const {
    auto const isRead = [&](ComputedColumn const& column) {
      return column.cells.ints() == read.ints && column.cells.doubles() == read.doubles;
    };
    if (isRead(columns_[index])) {
      return ReadColumn::Origin::kSelf;
    }
    auto const end = columns_.begin() + static_cast<std::ptrdiff_t>(index);
    bool const isEarlier = std::any_of(columns_.begin(), end, isRead);
    return isEarlier ? ReadColumn::Origin::kEarlier : ReadColumn::Origin::kInput;
  }

  /// Only the first row is of interest where some expression has no value: it fails there.
  std::size_t lastRow() const {
    bool const allHaveValues = std::all_of(machines_.begin(), machines_.end(),
                                           [](Machine const& machine) { return machine.hasValue; });
    return allHaveValues ? rows_ : 1;
  }

  void computeBlock(std::size_t first) {
    for (std::size_t i = 0; i < columns_.size() && first < end_; ++i) {
      std::size_t const row = computeColumn(i, first);
      if (row < end_) {
        endAt(row, i);
      }
    }
  }

  /// Computes a column from `first` to the block's end; the row where it divides by zero, or the
  /// end.
  std::size_t computeColumn(std::size_t index, std::size_t first) {
    Machine& machine = machines_[index];
    ComputedColumn& column = columns_[index];
    if (!machine.blocks) {
      column.fail();
    }
    for (std::size_t row = first; row < end_;) {
      std::size_t const count = std::min(machine.blocks->rowsAtOnce(), end_ - row);
      auto const outcome = machine.blocks->run(row, count);
      if (!machine.hasValue && outcome.rows != 0) {
        column.fail();
      }
      column.cells.append(outcome.values, outcome.rows);
      row += outcome.rows;
      if (outcome.rows != count) {
        return row;
      }
    }
    return end_;
  }

  /// A column divides by zero in a row of this block: columns before it keep that row, those behind
  /// it end ahead of it.
  void endAt(std::size_t row, std::size_t index) {
    for (std::size_t i = 0; i < index; ++i) {
      columns_[i].cells.forgetFrom(row + 1);
    }
    end_ = row;
    divides_ = &columns_[index];
  }

  std::vector<ComputedColumn>& columns_;
  std::size_t rows_;
  std::vector<Machine> machines_;
  std::vector<double> places_;
  std::size_t end_ = 0;  // of the current block; comes down to the first row that fails
  ComputedColumn const* divides_ = nullptr;  // by zero, in the row at end_
};

}  // namespace

bool runOverBlocks(ComputedColumns& columns) {
  BlockRun run(columns);
  if (!run.compile()) {
    return false;
  }
  run.run();
  return true;
}
