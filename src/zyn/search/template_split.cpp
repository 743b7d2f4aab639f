#include "zyn/search/template_split.h"

SplitTemplate splitTemplate(std::string const& text) {
  constexpr char const* kMarks[] = {"{{", "}}"};
  constexpr std::size_t kMarkLength = 2;
  SplitTemplate split;
  std::size_t from = 0;
  bool inPlaceholder = false;
  for (auto at = text.find(kMarks[0]); at != std::string::npos;
       at = text.find(kMarks[inPlaceholder ? 1 : 0], from)) {
    if (at != from && inPlaceholder) {
      split.text += '?';
      split.columns.push_back(text.substr(from, at - from));
    } else if (at != from) {
      split.text.append(text, from, at - from);
    }
    from = at + kMarkLength;
    inPlaceholder = !inPlaceholder;
  }
  return split;
}
