#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "mox/core/database_connection.h"
#include "mox/core/row_block_reader.h"

namespace mox::core {

/// Told the rows read so far in the running execution, about every 1024 rows, on the thread that
/// reads them.
using RowObserver = std::function<void(std::int64_t rowsSoFar)>;

/// What the framework asks of every statement of a line, beyond what its users see.
class LineStatement : public moxDatabaseConnection::PreparedStatement, public moxRowBlockReader {
 public:
  /// An empty function ends the reports.
  virtual void setRowObserver(RowObserver observer) = 0;

  /// Marks from this position on are the framework's own: whoever binds one of them later is
  /// refused.
  void sealMarks(int firstSealed) { firstSealed_ = firstSealed; }

 protected:
  /// Throws moxError for a position outside 0 .. markCount-1 or a sealed one.
  void requirePosition(int position, int markCount) const;

 private:
  int firstSealed_ = -1;  // -1: none is sealed
};

/// The statement as what every statement of a line is. Throws std::logic_error for a foreign one.
std::shared_ptr<LineStatement> asLineStatement(
    std::shared_ptr<moxDatabaseConnection::PreparedStatement> const& statement);

}  // namespace mox::core
