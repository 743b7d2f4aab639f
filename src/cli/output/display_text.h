#pragma once

#include <string>
#include <string_view>

namespace mox::cli {

/// Texts as a terminal shows them: every character takes 0, 1 or 2 places, and nothing that a
/// database holds may steer the terminal. Control characters become the visible pictures made for
/// them, other invisible or unassigned ones and bytes that are no UTF-8 become U+FFFD.

/// The limit that cuts nothing.
inline constexpr int kNoWidthLimit = 1 << 30;

/// Places that displayText(raw, kNoWidthLimit) takes, but not more than `limit`, at which counting
/// stops.
int displayWidth(std::string_view raw, int limit = kNoWidthLimit);

/// A harmless form of `raw` of at most `maxWidth` places (at least 1); what is too long ends in an
/// ellipsis. Appends to `text` and gives the places taken.
int appendDisplayText(std::string& text, std::string_view raw, int maxWidth);

/// A text in one line without control characters: runs of line ends and tabs become one blank.
std::string oneLineText(std::string_view raw);

}  // namespace mox::cli
