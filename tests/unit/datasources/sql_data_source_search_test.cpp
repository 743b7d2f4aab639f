#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "mox/zyn/search/search.h"
#include "unit/datasources/sql_source_fixture.h"

namespace {

using SqlDataSourceSearch = sql_source_test::SqlSourceTest;
using sql_source_test::failureOf;

std::string const kWithSearch =
    "<Command>s</Command><moxSearch InternalName=\"Procura\"><General/></moxSearch>";

}  // namespace

TEST_F(SqlDataSourceSearch, IsMadeByTheRegistryAndToldItsSource) {
  auto made = source(kWithSearch, "name=\"Alunos\"");
  auto const search = made->getSearch();
  ASSERT_NE(search, nullptr);
  EXPECT_EQ(search->description(), "Procura");
  EXPECT_EQ(search->dataSourceExterno(), "Alunos");
  EXPECT_EQ(search->getDataSource(), nullptr);
  EXPECT_EQ(std::as_const(*search).getDataSource(), made);
  EXPECT_EQ(search->getSqlDataSource(), made);
  EXPECT_EQ(made->getZynItemRelated(), search);
}

TEST_F(SqlDataSourceSearch, DoesNotKeepItsSourceAlive) {
  auto made = source(kWithSearch, "name=\"Alunos\"");
  std::weak_ptr<moxSQLDataSource> const watched = made;
  auto const search = made->getSearch();
  made.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(failureOf([&] { std::as_const(*search).getDataSource(); }).message,
            "Fonte de dados externa inválida");
}

TEST_F(SqlDataSourceSearch, IsWrittenLast) {
  auto const made = source(kWithSearch, "name=\"Alunos\"");
  EXPECT_EQ(textOf(*made),
            "<moxSQLDataSource name=\"Alunos\" VisibleName=\"\" whereand=\"\"><Command type=\"0\">s"
            "</Command><Columns/><moxSearch VisibleName=\"\" InternalName=\"Procura\">"
            "<General dataSource=\"Alunos\" requireFilter=\"0\" requirePermission=\"1\">"
            "<AutoFill atStartup=\"0\"/><Allowing Reorder=\"0\"/>"
            "<Geometry width=\"760\" height=\"450\"/></General></moxSearch></moxSQLDataSource>");
  made->setSearch({});
  EXPECT_EQ(textOf(*made).find("<moxSearch"), std::string::npos);
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
}

TEST_F(SqlDataSourceSearch, ThatNeedsAnUnknownClassKeepsTheSourceOutOfItsCollection) {
  std::string const withUnknown =
      "<Command>s</Command><moxSearch><General/><dataSource><moxNoSource/></dataSource>"
      "</moxSearch>";
  auto const collection = host_.get<moxZYNCollection>("moxZYNCollection");
  collection->unserialize(document("<moxZYNCollection>\n<moxSQLDataSource name=\"a\">" +
                                   withUnknown +
                                   "</moxSQLDataSource><moxSQLDataSource name=\"b\"/>"
                                   "</moxZYNCollection>")
                              ->root());
  EXPECT_EQ(collection->findItem("a"), nullptr);
  EXPECT_NE(collection->findItem("b"), nullptr);
  auto const skipped = dynamic_cast<moxZYNLoadReport const&>(*collection).skippedElements();
  ASSERT_EQ(skipped.size(), 1u);
  EXPECT_EQ(skipped[0].elementName, "moxSQLDataSource");
  EXPECT_EQ(skipped[0].line, 2);
  EXPECT_EQ(skipped[0].reason, "no class is registered under the name 'moxNoSource'");
}
