#include "cli/output/csv_fields.h"

#include <algorithm>
#include <string>

#include "cli/output/display_text.h"

namespace mox::cli {

namespace {

/// Compared one by one: most fields are a few characters long, and a search for several at once
/// costs a call for each of them.
bool needsQuotes(std::string_view text) {
  return text.empty() || std::any_of(text.begin(), text.end(), [](char character) {
           return character == ',' || character == '"' || character == '\n' || character == '\r';
         });
}

void writeQuoted(OutputBuffer& out, std::string_view text) {
  out.append('"');
  for (std::size_t quote = text.find('"'); quote != text.npos; quote = text.find('"')) {
    out.append(text.substr(0, quote + 1));
    out.append('"');
    text.remove_prefix(quote + 1);
  }
  out.append(text);
  out.append('"');
}

void writeField(OutputBuffer& out, std::string_view text) {
  if (needsQuotes(text)) {
    writeQuoted(out, text);
  } else {
    out.append(text);
  }
}

}  // namespace

void writeCsvField(OutputBuffer& out, std::string_view text, CsvOptions const& options) {
  if (!options.forTerminal) {
    writeField(out, text);
    return;
  }
  std::string harmless;
  appendDisplayText(harmless, text, kNoWidthLimit);
  writeField(out, harmless);
}

}  // namespace mox::cli
