#include <nlohmann/json.hpp>

#include "core/run/explanation.h"
#include "mox/zyn/filters/filter_specification.h"

namespace mox::core {

namespace {

using Json = nlohmann::ordered_json;

Json textOrNull(std::string const& text) {
  return text.empty() ? Json(nullptr) : Json(text);
}

/// Decimal texts, so that no reader rounds a number.
Json valueJson(moxBoundValue const& value) {
  bool const isNull = value.type == moxBoundValue::Type::kNull;
  return {{"type", valueTypeKey(value.type)}, {"value", isNull ? Json(nullptr) : Json(value.text)}};
}

class ExplanationWriter {
 public:
  explicit ExplanationWriter(Explanation const& explanation)
      : explanation_(explanation), report_(explanation.report) {}

  Json document() const {
    return {{"definition", explanation_.definition},
            {"dryRun", explanation_.composedOnly},
            {"units", {{"ids", report_.units}, {"from", unitsOrigin()}}},
            {"headOffice", headOffice()},
            {"filters", list(explanation_.filters, &ExplanationWriter::filter)},
            {"sources", list(report_.sources, &ExplanationWriter::source)},
            {"ignoredFilters", list(report_.ignoredFilters, &ExplanationWriter::ignoredFilter)},
            {"error", textOrNull(explanation_.error)},
            {"search", search()},
            {"filterSources", list(explanation_.wiring.changes, &ExplanationWriter::change)},
            {"wiringProblems", explanation_.wiring.problems},
            {"sort", list(explanation_.order, &ExplanationWriter::sort)},
            {"chainProblems", explanation_.chainProblems}};
  }

 private:
  template <class Item>
  Json list(std::vector<Item> const& items,
            Json (ExplanationWriter::*write)(Item const&) const) const {
    Json array = Json::array();
    for (auto const& item : items) {
      array.push_back((this->*write)(item));
    }
    return array;
  }

  static char const* origin(bool known, bool fromSession) {
    if (!known) {
      return "none";
    }
    return fromSession ? "session" : "caller";
  }

  char const* unitsOrigin() const {
    return origin(!report_.units.empty(), report_.unitsFromSession);
  }

  Json headOffice() const {
    bool const known = report_.headOffice != 0;
    return {{"id", known ? Json(report_.headOffice) : Json(nullptr)},
            {"from", origin(known, report_.headOfficeFromSession)}};
  }

  Json filter(FilterArgument const& argument) const {
    return {{"argument", argument.text},
            {"source", argument.offer.source},
            {"column", argument.offer.specification->getColumn()},
            {"keptToUnits", argument.keptToUnits}};
  }

  Json source(moxRunSource const& source) const {
    auto const conditions = explanation_.definitionConditions.find(source.name);
    return {{"name", source.name},
            {"executionClass", source.executionClass},
            {"executed", source.executed},
            {"definitionConditions", conditions == explanation_.definitionConditions.end()
                                         ? Json(nullptr)
                                         : Json(conditions->second)},
            {"statements", list(source.statements, &ExplanationWriter::statement)},
            {"rows", source.rows},
            {"seconds", source.seconds},
            {"depth", source.depth},
            {"wiring", source.wiring},
            {"reads", stepOf(source).reads},
            {"does", textOrNull(stepOf(source).does)}};
  }

  /// A member of a group is none: its group reads nothing from the chain.
  StepExplanation stepOf(moxRunSource const& source) const {
    auto const step = explanation_.steps.find(source.name);
    bool const isStep = source.depth == 0 && step != explanation_.steps.end();
    return isStep ? step->second : StepExplanation();
  }

  Json sort(SortAnswer const& answer) const {
    return {
        {"source", answer.source}, {"column", answer.column}, {"descending", answer.descending}};
  }

  Json statement(moxRunStatement const& statement) const {
    return {{"sql", statement.sql},
            {"parameters", list(statement.parameters, &ExplanationWriter::part)},
            {"conditions", list(statement.conditions, &ExplanationWriter::part)},
            {"sending", textOrNull(statement.sending)}};
  }

  Json part(moxRunPart const& part) const {
    Json values = Json::array();
    for (auto const& value : part.values) {
      values.push_back(valueJson(value));
    }
    return {{"sql", part.sql},
            {"column", part.column},
            {"origin", originKey(part.origin)},
            {"originName", textOrNull(part.originName)},
            {"originText", originText(part, report_)},
            {"values", std::move(values)}};
  }

  Json search() const {
    if (!explanation_.search) {
      return nullptr;
    }
    auto const& search = *explanation_.search;
    bool const sorted = !search.sortColumn.empty();
    return {{"name", search.name},
            {"columns", search.columns},
            {"sortColumn", textOrNull(search.sortColumn)},
            {"sortDescending", sorted ? Json(search.sortDescending) : Json(nullptr)},
            {"problem", textOrNull(search.problem)}};
  }

  Json change(FilterSourceChange const& change) const {
    return {{"group", change.group},
            {"member", change.member},
            {"query", change.query},
            {"texts", list(change.texts, &ExplanationWriter::changedText)}};
  }

  Json changedText(FilterSourceChange::Text const& text) const {
    return {{"piece", text.piece}, {"text", text.text}};
  }

  Json ignoredFilter(moxRunIgnoredFilter const& ignored) const {
    return {{"source", ignored.source}, {"column", ignored.column}, {"reason", ignored.reason}};
  }

  Explanation const& explanation_;
  moxRunReport const& report_;
};

/// The library leaves DEL and the control characters past ASCII as they are, and some terminals
/// obey them. They stand in strings only, so an escape can take their place anywhere.
std::string withoutControls(std::string const& json) {
  constexpr char const* kHex = "0123456789abcdef";
  std::string text;
  text.reserve(json.size());
  for (std::size_t at = 0; at < json.size(); ++at) {
    auto const byte = static_cast<unsigned char>(json[at]);
    auto const next = at + 1 < json.size() ? static_cast<unsigned char>(json[at + 1]) : 0U;
    if (byte == 0x7F) {
      text += "\\u007f";
    } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {
      text += "\\u00";
      text += kHex[next >> 4U];
      text += kHex[next & 0xFU];
      ++at;
    } else {
      text += json[at];
    }
  }
  return text;
}

}  // namespace

std::string explanationJson(Explanation const& explanation) {
  constexpr int kIndent = 2;
  auto const json = ExplanationWriter(explanation).document();
  return withoutControls(json.dump(kIndent, ' ', false, Json::error_handler_t::replace)) + "\n";
}

}  // namespace mox::core
