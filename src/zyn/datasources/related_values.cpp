#include "zyn/datasources/related_values.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/sql/data_matrix_sql_in_filters.h"
#include "zyn/datasources/missing_data_filter.h"

namespace {

template <class InFilter, class Value>
std::shared_ptr<moxDataMatrixSQLFilter> amongValues(char const* registeredName, moxIterator& cursor,
                                                    std::string const& columnName) {
  auto const filter = moxApp->get<InFilter>(registeredName);
  filter->setColumnName({}, columnName);
  auto const& typedCursor = dynamic_cast<moxIteratorBase<Value> const&>(cursor);
  do {
    if (!cursor.isNull()) {
      filter->pushVal(typedCursor.get());
    }
  } while (cursor.next());
  return filter;
}

}  // namespace

std::shared_ptr<moxDataMatrixSQLFilter> filterByValues(moxDataMatrixColumn& values,
                                                       std::string const& columnName) {
  auto const cursor = values.begin();
  if (cursor->atEnd()) {
    return std::make_shared<MissingDataFilter>();
  }
  switch (values.getType()) {
    case moxDataMatrixTypes::Int:
      return amongValues<moxDataMatrixSQLIntegerInFilter, int>("moxDataMatrixSQLIntegerInFilter",
                                                               *cursor, columnName);
    case moxDataMatrixTypes::Double:
      return amongValues<moxDataMatrixSQLDoubleInFilter, double>("moxDataMatrixSQLDoubleInFilter",
                                                                 *cursor, columnName);
    case moxDataMatrixTypes::Text:
      return amongValues<moxDataMatrixSQLTextInFilter, std::string>("moxDataMatrixSQLTextInFilter",
                                                                    *cursor, columnName);
    case moxDataMatrixTypes::Date:
    case moxDataMatrixTypes::Blob:
      break;
  }
  return {};
}
