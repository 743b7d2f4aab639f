#include <gtest/gtest.h>

#include "mox/core/error.h"
#include "mox/core/xml.h"
#include "mox/zyn/matrix/aggregation_function.h"
#include "mox/zyn/matrix/data_matrix_aggregator.h"
#include "support/test_host.h"
#include "unit/operations/made_aggregator.h"

using namespace mox_test;

TEST(DataMatrixAggregatorXml, GoesThroughXml) {
  TestHost host;
  auto const engine = aggregator(host, {"turma", "ano"},
                                 {{"moxDoubleAvg", "nota", "media"}, {"moxTextFirst", "a", "b"}});
  auto const document = host.get<moxXMLDocument>("moxXMLDocument");
  EXPECT_TRUE(engine->save(document->root()));
  std::string const text =
      "<moxDataMatrixAggregator><Indexes><Index name=\"turma\"/><Index name=\"ano\"/></Indexes>"
      "<Functions><moxDoubleAvg source=\"nota\" target=\"media\"/>"
      "<moxTextFirst source=\"a\" target=\"b\"/></Functions></moxDataMatrixAggregator>";
  EXPECT_EQ(document->writeText(0, 0), text);

  auto const loaded = aggregator(host, {"old"}, {{"moxTextLast", "x", "y"}});
  EXPECT_TRUE(loaded->load(document->root()));
  document->create();
  EXPECT_TRUE(loaded->save(document->root()));
  EXPECT_EQ(document->writeText(0, 0), text);
}

TEST(DataMatrixAggregatorXml, AnEmptyNodeChangesNothing) {
  TestHost host;
  auto const engine = aggregator(host, {"k"}, {{"moxTextLast", "x", "y"}});
  EXPECT_FALSE(engine->load(nullptr));
  EXPECT_FALSE(engine->save(nullptr));
  EXPECT_EQ(engine->getIndexes(), std::vector<std::string>{"k"});
  EXPECT_EQ(engine->getFunctions().size(), 1U);
}

TEST(DataMatrixAggregatorXml, LoadWithoutListsEmptiesBoth) {
  TestHost host;
  auto const engine = aggregator(host, {"k"}, {{"moxTextLast", "x", "y"}});
  EXPECT_TRUE(engine->load(host.get<moxXMLDocument>("moxXMLDocument")->root()));
  EXPECT_TRUE(engine->getIndexes().empty());
  EXPECT_TRUE(engine->getFunctions().empty());
}

TEST(DataMatrixAggregatorXml, LoadFailsForAnUnknownFunctionAndPassesOverOtherClasses) {
  TestHost host;
  auto const document = host.get<moxXMLDocument>("moxXMLDocument");
  document->loadText("<a><Functions><moxTextFirst/><moxNoSuch/></Functions></a>");
  auto const engine = aggregator(host, {"k"}, {});
  EXPECT_THROW(engine->load(document->root()), moxPluginNotFound);
  EXPECT_EQ(engine->getIndexes(), std::vector<std::string>{"k"}) << "all stays as it was";

  document->loadText("<a><Functions><moxDataMatrix/><moxTextFirst/></Functions></a>");
  EXPECT_TRUE(engine->load(document->root()));
  ASSERT_EQ(engine->getFunctions().size(), 1U);
  EXPECT_EQ(engine->getFunctions().front()->name(), "moxTextFirst");
}

TEST(DataMatrixAggregatorXml, LoadTakesANameOnce) {
  TestHost host;
  auto const document = host.get<moxXMLDocument>("moxXMLDocument");
  document->loadText(
      "<a><Indexes><Index name='b'/><Index name='a'/><Index name='b'/></Indexes></a>");
  auto const engine = aggregator(host, {}, {});
  EXPECT_TRUE(engine->load(document->root()));
  EXPECT_EQ(engine->getIndexes(), (std::vector<std::string>{"b", "a"}));
}
