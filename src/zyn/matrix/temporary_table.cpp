#include "zyn/matrix/temporary_table.h"

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "mox/core/application.h"
#include "mox/core/blob.h"
#include "mox/core/database_connection.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "zyn/matrix/data_matrix_columns.h"
#include "zyn/sql/identifier.h"

namespace {

using Statement = moxDatabaseConnection::PreparedStatement;

char const* typeWordOf(moxDataMatrixTypes::Types type) {
  switch (type) {
    case moxDataMatrixTypes::Int:
      return " int ";
    case moxDataMatrixTypes::Double:
      return " double ";
    case moxDataMatrixTypes::Text:
      return " varchar(200) ";
    case moxDataMatrixTypes::Date:
      return " datetime ";
    case moxDataMatrixTypes::Blob:
      return "";  // the column then holds whatever kind of value comes
  }
  throw std::logic_error("no type of the database for this kind of column");
}

/// The lists that the two statements are made of.
struct ColumnLists {
  explicit ColumnLists(moxDataMatrix const& matrix) {
    for (unsigned int place = 0; place < matrix.columnCount(); ++place) {
      auto const column = matrix.columnAt(place);
      std::string const comma = place == 0 ? "" : ",";
      std::string const name = identifier(column->getName());
      definitions += comma + name + typeWordOf(column->getType());
      names += comma + name;
      marks += comma + "?";
    }
  }

  std::string definitions;
  std::string names;
  std::string marks;
};

void bindCell(Statement& statement, int position, int value) {
  statement.bindInt(position, value);
}
void bindCell(Statement& statement, int position, double value) {
  // A database knows no NaN: SQLite would store a null, MariaDB refuse the row.
  std::isnan(value) ? statement.bindNull(position) : statement.bindDouble(position, value);
}
void bindCell(Statement& statement, int position, std::string_view value) {
  statement.bindString(position, value);
}
void bindCell(Statement& statement, int position, TextRef const& value) {
  statement.bindString(position, value.view());
}
void bindCell(Statement& statement, int position, datetime_t const& value) {
  statement.bindDateTime(position, value);
}
void bindCell(Statement& statement, int position, std::shared_ptr<moxReadBlob> const& value) {
  value ? statement.bindBlob(position, *value) : statement.bindNull(position);
}

/// Binds the cells of one column, row after row: what kind of column it is, is asked once.
class CellBinder {
 public:
  virtual ~CellBinder() = default;
  virtual void bind(Statement& statement, int position, unsigned int row) const = 0;
};

template <class T>
class OwnCellBinder final : public CellBinder {
 public:
  explicit OwnCellBinder(ColumnStorage<T> const& storage) : storage_(storage) {}

  void bind(Statement& statement, int position, unsigned int row) const override {
    if (storage_.nulls.test(row)) {
      statement.bindNull(position);
    } else {
      bindCell(statement, position, storage_.values.cells()[row]);
    }
  }

 private:
  ColumnStorage<T> const& storage_;
};

template <class T>
class ForeignCellBinder final : public CellBinder {
 public:
  explicit ForeignCellBinder(moxDataMatrixColumn const& column)
      : column_(dynamic_cast<moxDataMatrixTypedColumn<T> const&>(column)) {}

  void bind(Statement& statement, int position, unsigned int row) const override {
    if (column_.isNull(row)) {
      statement.bindNull(position);
    } else {
      bindCell(statement, position, column_.getValue(row));
    }
  }

 private:
  moxDataMatrixTypedColumn<T> const& column_;
};

std::unique_ptr<CellBinder> ownBinderFor(moxDataMatrixColumn const& column) {
  std::unique_ptr<CellBinder> binder;
  withStorage(column, [&]<class T>(ColumnStorage<T> const& storage) {
    binder = std::make_unique<OwnCellBinder<T>>(storage);
  });
  return binder;
}

std::unique_ptr<CellBinder> foreignBinderFor(moxDataMatrixColumn const& column) {
  switch (column.getType()) {
    case moxDataMatrixTypes::Int:
      return std::make_unique<ForeignCellBinder<int>>(column);
    case moxDataMatrixTypes::Double:
      return std::make_unique<ForeignCellBinder<double>>(column);
    case moxDataMatrixTypes::Text:
      return std::make_unique<ForeignCellBinder<std::string>>(column);
    case moxDataMatrixTypes::Date:
      return std::make_unique<ForeignCellBinder<datetime_t>>(column);
    case moxDataMatrixTypes::Blob:
      return std::make_unique<ForeignCellBinder<std::shared_ptr<moxReadBlob>>>(column);
  }
  throw std::logic_error("no reader for this kind of column");
}

std::vector<std::unique_ptr<CellBinder>> bindersFor(moxDataMatrix const& matrix) {
  std::vector<std::unique_ptr<CellBinder>> binders;
  for (unsigned int place = 0; place < matrix.columnCount(); ++place) {
    auto const column = matrix.columnAt(place);
    auto own = ownBinderFor(*column);
    binders.push_back(own ? std::move(own) : foreignBinderFor(*column));
  }
  return binders;
}

void insertRows(moxDataMatrix const& matrix, Statement& statement) {
  auto const binders = bindersFor(matrix);
  unsigned int const rows = matrix.rowCount();
  for (unsigned int row = 0; row < rows; ++row) {
    int position = 0;
    for (auto const& binder : binders) {
      binder->bind(statement, position++, row);
    }
    statement.execute();
  }
}

}  // namespace

void dumpToTemporaryTable(moxDataMatrix const& matrix, std::string const& tableName) {
  if (matrix.columnCount() == 0) {
    return;
  }
  auto& connection = moxApp->databaseConnection();
  std::string const table = identifier(tableName);
  ColumnLists const lists(matrix);
  connection.execute("create or replace temporary table " + table + " (" + lists.definitions + ")");
  auto const statement = connection.prepare("insert into " + table + " (" + lists.names +
                                            ") values (" + lists.marks + ")");
  insertRows(matrix, *statement);
}

void dropTemporaryTable(std::string const& tableName) noexcept {
  try {
    moxApp->databaseConnection().execute("drop temporary table if exists " + identifier(tableName));
  } catch (...) {
    return;  // a lost connection has lost its tables as well
  }
}
