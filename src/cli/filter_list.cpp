#include "cli/filter_list.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/commands/text_column.h"
#include "cli/output/json_writer.h"
#include "mox/zyn/filters/filter_specification.h"

namespace mox::cli {

namespace {

std::string typeOf(moxFilterSpecification const& specification) {
  constexpr std::array kWords = {"int", "double", "text", "date", "blob"};
  auto const index = static_cast<std::size_t>(specification.getType());
  return index < kWords.size() ? kWords[index] : std::to_string(index);
}

std::string formOf(moxFilterSpecification const& specification) {
  int const count = specification.bindCount();
  return count == 0 ? "list" : count == 2 ? "range" : "one";
}

FilterEntry* find(std::vector<FilterEntry>& entries, std::string const& source,
                  std::string const& name) {
  auto const found = std::ranges::find_if(
      entries, [&](auto const& entry) { return entry.source == source && entry.name == name; });
  return found == entries.end() ? nullptr : &*found;
}

/// A name that several sources offer is told apart by its source.
void nameSources(std::vector<FilterEntry>& entries) {
  std::vector<std::string> names;
  names.reserve(entries.size());
  for (auto const& entry : entries) {
    names.push_back(entry.name);
  }
  for (auto& entry : entries) {
    if (std::ranges::count(names, entry.name) > 1) {
      entry.name = entry.source + ":" + entry.name;
    }
  }
}

/// How many there are comes first: a terminal may cut the rest.
std::string choicesText(core::FilterChoices const& choices) {
  if (!choices.problem.empty()) {
    return "not known: " + choices.problem;
  }
  std::vector<std::string> texts;
  for (auto const& [value, label] : choices.choices) {
    texts.push_back(label.empty() || label == value ? value : fmt::format("{} {}", value, label));
  }
  if (choices.choices.size() < choices.total) {
    texts.emplace_back("\xE2\x80\xA6");
  }
  return fmt::format("{}: {}", choices.total, fmt::join(texts, ", "));
}

void writeMember(OutputBuffer& out, std::string_view name, std::string_view value) {
  writeJsonText(out, name);
  out.append(':');
  writeJsonText(out, value);
  out.append(',');
}

void writeForms(OutputBuffer& out, std::vector<std::string> const& forms) {
  out.append("\"forms\":[");
  for (auto const& form : forms) {
    out.append(&form == &forms.front() ? "" : ",");
    writeJsonText(out, form);
  }
  out.append("],");
}

void writeChoices(OutputBuffer& out, core::FilterChoices const& choices) {
  out.append('{');
  writeMember(out, "source", choices.source);
  writeMember(out, "problem", choices.problem);
  out.append(fmt::format("\"total\":{},\"choices\":[", choices.total));
  for (auto const& choice : choices.choices) {
    out.append(&choice == &choices.choices.front() ? "{" : ",{");
    writeMember(out, "value", choice.value);
    out.append("\"label\":");
    writeJsonText(out, choice.label);
    out.append('}');
  }
  out.append("]}");
}

void writeEntry(OutputBuffer& out, FilterEntry const& entry) {
  out.append('{');
  writeMember(out, "filter", entry.name);
  writeMember(out, "label", entry.label);
  writeMember(out, "source", entry.source);
  writeMember(out, "type", entry.type);
  writeForms(out, entry.forms);
  out.append(entry.required ? "\"required\":true,\"values\":" : "\"required\":false,\"values\":");
  if (entry.choices) {
    writeChoices(out, *entry.choices);
  } else {
    out.append("null");
  }
  out.append('}');
}

}  // namespace

std::vector<FilterEntry> filterEntries(core::SearchRun const& run, std::size_t mostChoices) {
  std::vector<FilterEntry> entries;
  for (auto const& offer : run.offers()) {
    auto const& specification = *offer.specification;
    auto const name = core::filterLabel(specification);
    auto* entry = find(entries, offer.source, name);
    if (entry == nullptr) {
      entry = &entries.emplace_back();
      entry->name = name;
      entry->label = specification.getDescription();
      entry->source = offer.source;
      entry->type = typeOf(specification);
      entry->choices = run.choicesFor(offer, mostChoices);
    }
    auto const form = formOf(specification);
    if (std::ranges::find(entry->forms, form) == entry->forms.end()) {
      entry->forms.push_back(form);
    }
    entry->required = entry->required || specification.getRequire();
  }
  nameSources(entries);
  return entries;
}

std::shared_ptr<moxDataMatrix> filterMatrix(Host& host, std::vector<FilterEntry> const& entries) {
  auto matrix = host.make<moxDataMatrix>("moxDataMatrix");
  auto const names = addTextColumn(host, *matrix, "filter");
  auto const labels = addTextColumn(host, *matrix, "label");
  auto const types = addTextColumn(host, *matrix, "type");
  auto const forms = addTextColumn(host, *matrix, "forms");
  auto const required = addTextColumn(host, *matrix, "required");
  auto const values = addTextColumn(host, *matrix, "values");
  for (auto const& entry : entries) {
    names->appendValue(entry.name);
    labels->appendValue(entry.label);
    types->appendValue(entry.type);
    forms->appendValue(fmt::format("{}", fmt::join(entry.forms, ", ")));
    required->appendValue(entry.required ? "yes" : "no");
    values->appendValue(entry.choices ? choicesText(*entry.choices) : "");
  }
  return matrix;
}

void writeFilterJson(OutputBuffer& out, std::vector<FilterEntry> const& entries, bool asArray) {
  out.append(asArray ? "[" : "");
  for (auto const& entry : entries) {
    bool const isFirst = &entry == &entries.front();
    out.append(!asArray ? "" : isFirst ? "\n" : ",\n");
    writeEntry(out, entry);
    out.append(asArray ? "" : "\n");
  }
  out.append(!asArray ? "" : entries.empty() ? "]\n" : "\n]\n");
}

}  // namespace mox::cli
