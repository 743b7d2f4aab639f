#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/run/filter_value.h"

class VELMORApplication;
class moxDataMatrixSQLFilter;
class moxFilterSpecification;

namespace mox::core {

/// Something that a user can be asked for in a run.
struct FilterOffer {
  std::string source;  // what is narrowed, by its name in the run; "group->member" in a group
  std::shared_ptr<moxFilterSpecification const> specification;  // never empty
};

/// A filter that a user gave, understood.
struct FilterArgument {
  FilterOffer offer;
  FilterValue value;
  std::string text;          // as he wrote it; empty when it came from a form
  bool keptToUnits = false;  // narrowed to the units of the run, whatever he wrote
};

/// Reads "COLUMN=VALUE". COLUMN is the column or token that a specification is on; or the name of
/// that column in the result; either behind "TABLE."; a token also without its braces; or, when no
/// column is called so, the label. Each of them may stand behind "SOURCE:", the source that is
/// narrowed, by its place in groups ("group->member") or its own name. Of specifications on one
/// column the one is taken whose form the value has. Throws FilterArgumentError, which for an
/// unknown COLUMN lists what is offered.
FilterArgument readFilterArgument(std::string const& text, std::vector<FilterOffer> const& offers);

/// Reads all that a user gave. Also refuses one that is given twice.
std::vector<FilterArgument> readFilterArguments(std::vector<std::string> const& texts,
                                                std::vector<FilterOffer> const& offers);

/// Throws FilterArgumentError that names every required filter for which there is no argument.
void demandRequiredFilters(std::vector<FilterArgument> const& arguments,
                           std::vector<FilterOffer> const& offers);

/// How a filter is called in lists of what is offered: its token without braces, its column by the
/// name in the result where it is bound to one, or its label where the column is an expression.
std::string filterLabel(moxFilterSpecification const& specification);

/// The condition for the module, made by the specification and filled with the values. What is kept
/// to units is a list of units, whatever the specification makes. Throws moxError when its class is
/// not there, or takes no such values.
std::shared_ptr<moxDataMatrixSQLFilter> makeSqlFilter(VELMORApplication& application,
                                                      FilterArgument const& argument);

}  // namespace mox::core
