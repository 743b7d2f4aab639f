#pragma once

#include "cli/host.h"
#include "cli/output/progress.h"

namespace mox::core {
class Database;
}

namespace mox::cli {

/// Has the database report rows to the progress line while it lives.
class ReportedReading {
 public:
  ReportedReading(Host& host, Progress& progress);
  ~ReportedReading();

  ReportedReading(ReportedReading const&) = delete;
  ReportedReading& operator=(ReportedReading const&) = delete;

 private:
  core::Database* database_;  // null for a database of another make
};

}  // namespace mox::cli
