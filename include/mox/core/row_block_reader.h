#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "mox/core/database_connection.h"

/// Room for the values of one field in a block of rows. The caller owns the arrays, each with a
/// place for every row of the block; only the one that `readAs` names is written.
struct moxFieldBlock {
  moxDatabaseConnection::FieldType readAs = moxDatabaseConnection::FieldType::kText;
  bool wanted = true;                 // a field that is not wanted is passed over
  std::int32_t* ints = nullptr;       // kInt
  double* doubles = nullptr;          // kDouble
  datetime_t* dates = nullptr;        // kDate
  std::string_view* texts = nullptr;  // kText and kBlob: bytes stay valid until the next fetchBlock
  std::uint8_t* nulls = nullptr;      // 1 for a null, whose value is then left as it was
};

/// Second face of a prepared statement that can fill many rows in one call. It exists for speed
/// only: whoever reads rows asks a statement for it with a dynamic cast and, where it is missing,
/// reads cell by cell with the same values as the result. The thread rule is that of the statement.
class moxRowBlockReader {
 public:
  virtual ~moxRowBlockReader() = default;

  /// Reads up to `capacity` further rows, `fields` having one entry a field of the result. Gives
  /// how many were read; fewer than `capacity` only at the end of the result. Throws like
  /// PreparedStatement::fetch, and is not mixed with it in one execution.
  virtual int fetchBlock(std::vector<moxFieldBlock>& fields, int capacity) = 0;
};
