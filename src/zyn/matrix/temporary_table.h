#pragma once

#include <string>

class moxDataMatrix;

/// Writes the matrix into a temporary table of the application's database, which replaces one of
/// that name: a column of the table for each column, in order, and rowCount() rows, nulls and NaN
/// as nulls. The table belongs to the calling thread's connection. Names that cannot stand bare are
/// quoted.
///
/// A matrix without columns writes nothing, as no table is without columns. Throws the connection's
/// moxError for what the database refuses, such as two columns of one name, or a text too long for
/// "varchar(200)"; the table may then be there and hold the rows before the one that failed.
void dumpToTemporaryTable(moxDataMatrix const& matrix, std::string const& tableName);

/// Takes the table of that name off the calling thread's connection; nothing without one. What the
/// database refuses is not told.
void dropTemporaryTable(std::string const& tableName) noexcept;
