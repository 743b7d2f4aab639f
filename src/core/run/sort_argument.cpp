#include "core/run/sort_argument.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "core/run/filter_value.h"

namespace mox::core {

namespace {

/// The column that is called so; else the one whose text for users it is.
std::optional<std::string> columnOf(SortOffer const& offer, std::string const& asked) {
  auto const columns = offer.option->getAvailableColumns();
  auto const isNamed = [&](auto const& column) { return column.first == asked; };
  auto const isCalled = [&](auto const& column) { return column.second == asked; };
  auto found = std::find_if(columns.begin(), columns.end(), isNamed);
  if (found == columns.end()) {
    found = std::find_if(columns.begin(), columns.end(), isCalled);
  }
  return found != columns.end() ? std::optional(found->first) : std::nullopt;
}

/// What of `asked` stands behind "SOURCE:" of this offer; nothing where that is not there.
std::optional<std::string> behindSource(SortOffer const& offer, std::string const& asked) {
  bool const isAimed = asked.starts_with(offer.source + ":");
  return isAimed ? std::optional(asked.substr(offer.source.size() + 1)) : std::nullopt;
}

std::string offeredText(std::vector<SortOffer> const& offers) {
  std::vector<std::string> names;
  for (auto const& offer : offers) {
    for (auto const& [column, description] : offer.option->getAvailableColumns()) {
      names.push_back(offers.size() == 1 ? column : offer.source + ":" + column);
    }
  }
  return names.empty() ? "nothing" : fmt::format("{}", fmt::join(names, ", "));
}

SortAnswer readArgument(SortArgument const& argument, std::vector<SortOffer> const& offers) {
  for (auto const& offer : offers) {
    if (auto const column = columnOf(offer, argument.column)) {
      return {offer.source, *column, argument.descending};
    }
  }
  for (auto const& offer : offers) {
    auto const name = behindSource(offer, argument.column);
    auto const column = name ? columnOf(offer, *name) : std::nullopt;
    if (column) {
      return {offer.source, *column, argument.descending};
    }
  }
  throw SortArgumentError("there is no column " + quotedForMessage(argument.column) +
                          " to sort by; on offer: " + offeredText(offers));
}

}  // namespace

std::vector<SortOffer> sortOffersOf(
    std::vector<std::shared_ptr<moxDataSource const>> const& sources) {
  std::vector<SortOffer> offers;
  for (auto const& source : sources) {
    for (auto const& option : source->options()) {
      if (auto sort = std::dynamic_pointer_cast<moxSorterDataSourceOption const>(option)) {
        offers.push_back({source->getName(), std::move(sort)});
      }
    }
  }
  return offers;
}

std::vector<SortAnswer> readSortArguments(std::vector<SortArgument> const& arguments,
                                          std::vector<SortOffer> const& offers) {
  std::vector<SortAnswer> answers;
  answers.reserve(arguments.size());
  for (auto const& argument : arguments) {
    answers.push_back(readArgument(argument, offers));
  }
  return answers;
}

std::map<std::string, std::vector<std::shared_ptr<moxDataSourceOptionData>>> sortOptionData(
    std::vector<SortAnswer> const& answers, std::vector<SortOffer> const& offers) {
  std::map<std::string, std::vector<std::shared_ptr<moxDataSourceOptionData>>> data;
  for (auto const& offer : offers) {
    for (auto const& answer : answers) {
      if (answer.source == offer.source) {
        auto const made = offer.option->createOptionData();
        dynamic_cast<moxSorterDataSourceOptionData&>(*made).setOrder(answer.column,
                                                                     answer.descending);
        data[offer.source].push_back(made);
      }
    }
  }
  return data;
}

std::string sortText(std::vector<SortAnswer> const& answers) {
  std::string text;
  for (auto const& answer : answers) {
    text +=
        (text.empty() ? "" : ", then ") + answer.column + (answer.descending ? ", descending" : "");
  }
  return text;
}

}  // namespace mox::core
