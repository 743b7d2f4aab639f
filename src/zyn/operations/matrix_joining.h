#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zyn/matrix/column_copy.h"
#include "zyn/operations/joined_rows.h"

/// A table to be joined.
struct JoinedSource {
  struct Column {
    std::string name;   // in the source
    std::string alias;  // in the result
  };

  /// Rows meet where the two compare equal.
  struct Condition {
    std::string sourceColumn;
    std::string resultColumn;
  };

  std::string name;  // for failures
  std::shared_ptr<moxDataMatrix> matrix;
  std::vector<Column> columns;
  std::vector<Condition> conditions;
};

/// Joins tables one after the other. One without conditions multiplies the rows so far; one with
/// conditions keeps of them what it meets, with a copy for each further meeting, behind all others.
/// Columns of the result are written by name, so that of several with one name the first has the
/// values, those of the last source that writes it.
///
/// Nothing is copied while rows are joined: a column of the result is a column of a source and the
/// row numbers to take from it, and is made once, at the end.
class MatrixJoining {
 public:
  /// The matrix is not empty. Throws moxError for a column that it lacks; conditions are looked at
  /// when the tables are joined.
  void addSource(JoinedSource source);

  /// Then nothing meets, and the result has no rows.
  bool hasSourceWithoutRows() const { return hasSourceWithoutRows_; }

  /// Once, behind the last source. Throws moxError for a column of a condition that is not there,
  /// for two that cannot be compared, and for a result of too many rows.
  std::shared_ptr<moxDataMatrix> process();

 private:
  /// Null for the rows as they stand in the source.
  using Rows = std::shared_ptr<RowOrder const>;

  /// A column of the result.
  struct ResultColumn {
    MatrixColumn made;  // without rows until the end
    MatrixColumn from;  // empty: all null
    Rows rows;
  };

  /// A source's column that is written to a column of the result.
  struct Writing {
    std::size_t target;
    MatrixColumn column;
    bool isForCopies;  // or do these keep what the row has that they are copies of
  };

  struct Condition {
    MatrixColumn column;
    std::size_t target;
  };

  struct Source {
    JoinedSource given;
    std::uint32_t rows;
    std::vector<Condition> conditions;
  };

  MatrixColumn own(MatrixColumn const& column, std::uint32_t rows);
  std::size_t targetNamed(std::string const& name) const;
  void resolveConditions(Source& source, moxDataMatrix const& result);
  std::vector<Writing> writingsOf(Source const& source);

  void join(Source const& source);
  void begin(Source const& source);
  void match(Source const& source);
  bool canCompareAll(Source const& source);
  bool changesOwnKeys(Source const& source, std::vector<Writing> const& writings) const;

  RowMatcher::Keys keysOf(std::vector<Condition> const& conditions) const;
  RowMatcher::Keys keysOnceWritten(Source const& source, std::vector<Writing> const& writings,
                                   JoinedRows const& joined) const;
  MatrixColumn cellsOf(ResultColumn const& column) const;

  void advance(JoinedRows joined, std::vector<Writing> const& writings);
  void follow(Rows const& before);
  void fill(ResultColumn& column) const;

  std::vector<Source> sources_;
  std::vector<ResultColumn> columns_;
  /// Copies of columns of foreign make, which may stand in several sources with fewer or more rows.
  std::map<std::pair<MatrixColumn, std::uint32_t>, MatrixColumn> own_;
  std::uint32_t rows_ = 0;  // so far
  bool begun_ = false;      // some row has come, though it may be gone again
  bool hasSourceWithoutRows_ = false;
};
