#include "zyn/search/filter_names.h"

#include "mox/zyn/sql/data_matrix_sql_filter.h"

// Constant filters are renamed by runs, and so they are here; those that were not are not touched.
FilterNames::FilterNames(Filters const& filters) {
  names_.reserve(filters.size());
  for (auto const& filter : filters) {
    names_.push_back({std::const_pointer_cast<moxDataMatrixSQLFilter>(filter),
                      filter->getTableName(), filter->getColumnName()});
  }
}

FilterNames::~FilterNames() {
  for (auto const& [filter, table, column] : names_) {
    if (filter->getTableName() != table || filter->getColumnName() != column) {
      filter->setColumnName(table, column);
    }
  }
}
