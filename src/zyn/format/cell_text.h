#pragma once

#include <memory>
#include <string>
#include <variant>

#include "mox/zyn/matrix/data_matrix_column.h"
#include "zyn/format/date_formatter.h"
#include "zyn/format/decimal_formatter.h"
#include "zyn/format/integral_formatter.h"
#include "zyn/matrix/column_storage.h"

/// The texts of a column's cells by one formatter. How a value gets from this column to this class
/// of formatter is found out once, so that a cell costs its formatting and little else. Keeps both
/// alive; belongs to one thread. The formatter's settings must not change meanwhile.
class CellText {
 public:
  /// An empty formatter stands for a new one that suits the kind of values. For blobs there is
  /// none.
  CellText(std::shared_ptr<moxDataMatrixColumn> column,
           std::shared_ptr<moxGenericFormatter const> formatter);

  /// What the formatter gives for the cell; nothing for a row outside.
  void appendTo(std::string& out, unsigned int row) const;

  std::string at(unsigned int row) const {
    std::string text;
    appendTo(text, row);
    return text;
  }

  std::shared_ptr<moxDataMatrixColumn> const& column() const { return column_; }

  /// Empty where all cells are.
  std::shared_ptr<moxGenericFormatter const> const& formatter() const { return formatter_; }

 private:
  /// Any column and any formatter: a cursor is moved to the row.
  struct ByCursor {
    std::shared_ptr<moxIterator> cursor;
    std::shared_ptr<moxIterator const> cell;  // the same, as formatters take it
  };

  /// A value of the module's own column goes to the module's own formatter as it is.
  template <class T, class Formatter>
  struct Direct {
    ColumnStorage<T> const* cells;
    Formatter const* formatter;
  };

  /// Texts between what the plain text formatter puts around them.
  struct Bytes {
    ColumnStorage<std::string> const* cells;
    std::string prefix;
    std::string suffix;
  };

  using Road =
      std::variant<ByCursor, Direct<int, IntegralFormatter>, Direct<double, DecimalFormatter>,
                   Direct<datetime_t, DateFormatter>, Bytes>;

  template <class T, class Formatter>
  bool takeDirect();
  bool takeBytes();
  void takeRoad();

  void append(std::string& out, ByCursor const& road, unsigned int row) const;
  template <class T, class Formatter>
  void append(std::string& out, Direct<T, Formatter> const& road, unsigned int row) const;
  void append(std::string& out, Bytes const& road, unsigned int row) const;

  std::shared_ptr<moxDataMatrixColumn> column_;
  std::shared_ptr<moxGenericFormatter const> formatter_;  // empty: so is every cell
  Road road_;
};
