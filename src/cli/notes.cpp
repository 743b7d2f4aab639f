#include "cli/notes.h"

#include <cstdio>

#include "cli/output/display_text.h"

namespace mox::cli {

void Notes::tell() const {
  for (auto const& note : notes_) {
    std::string const line = "zyn: note: " + oneLineText(note) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
  }
}

}  // namespace mox::cli
