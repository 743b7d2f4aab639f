#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/run/filter_argument.h"
#include "core/run/group_members.h"

class VELMORApplication;
class moxSessionService;

namespace mox::core {

/// Values that a user can choose from for one filter.
struct FilterChoices {
  struct Choice {
    std::string value;  // as it is written in a filter
    std::string label;  // what the user knows it by; may be the value itself
  };

  std::string source;  // the definition that the values were read from
  std::vector<Choice> choices;
  std::size_t total = 0;  // of different values, of which `choices` holds the first
  std::string problem;    // why there are no choices; empty
};

/// Where the values come from, and for which units they may be read.
struct FilterChoicesRequest {
  SourceList sources;  // of the run that the filter is offered in
  std::vector<int> units;
  std::size_t most = 0;  // choices to give
};

/// The values of the column that the definition relates the filter's column to, read now from the
/// source of that column on the safe road, in their order there, each once and nulls left out; the
/// label is that source's description column. Nothing when the filter is bound to no column, or the
/// definition relates the column to nothing. A source that cannot be run is told as a problem.
std::optional<FilterChoices> readFilterChoices(VELMORApplication& application,
                                               moxSessionService& sessions,
                                               FilterOffer const& offer,
                                               FilterChoicesRequest const& request);

}  // namespace mox::core
