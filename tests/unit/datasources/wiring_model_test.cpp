// Random wirings run through the module give what filtering whole tables by hand gives.

#include <gtest/gtest.h>

#include "support/test_host.h"
#include "support/wiring/wiring_run.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned kWirings = 1'000;
#else
constexpr unsigned kWirings = 10'000;
#endif

}  // namespace

TEST(WiringModel, RandomWiringsGiveWhatAPlainReferenceGives) {
  TestHost host(TestHost::kMemoryDatabase);
  EXPECT_EQ(mox_test::wiring::differencesOf(host, 0, kWirings), "");
}
