#include "zyn/datasources/filter_data_source_spec.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"

namespace {

using Filter = moxDataMatrixSQLIntegerInFilter;

/// A null is no id: what is read in its place would let the rows of id 0 pass.
void pushRows(Filter& filter, std::string const& sql) {
  auto const statement = moxApp->databaseConnection().prepare(sql);
  statement->execute();
  while (statement->fetch()) {
    if (!statement->isNull(0)) {
      filter.pushVal(statement->getInt(0));
    }
  }
}

}  // namespace

std::shared_ptr<moxDataMatrixSQLFilter> FilterDataSourceSpec::getDataMatrixFilter() const {
  if (tipo_ != kValor && tipo_ != kSql) {
    return {};
  }
  auto const filter = moxApp->get<Filter>("moxDataMatrixSQLIntegerInFilter");
  filter->setColumnName(columnOrigin_.tableName, columnOrigin_.columnNameOrigin);
  if (tipo_ == kSql) {
    pushRows(*filter, sql_);
    return filter;
  }
  for (int const id : ids_) {
    filter->pushVal(id);
  }
  return filter;
}
