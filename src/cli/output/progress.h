#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace mox::cli {

/// A line on standard error that says how far a long run is; it appears after half a second and is
/// gone at the end. Does nothing unless it is enabled. A thread of its own draws it, because the
/// one that works may wait for a database that says nothing yet.
class Progress {
 public:
  enum class Stage { kReading, kSorting, kWriting };

  explicit Progress(bool enabled);
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;
  ~Progress() { stop(); }

  /// What is being done, and with how many rows so far. Costs two stores; safe from any thread.
  void report(Stage stage, std::int64_t rows);

  /// Erases the line for good: the program is about to write to the same terminal.
  void stop();

 private:
  void drawUntilStopped();
  void draw();

  std::atomic<Stage> stage_ = Stage::kReading;
  std::atomic<std::int64_t> rows_ = 0;
  bool stopped_ = false;  // guarded by mutex_
  std::mutex mutex_;
  std::condition_variable stopRequested_;
  std::thread drawer_;
};

/// The line's text: "reading: 1,234,567 rows".
std::string progressText(Progress::Stage stage, std::int64_t rows);

}  // namespace mox::cli
