#include "cli/reported_reading.h"

#include "core/database/database.h"

namespace mox::cli {

ReportedReading::ReportedReading(Host& host, Progress& progress)
    : database_(dynamic_cast<core::Database*>(&host.application().databaseConnection())) {
  if (database_ != nullptr) {
    database_->setRowObserver(
        [&progress](std::int64_t rows) { progress.report(Progress::Stage::kReading, rows); });
  }
}

ReportedReading::~ReportedReading() {
  if (database_ != nullptr) {
    database_->setRowObserver({});
  }
}

}  // namespace mox::cli
