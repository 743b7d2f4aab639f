#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/database/select_shape.h"
#include "mox/core/database_connection.h"

namespace mox::core {

using FieldType = moxDatabaseConnection::FieldType;

/// The type that a column was declared with, like "varchar(20)" or "unsigned bigint"; nothing for a
/// word that says nothing.
std::optional<FieldType> declaredType(std::string_view declaration);

/// The declared type of a table's column; nothing when there is no such column or its declaration
/// is silent.
using ColumnTypes =
    std::function<std::optional<FieldType>(std::string const& table, std::string const& column)>;

/// What the text of a statement tells of a result column that was declared nowhere.
struct InferredType {
  std::optional<FieldType> type;  // nothing: the first row decides
  bool isArithmetic = false;      // without a first row it is a number

  FieldType withoutRows() const;
};

/// Answers for the result columns of one reading statement. SQLite tells no type for an expression,
/// but a column table that is made before the first row comes, or for no rows at all, needs one.
/// Never throws for any text; work is bounded, and what is not understood is left to the first row.
class ResultTypes {
 public:
  /// `fieldNames` are the names of all result columns, by which those behind a `*` are found.
  ResultTypes(std::string statement, std::vector<std::string> fieldNames, ColumnTypes columnTypes);

  ResultTypes(ResultTypes const&) = delete;
  ResultTypes& operator=(ResultTypes const&) = delete;

  /// `field` counts from 0 and must be one of the names.
  InferredType at(int field);

  /// What the statement calls the table that the field comes from; empty for an expression. `table`
  /// is the real name.
  std::string tableAlias(int field, std::string const& table) const;

 private:
  SelectItem const* itemOf(int field) const;

  std::string statement_;
  SqlTokens tokens_;
  std::vector<std::string> fieldNames_;
  ColumnTypes columnTypes_;
  SelectShape shape_;
  int work_ = 0;  // tokens looked at, by all calls together
};

}  // namespace mox::core
