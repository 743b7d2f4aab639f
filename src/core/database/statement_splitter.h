#pragma once

#include <string_view>

#include "core/database/physical_connection.h"

namespace mox::core {

/// Takes a text apart at its semicolons outside quotes and comments. Pieces without a token vanish,
/// and comments around a piece with them. The main statement is the first one that has rows, or the
/// last one when none has; it is empty for a text without any statement. Throws moxError when a
/// statement other than the main one has marks, since values could not reach them, and for a
/// comment that some servers run ("/*!", "/*M!"), since what it holds would pass unseen.
StatementScript splitScript(std::string_view text);

/// Number of `?` outside quotes and comments.
int countMarks(std::string_view statement);

/// Whether a single statement answers with rows, judged by its words: a reading one, or a changing
/// one with "returning".
bool hasRows(std::string_view statement);

}  // namespace mox::core
