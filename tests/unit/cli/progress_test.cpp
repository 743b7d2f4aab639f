#include "cli/output/progress.h"

#include <gtest/gtest.h>

namespace mox::cli {
namespace {

TEST(ProgressText, SaysWhatIsDoneAndHowFar) {
  EXPECT_EQ(progressText(Progress::Stage::kReading, 0), "reading ...");
  EXPECT_EQ(progressText(Progress::Stage::kReading, 999), "reading: 999 rows");
  EXPECT_EQ(progressText(Progress::Stage::kSorting, 1000), "sorting: 1,000 rows");
  EXPECT_EQ(progressText(Progress::Stage::kWriting, 1234567), "writing: 1,234,567 rows");
}

TEST(Progress, StopsTwiceWithoutHarm) {
  Progress progress(false);
  progress.report(Progress::Stage::kSorting, 3);
  progress.stop();
  progress.stop();
}

}  // namespace
}  // namespace mox::cli
