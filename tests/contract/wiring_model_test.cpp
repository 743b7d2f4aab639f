// Random wirings give what filtering whole tables by hand gives, whichever database holds them.

#include "support/databases.h"
#include "support/test_host.h"
#include "support/wiring/wiring_run.h"

namespace mox_test {

class WiringModel : public OnEveryDatabase {};

MOX_ON_EVERY_DATABASE(WiringModel);

TEST_P(WiringModel, RandomWiringsGiveWhatAPlainReferenceGives) {
  TestHost host(db.url());
  EXPECT_EQ(wiring::differencesOf(host, 20'000, 500), "");
}

}  // namespace mox_test
