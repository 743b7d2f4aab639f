#include "compare/report.h"

#include <fmt/format.h>
#include <mysql.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "compare/rounds.h"

namespace bench {
namespace {

constexpr std::string_view kBegin = "<!-- figures: begin -->";
constexpr std::string_view kEnd = "<!-- figures: end -->";
constexpr std::size_t kColumns = 7;

using Line = std::array<std::string, kColumns>;

std::string milliseconds(double seconds) {
  return seconds >= 0.1 ? fmt::format("{:.0f} ms", seconds * 1000)
                        : fmt::format("{:.1f} ms", seconds * 1000);
}

std::string ratio(double seconds, double floorSeconds) {
  return fmt::format("{:.2f}x", seconds / floorSeconds);
}

std::string peersText(CaseResult const& result) {
  std::string text;
  for (PeerTime const& peer : result.peers) {
    text += (text.empty() ? "" : ", ") + peer.name + " " + milliseconds(peer.seconds);
  }
  for (std::string const& absent : result.absentPeers) {
    text += (text.empty() ? "" : ", ") + absent + " not here";
  }
  return text.empty() ? "-" : text;
}

std::string bestPeerRatio(CaseResult const& result) {
  if (result.peers.empty()) {
    return "-";
  }
  auto const best = std::min_element(
      result.peers.begin(), result.peers.end(),
      [](PeerTime const& left, PeerTime const& right) { return left.seconds < right.seconds; });
  return ratio(best->seconds, result.floorSeconds);
}

std::string memoryText(std::size_t bytes) {
  return bytes == 0 ? "-" : fmt::format("{} MiB", bytes >> 20);
}

std::vector<Line> linesOf(std::vector<CaseResult> const& results) {
  std::vector<Line> lines = {
      {"case", "floor", "ours", "peers", "ours/floor", "best peer/floor", "peak memory of ours"}};
  for (CaseResult const& result : results) {
    lines.push_back({result.title, milliseconds(result.floorSeconds),
                     milliseconds(result.oursSeconds), peersText(result),
                     ratio(result.oursSeconds, result.floorSeconds), bestPeerRatio(result),
                     memoryText(result.peakBytes)});
  }
  return lines;
}

std::array<std::size_t, kColumns> widthsOf(std::vector<Line> const& lines) {
  std::array<std::size_t, kColumns> widths{};
  for (Line const& line : lines) {
    for (std::size_t i = 0; i < kColumns; ++i) {
      widths[i] = std::max(widths[i], line[i].size());
    }
  }
  return widths;
}

std::string processorName() {
  std::ifstream file("/proc/cpuinfo");
  std::string line;
  while (std::getline(file, line)) {
    if (line.starts_with("model name")) {
      return line.substr(line.find(':') + 2);
    }
  }
  return "unknown processor";
}

std::string contentsOf(std::string const& file) {
  std::ifstream stream(file);
  std::ostringstream contents;
  contents << stream.rdbuf();
  if (!stream) {
    throw std::runtime_error("cannot read " + file);
  }
  return contents.str();
}

}  // namespace

std::string plainTable(std::vector<CaseResult> const& results) {
  auto const lines = linesOf(results);
  auto const widths = widthsOf(lines);
  std::string text;
  for (Line const& line : lines) {
    std::string row;
    for (std::size_t i = 0; i < kColumns; ++i) {
      row += fmt::format("{:<{}}  ", line[i], widths[i]);
    }
    row.erase(row.find_last_not_of(' ') + 1);
    text += row + "\n";
  }
  return text;
}

std::string markdownReport(std::vector<CaseResult> const& results, int rounds) {
  std::string text = fmt::format(
      "Measured on {}, {} processors; {}; SQLite {}, MariaDB client {}. Medians of {} "
      "rounds{}.\n\n",
      processorName(), std::thread::hardware_concurrency(), ZYN_BENCH_COMPILER,
      sqlite3_libversion(), mysql_get_client_info(), rounds,
      measuresProcessorTime() ? ", processor time" : "");
  auto const lines = linesOf(results);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    text += fmt::format("| {} |\n", fmt::join(lines[i], " | "));
    if (i == 0) {
      text += "|---|--:|--:|---|--:|--:|--:|\n";
    }
  }
  return text;
}

void writeIntoDocument(std::string const& file, std::string const& report) {
  std::string document = contentsOf(file);
  std::size_t const begin = document.find(kBegin);
  std::size_t const end = document.find(kEnd);
  if (begin == std::string::npos || end == std::string::npos || end < begin) {
    throw std::runtime_error(file + " has no place for the figures");
  }
  std::size_t const start = begin + kBegin.size();
  document.replace(start, end - start, "\n\n" + report + "\n");
  std::ofstream stream(file);
  stream << document;
  if (!stream.flush()) {
    throw std::runtime_error("cannot write " + file);
  }
}

}  // namespace bench
