#include "core/database/statement_splitter.h"
#include "fuzz/promise.h"
#include "fuzz/targets.h"

namespace mox::fuzz {

namespace {

/// A statement that was split off is one statement. Only at a text's end do two minus signs open a
/// comment with nothing behind them.
void requireSingle(std::string const& statement) {
  mox::core::StatementScript const again = mox::core::splitScript(statement);
  require(again.before.empty() && again.after.empty(), "a statement splits no further");
  require(again.main == statement || statement.ends_with("--"), "and is the same again");
}

void requireOutside(std::vector<std::string> const& statements) {
  for (std::string const& statement : statements) {
    requireSingle(statement);
    require(mox::core::countMarks(statement) == 0, "only the main statement has marks");
  }
}

}  // namespace

void splitStatements(std::string_view bytes) {
  mox::core::StatementScript script;
  if (!accepted([&] { script = mox::core::splitScript(bytes); })) {
    return;
  }
  requireSingle(script.main);
  requireOutside(script.before);
  requireOutside(script.after);
  require(mox::core::countMarks(script.main) == mox::core::countMarks(bytes), "no mark is lost");
  for (std::string const& statement : script.before) {
    require(!mox::core::hasRows(statement), "the main statement is the first with rows");
  }
  require(script.after.empty() || mox::core::hasRows(script.main),
          "statements stand behind one with rows alone");
}

}  // namespace mox::fuzz
