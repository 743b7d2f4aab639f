#include "core/run/filter_argument.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "mox/zyn/datasources/sql_data_source_column.h"
#include "mox/zyn/filters/filter_specification.h"

namespace mox::core {

namespace {

// What a command line or a request can hold, with room; a longer one is a mistake.
constexpr std::size_t kLongestArgument = 1 << 20;

using Offers = std::vector<FilterOffer>;

FilterForm formOf(moxFilterSpecification const& specification) {
  switch (specification.bindCount()) {
    case 0:
      return FilterForm::kList;
    case 2:
      return FilterForm::kRange;
    default:
      return FilterForm::kOne;
  }
}

bool isToken(std::string const& column) {
  return column.starts_with("{{") && column.ends_with("}}") && column.size() > 4;
}

std::string withoutBraces(std::string const& token) {
  return token.substr(2, token.size() - 4);
}

void appendNames(std::vector<std::string>& names, std::string const& table,
                 std::string const& column) {
  if (column.empty()) {
    return;
  }
  names.push_back(column);
  if (!table.empty()) {
    names.push_back(table + "." + column);
  }
}

/// Adds every name once more behind the source that is narrowed: by its own name, and by its place
/// in groups.
std::vector<std::string> withSource(std::vector<std::string> names, std::string const& source) {
  auto const count = names.size();
  auto const mark = source.rfind("->");
  for (std::size_t i = 0; i < count; ++i) {
    names.push_back(source + ":" + names[i]);
    if (mark != source.npos) {
      names.push_back(source.substr(mark + 2) + ":" + names[i]);
    }
  }
  return names;
}

std::vector<std::string> columnNames(FilterOffer const& offer) {
  std::vector<std::string> names;
  auto const& specification = *offer.specification;
  auto const column = specification.getColumn();
  appendNames(names, specification.getTableName(), column);
  if (isToken(column)) {
    names.push_back(withoutBraces(column));
  }
  if (auto const bound = specification.getSQLDataSourceColumn()) {
    appendNames(names, bound->getTableName(), bound->getColumnName());
  }
  return withSource(std::move(names), offer.source);
}

std::vector<std::string> labels(FilterOffer const& offer) {
  auto const label = offer.specification->getDescription();
  return label.empty() ? std::vector<std::string>() : withSource({label}, offer.source);
}

struct Match {
  std::size_t nameLength = 0;  // 0: nothing matched
  Offers offers;
};

/// The offers one of whose names the text begins with, followed by "=". The longest name counts,
/// for a column that is an expression may hold an "=" itself.
template <class NamesOf>
Match match(std::string_view text, Offers const& offers, NamesOf namesOf) {
  Match best;
  for (auto const& offer : offers) {
    std::size_t length = 0;
    for (auto const& name : namesOf(offer)) {
      bool const fits = text.starts_with(name) && text.substr(name.size()).starts_with('=');
      length = std::max(length, fits ? name.size() : 0);
    }
    if (length > best.nameLength) {
      best = {length, {}};
    }
    if (length != 0 && length == best.nameLength) {
      best.offers.push_back(offer);
    }
  }
  return best;
}

std::string formText(moxFilterSpecification const& specification) {
  constexpr char const* kValues[] = {"NUMBER", "NUMBER", "TEXT", "DAY", "VALUE"};
  std::string value = kValues[std::clamp<int>(specification.getType(), 0, 4)];
  switch (formOf(specification)) {
    case FilterForm::kRange:
      return "MIN..MAX";
    case FilterForm::kList:
      return value + ",...";
    case FilterForm::kOne:
      break;
  }
  return value;
}

std::string offerText(Offers const& offers) {
  std::vector<std::string> texts;
  for (auto const& offer : offers) {
    texts.push_back(filterLabel(*offer.specification) + "=" + formText(*offer.specification));
  }
  return texts.empty() ? "none is offered" : fmt::format("offered: {}", fmt::join(texts, "; "));
}

[[noreturn]] void refuseUnknown(std::string const& text, Offers const& offers) {
  auto const equals = text.find('=');
  if (equals == text.npos || equals == 0) {
    throw FilterArgumentError(fmt::format("filter {}: it is written COLUMN=VALUE; {}",
                                          quotedForMessage(text), offerText(offers)));
  }
  throw FilterArgumentError(
      fmt::format("filter {}: there is no filter on {}; {}", quotedForMessage(text),
                  quotedForMessage(text.substr(0, equals)), offerText(offers)));
}

bool onSameColumn(FilterOffer const& left, FilterOffer const& right) {
  return left.source == right.source &&
         left.specification->getTableName() == right.specification->getTableName() &&
         left.specification->getColumn() == right.specification->getColumn();
}

std::string fullName(FilterOffer const& offer) {
  auto const table = offer.specification->getTableName();
  return offer.source + ": " + (table.empty() ? "" : table + ".") +
         offer.specification->getColumn();
}

[[noreturn]] void refuseAmbiguous(std::string const& text, std::size_t nameLength,
                                  Offers const& offers) {
  std::set<std::string> names;
  std::set<std::string> sources;
  for (auto const& offer : offers) {
    names.insert(fullName(offer));
    sources.insert(offer.source);
  }
  throw FilterArgumentError(
      fmt::format("filter {}: {} can be any of {}; write {}", quotedForMessage(text),
                  quotedForMessage(text.substr(0, nameLength)), fmt::join(names, ", "),
                  sources.size() > 1 ? "SOURCE:COLUMN" : "TABLE.COLUMN"));
}

/// Of several forms on one column the one that the value looks like, else one that can take it.
FilterOffer const& bestForm(Offers const& offers, FilterForm wanted) {
  for (auto const form : {wanted, FilterForm::kOne, FilterForm::kList}) {
    for (auto const& offer : offers) {
      if (formOf(*offer.specification) == form) {
        return offer;
      }
    }
  }
  return offers.front();
}

FilterValueKind kindOf(moxFilterSpecification const& specification) {
  auto const* const text = dynamic_cast<moxTextFilterSpecification const*>(&specification);
  return {specification.getType(), formOf(specification),
          text != nullptr && text->getRemovePunctuation()};
}

/// A token stands for one value; what a list holds beyond the first would silently not count.
void demandOneForToken(moxFilterSpecification const& specification, FilterValue const& value) {
  auto const isList = [](auto const& given) {
    if constexpr (requires { given.values; }) {
      return given.values.size() > 1;
    } else {
      return false;
    }
  };
  if (isToken(specification.getColumn()) && std::visit(isList, value)) {
    throw FilterArgumentError("a token takes one value");
  }
}

FilterValue readValue(moxFilterSpecification const& specification, std::string_view text) {
  auto value = readFilterValue(text, kindOf(specification));
  demandOneForToken(specification, value);
  return value;
}

bool isGiven(FilterOffer const& offer, std::vector<FilterArgument> const& arguments) {
  return std::any_of(arguments.begin(), arguments.end(), [&](FilterArgument const& argument) {
    return argument.offer.specification == offer.specification &&
           argument.offer.source == offer.source;
  });
}

/// One of several forms on a required column is enough.
bool isAnswered(FilterOffer const& offer, std::vector<FilterArgument> const& arguments) {
  return std::any_of(arguments.begin(), arguments.end(), [&](FilterArgument const& argument) {
    return onSameColumn(argument.offer, offer);
  });
}

}  // namespace

FilterArgument readFilterArgument(std::string const& text, Offers const& offers) {
  if (text.size() > kLongestArgument) {
    throw FilterArgumentError(
        fmt::format("filter {}: longer than {} bytes", quotedForMessage(text), kLongestArgument));
  }
  Match found = match(text, offers, columnNames);
  if (found.nameLength == 0) {
    found = match(text, offers, labels);
  }
  if (found.nameLength == 0) {
    refuseUnknown(text, offers);
  }
  for (auto const& offer : found.offers) {
    if (!onSameColumn(offer, found.offers.front())) {
      refuseAmbiguous(text, found.nameLength, found.offers);
    }
  }
  auto const value = std::string_view(text).substr(found.nameLength + 1);
  auto const& offer = bestForm(found.offers, looksLike(value));
  try {
    return {offer, readValue(*offer.specification, value), text};
  } catch (FilterArgumentError const& error) {
    throw FilterArgumentError("filter " + quotedForMessage(text) + ": " + error.errorMessage());
  }
}

std::vector<FilterArgument> readFilterArguments(std::vector<std::string> const& texts,
                                                Offers const& offers) {
  std::vector<FilterArgument> arguments;
  for (auto const& text : texts) {
    auto argument = readFilterArgument(text, offers);
    if (isGiven(argument.offer, arguments)) {
      throw FilterArgumentError("filter " + quotedForMessage(text) +
                                ": this filter is given twice");
    }
    arguments.push_back(std::move(argument));
  }
  return arguments;
}

void demandRequiredFilters(std::vector<FilterArgument> const& arguments, Offers const& offers) {
  Offers missing;
  for (auto const& offer : offers) {
    if (offer.specification->getRequire() && !isAnswered(offer, arguments)) {
      missing.push_back(offer);
    }
  }
  if (!missing.empty()) {
    std::vector<std::string> names;
    for (auto const& offer : missing) {
      names.push_back(filterLabel(*offer.specification) + "=" + formText(*offer.specification));
    }
    throw FilterArgumentError(
        fmt::format("a required filter is missing: {}", fmt::join(names, "; ")));
  }
}

std::string filterLabel(moxFilterSpecification const& specification) {
  auto const column = specification.getColumn();
  if (isToken(column)) {
    return withoutBraces(column);
  }
  if (auto const bound = specification.getSQLDataSourceColumn()) {
    return bound->getColumnName();
  }
  bool const isExpression = column.find_first_of(" (@\n") != column.npos;
  return isExpression && !specification.getDescription().empty() ? specification.getDescription()
                                                                 : column;
}

}  // namespace mox::core
