#include "core/run/search_run.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "core/run/chain.h"
#include "mox/core/error_with_details.h"
#include "mox/core/session.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/search/search_run_control.h"

namespace mox::core {

namespace {

// The list of the units themselves is for the user to choose from, and so is of all of his.
constexpr char const* kSearchOfUnits = "moxPesqUnidades";

moxSearchRunControl& controlOf(moxSearchRunner& runner) {
  auto* const control = dynamic_cast<moxSearchRunControl*>(&runner);
  if (control == nullptr) {
    throw moxDefaultErrorImpl<moxError>(
        "the module that is loaded runs searches for screens of its own alone");
  }
  return *control;
}

/// What a chain lacks in a search, and what its author can do.
std::vector<std::string> inputsLeftOut(moxDataSource const& source) {
  auto const inputs = inputNamesOf(source);
  if (inputs.empty()) {
    return {};
  }
  return {
      fmt::format("a search runs its source alone, and not those that it reads ({}): a group "
                  "with all of them as members can be searched",
                  fmt::join(inputs, ", "))};
}

[[noreturn]] void refuseUnknownColumn(moxDataMatrix const& matrix, std::string const& name) {
  std::vector<std::string> names;
  for (unsigned int i = 0; i < matrix.columnCount(); ++i) {
    names.push_back(matrix.columnAt(i)->getName());
  }
  throw moxDefaultErrorImpl<moxError>(fmt::format("there is no column {} to sort by; there are: {}",
                                                  quotedForMessage(name), fmt::join(names, ", ")));
}

}  // namespace

SearchRun::SearchRun(VELMORApplication& application, moxSessionService& sessions,
                     std::string const& name)
    : application_(application),
      sessions_(sessions),
      run_(application, sessions, name, findSearch(application, name)),
      runner_(madeByRegistry<moxSearchRunner>(application, "moxSearchRunner")) {
  runner_->load(run_.search());
  setUnits({});
}

/// The module runs the search of the units for these; what users ask for must be kept to the same.
std::vector<int> SearchRun::unitsOfTheSearch(std::vector<int> asked) const {
  auto const user = sessions_.currentUserSession();
  return user && search().description() == kSearchOfUnits ? user->units() : std::move(asked);
}

void SearchRun::setUnits(std::vector<int> const& units) {
  auto chosen = unitsOfTheSearch(units);
  run_.setUnits(units);  // refuses those without a right, also where others count
  run_.setUnits(chosen);
  units_ = std::move(chosen);
}

void SearchRun::setFilters(std::vector<std::string> const& texts) {
  setFilterArguments(readFilterArguments(texts, offers()));
}

void SearchRun::setFilterArguments(std::vector<FilterArgument> const& arguments) {
  if (arguments.empty() && search().requireFilter()) {
    throw FilterArgumentError("the search " + quotedForMessage(search().description()) +
                              " runs only with a filter");
  }
  run_.setFilterArguments(arguments);
}

void SearchRun::keepReport(Report report) {
  run_.keepReport(report);
  composeOnly_ = report == Report::kComposeOnly;
}

void SearchRun::run() {
  if (!run_.filtersAreSet()) {
    setFilterArguments({});
  }
  if (composeOnly_) {
    run_.run();  // the runner would look for rows
    return;
  }
  run_.runBy([this](auto const& context, std::vector<int> const& units) {
    try {
      controlOf(*runner_).performSqlIn(context, units);
    } catch (moxError const& error) {
      throw moxErrorWithDetails(error, inputsLeftOut(*run_.definition()));
    }
  });
}

void SearchRun::sort(SortColumns const& columns) {
  auto const matrix = runner_->getDataMatrix();
  if (!matrix) {
    throw std::logic_error("a search is sorted when it has run");
  }
  for (auto const& [name, descending] : columns) {
    if (!matrix->columnByName(name)) {
      refuseUnknownColumn(*matrix, name);
    }
  }
  controlOf(*runner_).sortRows(columns);
}

std::optional<FilterChoices> SearchRun::choicesFor(FilterOffer const& offer,
                                                   std::size_t most) const {
  return readFilterChoices(application_, sessions_, offer, {run_.sources(), units_, most});
}

}  // namespace mox::core
