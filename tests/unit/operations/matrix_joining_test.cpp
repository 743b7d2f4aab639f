#include "zyn/operations/matrix_joining.h"

#include <gtest/gtest.h>

#include "support/foreign_column.h"
#include "support/matrix_builder.h"
#include "support/test_host.h"

using namespace mox_test;

TEST(MatrixJoining, AForeignColumnInTwoSourcesHasTheRowsOfEach) {
  TestHost host;
  auto const shared = std::make_shared<ForeignTextColumn>(
      "k", std::vector<std::optional<std::string>>{"a", "b", "c", "d"});
  auto const shorter = matrix({{"v", ints(1, 2)}});
  shorter->addColumn(shared);
  auto const longer = matrix({{"w", ints(5, 6, 7, 8)}});
  longer->addColumn(shared);
  MatrixJoining joining;
  joining.addSource({"short", shorter, {{"k", "chave"}}, {}});
  joining.addSource({"long", longer, {{"k", "outra"}, {"w", "w"}}, {}});

  EXPECT_THAT(joining.process(), isMatrix({{"chave", texts("a", "b", "a", "a", "a", "b", "b", "b")},
                                           {"outra", texts("a", "a", "b", "c", "d", "b", "c", "d")},
                                           {"w", ints(5, 5, 6, 7, 8, 6, 7, 8)}}));
}
