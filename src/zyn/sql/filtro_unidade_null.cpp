#include "zyn/sql/filtro_unidade_null.h"

FiltroUnidadeNull::FiltroUnidadeNull(ColumnReference const& unitColumn, bool unitMayBeNull)
    : unitMayBeNull_(unitMayBeNull) {
  setColumnName(unitColumn.table, unitColumn.column);
}

std::string FiltroUnidadeNull::getSql() const {
  if (values_.empty()) {
    return "1=0";
  }
  auto const column = qualifiedName(tested());
  auto sql = " ( " + column + " in (?";
  for (std::size_t i = 1; i < values_.size(); ++i) {
    sql += ",?";
  }
  sql += ") ";
  if (unitMayBeNull_) {
    sql += " or " + column + " is null ";
  }
  return sql + " ) ";
}
