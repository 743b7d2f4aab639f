#include "cli/explanation_text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "cli/output/display_text.h"
#include "core/run/explanation.h"
#include "mox/zyn/filters/filter_specification.h"

namespace mox::cli {

namespace {

constexpr int kLabelWidth = 13;
constexpr std::size_t kIndentWidth = 2;

// A relation may bind thousands of values; who wants them all reads the JSON.
constexpr std::size_t kMostValuesShown = 20;

std::string valueText(moxBoundValue const& value) {
  if (value.type == moxBoundValue::Type::kNull) {
    return "null";
  }
  bool const quoted = value.type == moxBoundValue::Type::kText;
  return core::valueTypeKey(value.type) + (quoted ? " '" + value.text + "'" : " " + value.text);
}

std::string valuesText(std::vector<moxBoundValue> const& values) {
  std::string text;
  for (std::size_t i = 0; i < std::min(values.size(), kMostValuesShown); ++i) {
    text += (i == 0 ? "" : ", ") + valueText(values[i]);
  }
  return values.size() > kMostValuesShown
             ? text + fmt::format(", and {} more", values.size() - kMostValuesShown)
             : text;
}

/// The place behind the marks and commas that begin with the mark at `first`, and their number.
std::pair<std::size_t, std::size_t> marksFrom(std::string_view sql, std::size_t first) {
  std::size_t end = first + 1;
  std::size_t count = 1;
  for (;;) {
    auto const comma = sql.find_first_not_of(' ', end);
    auto const next = comma < sql.size() && sql[comma] == ','
                          ? sql.find_first_not_of(' ', comma + 1)
                          : std::string_view::npos;
    if (next >= sql.size() || sql[next] != '?') {
      return {end, count};
    }
    end = next + 1;
    ++count;
  }
}

/// The text without the greater part of its long lists of marks.
std::string withShortLists(std::string_view sql) {
  std::string text;
  while (!sql.empty()) {
    auto const first = std::min(sql.find('?'), sql.size());
    text += sql.substr(0, first);
    sql.remove_prefix(first);
    if (sql.empty()) {
      break;
    }
    auto const [end, count] = marksFrom(sql, 0);
    text += count > kMostValuesShown ? fmt::format("?, ?, ... {} marks", count)
                                     : std::string(sql.substr(0, end));
    sql.remove_prefix(end);
  }
  return text;
}

std::string trimmed(std::string const& text) {
  auto const first = text.find_first_not_of(' ');
  return first == text.npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

class TextWriter {
 public:
  explicit TextWriter(core::Explanation const& explanation)
      : explanation_(explanation), report_(explanation.report) {}

  std::string write() {
    writeHead();
    int number = 0;
    for (auto const& source : report_.sources) {
      writeSource(++number, source);
    }
    base_ = 0;
    writeSearch();
    writeChanges();
    writeIgnored();
    writeList("what is wrong in the wiring", explanation_.wiring.problems);
    writeList("what is wrong in the chain", explanation_.chainProblems);
    if (!explanation_.error.empty()) {
      line(0, "");
      labelled("failed", explanation_.error);
    }
    return text_;
  }

 private:
  void writeHead() {
    labelled("definition", explanation_.definition +
                               (explanation_.composedOnly ? " (put together, not run)" : ""));
    labelled("units", core::unitsText(report_));
    labelled("head office", headOfficeText());
    for (auto const& filter : explanation_.filters) {
      labelled("filter",
               filter.text + (filter.keptToUnits ? " (kept to the units of the run)" : ""));
    }
    if (!explanation_.order.empty()) {
      labelled("order", core::sortText(explanation_.order));
    }
  }

  std::string headOfficeText() const {
    if (report_.headOffice == 0) {
      return "none";
    }
    return std::to_string(report_.headOffice) +
           (report_.headOfficeFromSession ? ", the session's" : ", named by the caller");
  }

  void writeSource(int number, moxRunSource const& source) {
    base_ = 0;
    line(0, "");
    base_ = static_cast<std::size_t>(std::max(source.depth, 0));
    line(0, fmt::format("{}. {}: {}", number, source.name, outcome(source)));
    writeStep(source);
    if (!source.wiring.empty()) {
      line(1, "wiring");
    }
    for (auto const& sentence : source.wiring) {
      line(2, sentence);
    }
    for (auto const& statement : source.statements) {
      line(1, "statement");
      block(2, withShortLists(statement.sql));
      if (!statement.sending.empty()) {
        line(1, statement.sending);
      }
      writeParameters(statement);
      writeConditions(source, statement);
    }
  }

  void writeStep(moxRunSource const& source) {
    auto const step = stepOf(source);
    if (!step.reads.empty()) {
      line(1, fmt::format("reads {}", fmt::join(step.reads, ", ")));
    }
    if (!step.does.empty()) {
      line(1, step.does);
    }
  }

  std::string outcome(moxRunSource const& source) const {
    if (!source.executed) {
      return readsRows(source) ? "not run" : "put together, not run";
    }
    auto const rows = givesRows(source)
                          ? fmt::format("{} {}", source.rows, source.rows == 1 ? "row" : "rows")
                          : std::string("no rows by design");
    return fmt::format("{}, {:.1f} ms", rows, source.seconds * 1e3);
  }

  /// Members of groups have names of their own, which may be those of steps.
  core::StepExplanation stepOf(moxRunSource const& source) const {
    auto const found = explanation_.steps.find(source.name);
    bool const isStep = source.depth == 0 && found != explanation_.steps.end();
    return isStep ? found->second : core::StepExplanation();
  }

  bool givesRows(moxRunSource const& source) const { return stepOf(source).givesRows; }
  bool readsRows(moxRunSource const& source) const { return !stepOf(source).reads.empty(); }

  void writeParameters(moxRunStatement const& statement) {
    if (!statement.parameters.empty()) {
      line(1, "values of its tokens, in order");
    }
    for (auto const& part : statement.parameters) {
      writePart(part.column, part);
    }
  }

  void writeConditions(moxRunSource const& source, moxRunStatement const& statement) {
    auto const own = explanation_.definitionConditions.find(source.name);
    bool const hasOwn = own != explanation_.definitionConditions.end();
    if (hasOwn || !statement.conditions.empty()) {
      line(1, "conditions");
    }
    if (hasOwn) {
      block(2, own->second);
      line(3, "from: the definition's own text");
    }
    for (auto const& part : statement.conditions) {
      writePart(part.sql.empty() ? part.column : trimmed(withShortLists(part.sql)), part);
    }
  }

  void writePart(std::string const& what, moxRunPart const& part) {
    block(2, what);
    if (!part.values.empty()) {
      line(3, "value: " + valuesText(part.values));
    }
    line(3, "from: " + core::originText(part, report_));
  }

  void writeSearch() {
    if (!explanation_.search) {
      return;
    }
    auto const& search = *explanation_.search;
    line(0, "");
    line(0, "the search " + search.name);
    line(1, fmt::format("puts the columns in the order {}", fmt::join(search.columns, ", ")));
    if (!search.problem.empty()) {
      line(1, "cannot sort: " + search.problem);
    } else if (search.sortColumn.empty()) {
      line(1, "leaves the rows in the order of its source");
    } else {
      line(1, "sorts by " + search.sortColumn + (search.sortDescending ? ", descending" : ""));
    }
  }

  void writeChanges() {
    if (explanation_.wiring.changes.empty()) {
      return;
    }
    line(0, "");
    line(0, "what filter sources put into statements");
    for (auto const& change : explanation_.wiring.changes) {
      line(1,
           fmt::format("{} changes {} in the group {}", change.member, change.query, change.group));
      for (auto const& text : change.texts) {
        line(2, pieceText(text.piece));
        block(3, text.text);
      }
    }
  }

  static std::string pieceText(std::string const& piece) {
    if (piece == "columns") {
      return "further columns";
    }
    return piece == "select" ? "columns in place of the query's" : piece;
  }

  void writeList(std::string_view heading, std::vector<std::string> const& sentences) {
    if (sentences.empty()) {
      return;
    }
    line(0, "");
    line(0, heading);
    for (auto const& sentence : sentences) {
      line(1, sentence);
    }
  }

  void writeIgnored() {
    if (report_.ignoredFilters.empty()) {
      return;
    }
    line(0, "");
    line(0, "filters that no statement used");
    for (auto const& ignored : report_.ignoredFilters) {
      line(1, fmt::format("{} of {}: {}", ignored.column, ignored.source, ignored.reason));
    }
  }

  void labelled(std::string const& label, std::string const& value) {
    line(0, fmt::format("{:<{}}{}", label, kLabelWidth, value));
  }

  /// A text of several lines, each indented.
  void block(std::size_t depth, std::string_view text) {
    while (!text.empty()) {
      auto const end = std::min(text.find('\n'), text.size());
      line(depth, text.substr(0, end));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
  }

  void line(std::size_t depth, std::string_view text) {
    text_.append(text.empty() ? 0 : (base_ + depth) * kIndentWidth, ' ');
    if (!text.empty()) {
      appendDisplayText(text_, text, kNoWidthLimit);
    }
    text_ += '\n';
  }

  core::Explanation const& explanation_;
  moxRunReport const& report_;
  std::size_t base_ = 0;  // how far the source is nested
  std::string text_;
};

}  // namespace

std::string explanationText(core::Explanation const& explanation) {
  return TextWriter(explanation).write();
}

}  // namespace mox::cli
