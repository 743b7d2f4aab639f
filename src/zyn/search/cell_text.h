#pragma once

#include <memory>
#include <string>
#include <variant>

#include "mox/core/datetime.h"
#include "mox/zyn/matrix/data_matrix_column.h"

class moxDateAsString;
class moxDecimalAsString;
class moxGenericFormatter;
class moxIntegralAsString;
class moxTextAsString;

/// The texts of a column's cells by one formatter. How a value gets from this kind of column to
/// this class of formatter is found out once, so that a cell costs its formatting and little else.
/// Keeps both alive; belongs to one thread.
class CellText {
 public:
  /// An empty formatter stands for a new one that suits the kind of values. For blobs there is
  /// none.
  CellText(std::shared_ptr<moxDataMatrixColumn> column,
           std::shared_ptr<moxGenericFormatter const> formatter);

  /// What the formatter gives for the cell; empty for a row outside.
  std::string at(unsigned int row) const;

 private:
  /// Any column and any formatter: a cursor is moved to the row.
  struct ByCursor {
    std::shared_ptr<moxIterator> cursor;
    std::shared_ptr<moxIterator const> cell;  // the same, as formatters take it
  };

  /// The value goes to the formatter as it is.
  template <class T, class Formatter>
  struct Direct {
    moxDataMatrixTypedColumn<T> const* column;
    Formatter const* formatter;
  };

  /// A text around which the formatter puts nothing.
  struct Bare {
    moxDataMatrixTypedColumn<std::string> const* column;
  };

  using Road =
      std::variant<ByCursor, Direct<int, moxIntegralAsString>, Direct<double, moxDecimalAsString>,
                   Direct<datetime_t, moxDateAsString>, Direct<std::string, moxTextAsString>, Bare>;

  template <class T, class Formatter>
  bool takeDirect(char const* className);
  void takeRoad();

  std::string text(ByCursor const& road, unsigned int row) const;
  template <class T, class Formatter>
  std::string text(Direct<T, Formatter> const& road, unsigned int row) const;
  std::string text(Bare const& road, unsigned int row) const;

  std::shared_ptr<moxDataMatrixColumn> column_;
  std::shared_ptr<moxGenericFormatter const> formatter_;  // empty: every cell is
  Road road_;
};
