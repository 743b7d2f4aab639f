#include "zyn/datasources/run_recorder.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "mox/zyn/datasources/data_source_execution_context.h"
#include "mox/zyn/sql/data_matrix_sql_filter.h"

namespace {

std::string quoted(std::string const& name) {
  return "\"" + name + "\"";
}

}  // namespace

bool RunRecorder::executes() const {
  return open_.empty() ? mode_ == Mode::kExecute : open_.back().executes;
}

bool RunRecorder::mayChangeData() {
  if (mode_ == Mode::kExecute) {
    return true;
  }
  sourceAtWork().executed = false;
  return false;
}

void RunRecorder::statement(moxRunStatement statement) {
  sourceAtWork().statements.push_back(std::move(statement));
}

void RunRecorder::wired(std::string sentence) {
  sourceAtWork().wiring.push_back(std::move(sentence));
}

void RunRecorder::filterUsed(Filter const& filter) {
  used_.insert(filter);
}

void RunRecorder::filterIgnored(Filter const& filter, std::string const& reason) {
  reasons_.emplace(filter, reason);
}

void RunRecorder::runStarted(RunUnits const& units, std::vector<std::string> const& names) {
  listedNames_.insert(names.begin(), names.end());
  if (open_.empty()) {
    report_.units = units.units;
    report_.unitsFromSession = units.unitsFromSession;
    report_.headOffice = units.headOffice;
    report_.headOfficeFromSession = units.headOfficeFromSession;
  }
}

void RunRecorder::sourceStarted(std::string const& name, std::string const& executionClass,
                                bool executes) {
  bool const executesToo = executes || this->executes();
  auto& source = report_.sources.emplace_back();
  source.name = name;
  source.executionClass = executionClass;
  source.executed = executesToo;
  source.depth = static_cast<int>(open_.size());
  open_.push_back({report_.sources.size() - 1, executesToo, name.empty(), Clock::now()});
}

/// The result is the last matrix that a source registers: a group may have been given others.
void RunRecorder::matrixRegistered(std::string const& name, std::int64_t rows) {
  if (open_.empty() && !unlisted_) {
    return;  // handed in by the caller
  }
  auto& source = sourceAtWork();
  if (open_.empty() || open_.back().unnamed) {
    source.name = name;
  }
  if (source.name == name) {
    source.rows = rows;
  }
  unlisted_.reset();
}

void RunRecorder::sourceFinished() {
  assert(!open_.empty());
  auto const& open = open_.back();
  report_.sources[open.index].seconds =
      std::chrono::duration<double>(Clock::now() - open.start).count();
  open_.pop_back();
}

/// A SQL source may also be run by hand, outside a list: it has no time, and its matrix names it.
moxRunSource& RunRecorder::sourceAtWork() {
  if (!open_.empty()) {
    return report_.sources[open_.back().index];
  }
  if (!unlisted_) {
    unlisted_ = report_.sources.size();
    report_.sources.emplace_back().executed = executes();
  }
  return report_.sources[*unlisted_];
}

moxRunReport RunRecorder::report(FiltersBySource const& given) const {
  auto report = report_;
  for (auto const& [source, filters] : given) {
    for (auto const& filter : filters) {
      if (!used_.contains(filter)) {
        report.ignoredFilters.push_back(
            {source, filter->getColumnName(), whyIgnored(source, filter)});
      }
    }
  }
  return report;
}

std::string RunRecorder::whyIgnored(std::string const& source, Filter const& filter) const {
  auto const reason = reasons_.find(filter);
  return reason != reasons_.end() ? reason->second : whySourceIgnores(source);
}

std::string RunRecorder::whySourceIgnores(std::string const& source) const {
  auto const isSource = [&](moxRunSource const& ran) { return ran.name == source; };
  auto const ran = std::find_if(report_.sources.begin(), report_.sources.end(), isSource);
  bool const asked = askedNames_.contains(source);
  if (ran == report_.sources.end()) {
    if (listedNames_.contains(source)) {
      return "the run ended before source " + quoted(source);
    }
    if (asked) {
      return "filter manager " + quoted(source) + " passes it to no statement";
    }
    auto const member = source.rfind("->");  // a group's, which ran under its own name
    return member == source.npos ? "the run has no source " + quoted(source)
                                 : whySourceIgnores(source.substr(member + 2));
  }
  if (asked || !ran->statements.empty()) {
    return "no statement of source " + quoted(source) + " takes it";
  }
  return "source " + quoted(source) + (ran->executed ? " has no statement" : " was not executed");
}

RunRecorderHolder const* reportOf(moxDataSourceExecutionContext const& context) {
  auto const* const holder = dynamic_cast<RunRecorderHolder const*>(&context);
  return holder != nullptr && holder->runRecorder() != nullptr ? holder : nullptr;
}
