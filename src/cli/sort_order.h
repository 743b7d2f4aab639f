#pragma once

#include <string>
#include <vector>

namespace mox::cli {

struct SortColumn {
  std::string name;
  bool descending = false;

  bool operator==(SortColumn const&) const = default;
};

/// Reads "COLUMN[:desc],..." (":asc" may be said too). A name in double quotes may hold commas and
/// colons, an inner quote being doubled. Throws UsageError for an empty name and a quote that is
/// not closed.
std::vector<SortColumn> parseSortOrder(std::string const& text);

}  // namespace mox::cli
