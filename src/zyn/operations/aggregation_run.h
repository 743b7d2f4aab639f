#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mox/zyn/matrix/aggregation_function.h"
#include "zyn/matrix/column_copy.h"
#include "zyn/matrix/key_groups.h"
#include "zyn/operations/grouped_aggregation.h"
#include "zyn/operations/number_totals.h"

/// One aggregation, with functions of its own: those of a definition are read by several threads,
/// while a run has to remember where it stands.
class AggregationRun {
 public:
  using Functions = std::vector<std::shared_ptr<moxAggregationFunction>>;

  /// The matrix must outlive the run. Throws what the registry throws for a function that it made
  /// before and does not know any more.
  AggregationRun(moxDataMatrix const& matrix, std::vector<std::string> const& indexes,
                 Functions const& functions);

  /// A new matrix, as moxDataMatrixAggregator::aggregate tells; asked for once.
  std::shared_ptr<moxDataMatrix> result(bool countColumn);

 private:
  struct Step {
    std::shared_ptr<moxAggregationFunction> function;
    GroupedAggregation* grouped = nullptr;  // the function, when it is one of the module's own
    MatrixColumn source;                    // of those; empty when the matrix lacks it
    std::optional<NumberTotal> total;
    std::vector<std::shared_ptr<moxIterator>> targets;
  };

  Step stepFor(std::shared_ptr<moxAggregationFunction> const& function) const;
  void group(bool countColumn);
  bool needsGroupOfRow() const;
  void emptyResult(moxDataMatrix& made);
  void addFunctionColumns(moxDataMatrix& made, Step& step, std::uint32_t groups);
  bool computeAtOnce(Step const& step) const;
  MatrixColumn rowCounts() const;
  void computeRowByRow(std::vector<Step const*> const& steps) const;

  moxDataMatrix const& matrix_;
  std::uint32_t rows_;
  std::vector<MatrixColumn> keys_;
  std::vector<Step> steps_;
  NumberTotals totals_;
  KeyGroups groups_;  // of each row only where some step asks for it
};
