#pragma once

#include <string>
#include <utility>

#include "mox/zyn/datasources/sql_data_source.h"
#include "zyn/datasources/sql_statement_texts.h"

/// The (table, column) that keeps a definition's rows to business units, for the loader. The column
/// is called by its name in the result where it has none in its table. Both are empty without a
/// unit column; throws moxError for a unit column without any name, which nothing could be kept to.
std::pair<std::string, std::string> unitColumnOf(moxSQLDataSource const& definition);

/// Makes an appended condition hold for the whole condition of a definition with a unit column: one
/// with an "or" of its own is put in parentheses. Others stay as they are.
void encloseCondition(moxSQLDataSource const& definition, SQLStatementTexts& texts);

/// Throws moxError when a condition that `joiningWord` appends to `query` would not keep every row
/// to the run's units. `joiningWord` is empty for "where". The definition has a unit column.
void requireRestrictable(moxSQLDataSource const& definition, std::string const& query,
                         SQLStatementTexts const& texts, std::string const& joiningWord);
