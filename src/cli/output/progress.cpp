#include "cli/output/progress.h"

#include <chrono>
#include <cstdio>

#include <unistd.h>

namespace mox::cli {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kQuietTime(500);
constexpr milliseconds kDrawInterval(200);
constexpr char const* kEraseLine = "\r\x1b[K";

char const* stageName(Progress::Stage stage) {
  switch (stage) {
    case Progress::Stage::kReading:
      return "reading";
    case Progress::Stage::kSorting:
      return "sorting";
    case Progress::Stage::kWriting:
      return "writing";
  }
  return "";
}

std::string grouped(std::int64_t number) {
  std::string digits = std::to_string(number);
  for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3) {
    digits.insert(static_cast<std::size_t>(at), 1, ',');
  }
  return digits;
}

void drawText(std::string const& text) {
  std::string const line = kEraseLine + text;
  // A progress line that cannot be written is no reason to end the work.
  [[maybe_unused]] auto const written = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace

Progress::Progress(bool enabled) {
  if (enabled) {
    drawer_ = std::thread([this] { drawUntilStopped(); });
  }
}

void Progress::report(Stage stage, std::int64_t rows) {
  rows_.store(rows, std::memory_order_relaxed);
  stage_.store(stage, std::memory_order_relaxed);
}

void Progress::stop() {
  if (!drawer_.joinable()) {
    return;
  }
  {
    std::lock_guard const lock(mutex_);
    stopped_ = true;
  }
  stopRequested_.notify_one();
  drawer_.join();
}

void Progress::drawUntilStopped() {
  std::unique_lock lock(mutex_);
  bool drawn = false;
  auto const isStopped = [this] { return stopped_; };
  for (auto pause = kQuietTime; !stopRequested_.wait_for(lock, pause, isStopped);
       pause = kDrawInterval) {
    draw();
    drawn = true;
  }
  if (drawn) {
    drawText("");
  }
}

void Progress::draw() {
  drawText(progressText(stage_.load(), rows_.load()));
}

std::string progressText(Progress::Stage stage, std::int64_t rows) {
  std::string text = stageName(stage);
  text += rows > 0 ? ": " + grouped(rows) + " rows" : " ...";
  return text;
}

}  // namespace mox::cli
