#pragma once

#include <string>

#include "zyn/sql/data_matrix_sql_in_filters.h"

/// The loader's own restriction of a statement to business units. Nobody asks the registry for it.
class FiltroUnidadeNull final : public DataMatrixSQLIntegerInFilter {
 public:
  /// With `unitMayBeNull`, rows that belong to no unit pass as well.
  FiltroUnidadeNull(ColumnReference const& unitColumn, bool unitMayBeNull);

  /// No units let nothing pass, not even rows that belong to none.
  std::string getSql() const override;

 private:
  bool const unitMayBeNull_;
};
