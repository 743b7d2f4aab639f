#include "core/database/line_statement.h"

#include <stdexcept>
#include <string>

#include "core/database/database_error.h"

namespace mox::core {

void LineStatement::requirePosition(int position, int markCount) const {
  int const open = firstSealed_ < 0 ? markCount : firstSealed_;
  if (position < 0 || position >= open) {
    throw DatabaseError("A value was given for position " + std::to_string(position) +
                            ", but the statement has " + std::to_string(open) +
                            " marks, counted from 0",
                        "");
  }
}

std::shared_ptr<LineStatement> asLineStatement(
    std::shared_ptr<moxDatabaseConnection::PreparedStatement> const& statement) {
  auto line = std::dynamic_pointer_cast<LineStatement>(statement);
  if (!line) {
    throw std::logic_error("a statement of a line is not derived from LineStatement");
  }
  return line;
}

}  // namespace mox::core
