#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/host.h"
#include "cli/output/output_buffer.h"
#include "core/run/search_run.h"
#include "mox/zyn/matrix/data_matrix.h"

namespace mox::cli {

/// Something that a search can be narrowed by, in one form or several.
struct FilterEntry {
  std::string name;   // as it stands ahead of the "=" of --filter
  std::string label;  // for people
  std::string source;
  std::string type;                // int, double, text or date
  std::vector<std::string> forms;  // one, range, list
  bool required = false;
  std::optional<core::FilterChoices> choices;
};

/// What the search offers, each name once, with at most `mostChoices` values of each that refers to
/// some.
std::vector<FilterEntry> filterEntries(core::SearchRun const& run, std::size_t mostChoices);

/// A row for each, for people and for tables elsewhere.
std::shared_ptr<moxDataMatrix> filterMatrix(Host& host, std::vector<FilterEntry> const& entries);

/// An object for each, on a line of its own; with `asArray` in an array.
void writeFilterJson(OutputBuffer& out, std::vector<FilterEntry> const& entries, bool asArray);

}  // namespace mox::cli
