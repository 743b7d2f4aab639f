#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "mox/core/date.h"
#include "mox/core/datetime.h"

class moxReadBlob;

/// The application's database as a thread sees it: statements and temporary tables belong to the
/// calling thread, whichever thread asked for the connection. All failures are moxErrors with the
/// server's message and, where it has one, its code. Statement texts are written in MariaDB's
/// dialect, whatever the database.
class moxDatabaseConnection {
 public:
  /// What kind of value a result column holds. The numbers are part of the interface.
  enum class FieldType { kText = 1, kInt = 2, kBlob = 3, kDouble = 4, kDate = 5 };

  /// Description of a result column. Names other than the first are empty for an expression.
  struct FieldInfo {
    std::string name;        // in the result: the alias where there is one
    std::string columnName;  // in its table
    std::string tableAlias;  // as the statement calls the table
    std::string tableName;   // the real table
    FieldType type = FieldType::kText;
  };

  class PreparedStatement;

  virtual ~moxDatabaseConnection() = default;

  /// Prepares a statement, its values written as `?`. Statements that stand before or after the one
  /// with the rows, parted by ";", are run ahead of it and after its last row; marks belong to the
  /// one with the rows (to the last one when none has any). A not empty `extraWhere` is appended as
  /// a condition behind `whereWord`. Throws moxError for a text that the database refuses.
  virtual std::shared_ptr<PreparedStatement> prepare(std::string const& sql,
                                                     std::string const& extraWhere = "",
                                                     std::string const& whereWord = "where") = 0;

  /// Prepares a select that is restricted to the current user's head office: `joiningWord`, then
  /// `alias.column` = head office, is appended, then " order by " and `order` when that is not
  /// empty.
  virtual std::shared_ptr<PreparedStatement> prepareForUnit(std::string const& sql,
                                                            std::string const& order,
                                                            std::string const& alias,
                                                            std::string const& column,
                                                            std::string const& joiningWord) = 0;

  /// Prepares and executes a statement that has no values and no rows to read.
  virtual void execute(std::string const& sql) = 0;
};

/// A statement that the database knows, with its values and the row it stands on. Belongs to the
/// thread that prepared it. Positions of values and indexes of fields count from 0; one beyond the
/// last is a moxError when bound, and a std::out_of_range when read.
class moxDatabaseConnection::PreparedStatement {
 public:
  virtual ~PreparedStatement() = default;

  /// Values are copied. A value that was never bound is a null. Binding an empty date binds a null.
  virtual void bindInt(int position, int value) = 0;
  virtual void bindDouble(int position, double value) = 0;
  virtual void bindString(int position, std::string_view value) = 0;
  virtual void bindDate(int position, date_t const& value) = 0;
  virtual void bindNull(int position) = 0;

  /// Runs the statement with the values bound; a second call runs it anew and keeps them.
  virtual void execute() = 0;

  /// Moves to the next row, at first to the first one; false after the last, and at once for a
  /// statement without rows. A result that breaks off throws: false always means that every row was
  /// seen. Not to be called before execute, or again after it threw or gave false.
  virtual bool fetch() = 0;

  /// Result columns; 0 for a statement without rows. Known once the statement was executed.
  virtual int fieldCount() const = 0;

  /// The reference lives until the next execute.
  virtual FieldInfo const& field(int index) const = 0;

  /// Rows of the result when the database knows them before they are read, otherwise 0 or -1.
  virtual std::int64_t rowCount() const = 0;

  /// Values of the current row. A null reads as 0, empty or false. Numbers and texts are converted
  /// into each other as the database does; integers beyond 32 bits wrap, a text that is no number
  /// reads as 0, one that is no date as the empty date.
  virtual bool isNull(int field) const = 0;
  virtual int getInt(int field) const = 0;
  virtual double getDouble(int field) const = 0;
  virtual std::string_view getString(int field) const = 0;  // valid until the next fetch
  virtual bool getBool(int field) const = 0;
  virtual date_t getDate(int field) const = 0;
  virtual datetime_t getDateTime(int field) const = 0;
  virtual std::shared_ptr<moxReadBlob> getBlob(int field) const = 0;  // a copy; never empty

  // Values of further kinds that a host's own tools bind.
  virtual void bindDateTime(int position, datetime_t const& value) = 0;
  virtual void bindBlob(int position, moxReadBlob const& value) = 0;
};
