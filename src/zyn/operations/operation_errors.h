#pragma once

#include <cstdint>
#include <memory>
#include <string>

class moxDataMatrix;
class moxDataMatrixColumn;

/// The names of the columns, in words for the details of a failure; of many only the first ones.
std::string columnsThere(moxDataMatrix const& matrix);

/// The first column of that name. Throws moxError "Coluna " + name + " não localizada." when the
/// matrix has none; the details tell those that it has.
std::shared_ptr<moxDataMatrixColumn> requiredColumn(moxDataMatrix& matrix, std::string const& name);

/// Refuses a result of so many rows with a moxError when that is more than the application allows
/// ([limits] rows), so that a product of large tables ends in a sentence and not in the end of
/// memory. Asked before the rows are made.
void refuseTooManyRows(std::uint64_t rows);

/// The same for the columns of a cross table ([limits] columns).
void refuseTooManyColumns(std::uint64_t columns);

/// The same for the cells of a cross table ([limits] cells), of which there may be far more than
/// there were rows to make it of.
void refuseTooManyCells(std::uint64_t rows, std::uint64_t columns);
