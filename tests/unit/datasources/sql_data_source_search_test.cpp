#include "mox/core/registry.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_collection.h"
#include "mox/zyn/items/zyn_load_report.h"
#include "mox/zyn/search/search.h"
#include "unit/datasources/sql_source_fixture.h"
#include "zyn/frame/plugin_containers.h"

namespace {

/// A search as far as its source deals with one: it keeps its name, and what it is told.
class ToldSearch final : public moxSearch {
 public:
  std::string name() const override { return "moxSearch"; }
  bool load(std::shared_ptr<moxXMLNode> node) override {
    internalName_ = node->readAttribute("name");
    return true;
  }
  bool save(std::shared_ptr<moxXMLNode> node) const override {
    node->writeAttribute("name", internalName_);
    return true;
  }
  std::string description() const override { return internalName_; }
  int getTipo() const override { return kSearch; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const&) override {}
  std::string getParentLibName() const override { return {}; }
  void setInternalName(std::string const& internalName) override { internalName_ = internalName; }
  void setHeaderName(std::string const&) override {}
  std::string getHeaderName() const override { return {}; }
  void setAllowReorder(bool) override {}
  void setAutoFill(bool) override {}
  bool allowReorder() const override { return false; }
  bool autoFill() const override { return false; }
  void setInitialSize(unsigned int, unsigned int) override {}
  unsigned int getInitialWidth() const override { return 0; }
  unsigned int getInitialHeight() const override { return 0; }
  std::shared_ptr<moxSQLDataSourceColumn const> getInitialOrderColumn() const override {
    return {};
  }
  bool getInitialOrderAscending() const override { return false; }
  void setInitialOrderColumn(std::shared_ptr<moxSQLDataSourceColumn const>, bool) override {}
  std::shared_ptr<moxDataSource> getDataSource() override { return {}; }
  std::shared_ptr<moxDataSource const> getDataSource() const override { return told_.lock(); }
  void setDataSource(std::shared_ptr<moxDataSource>) override {}
  std::string dataSourceExterno() const override { return toldName_; }
  void setDataSourceExterno(std::string const& name,
                            std::shared_ptr<moxDataSource const> dataSource) override {
    toldName_ = name;
    told_ = dataSource;
  }
  std::shared_ptr<moxSQLDataSource const> getSqlDataSource() const override { return {}; }
  void setRequireFilter(bool) override {}
  bool requireFilter() const override { return false; }
  void setRequirePermission(bool) override {}
  bool requirePermission() const override { return false; }

 private:
  std::string internalName_;
  std::string toldName_;
  std::weak_ptr<moxDataSource const> told_;
};

int registerSearch(moxPluginRegistry* registry) {
  registry->setLibraryName("search of the tests");
  registry->registerClass(std::make_unique<moxInternalPluginContainer<ToldSearch>>("moxSearch"));
  return 1;
}

void enterNowhere(VELMORApplication*, moxSessionService*) {}

class SqlDataSourceSearch : public sql_source_test::SqlSourceTest {
 protected:
  void addSearches() {
    host_.application().addModule(
        {moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck, enterNowhere, registerSearch},
        "the tests' search");
  }
};

std::string const kWithSearch = "<Command>s</Command><moxSearch name=\"Procura\"/>";

}  // namespace

TEST_F(SqlDataSourceSearch, IsMadeByTheRegistryAndToldItsSource) {
  addSearches();
  auto made = source(kWithSearch, "name=\"Alunos\"");
  auto const search = made->getSearch();
  ASSERT_NE(search, nullptr);
  EXPECT_EQ(search->description(), "Procura");
  EXPECT_EQ(search->dataSourceExterno(), "Alunos");
  EXPECT_EQ(std::as_const(*search).getDataSource(), made);
  EXPECT_EQ(made->getZynItemRelated(), search);
  made.reset();
  EXPECT_EQ(std::as_const(*search).getDataSource(), nullptr);
}

TEST_F(SqlDataSourceSearch, IsWrittenLast) {
  addSearches();
  auto const made = source(kWithSearch);
  EXPECT_EQ(textOf(*made),
            "<moxSQLDataSource name=\"\" VisibleName=\"\" whereand=\"\"><Command type=\"0\">s"
            "</Command><Columns/><moxSearch name=\"Procura\"/></moxSQLDataSource>");
  made->setSearch({});
  EXPECT_EQ(textOf(*made).find("<moxSearch"), std::string::npos);
  EXPECT_EQ(made->getZynItemRelated(), nullptr);
}

TEST_F(SqlDataSourceSearch, ThatNobodyRegisteredKeepsTheSourceOutOfItsCollection) {
  auto const collection = host_.get<moxZYNCollection>("moxZYNCollection");
  collection->unserialize(document("<moxZYNCollection>\n<moxSQLDataSource name=\"a\">" +
                                   kWithSearch +
                                   "</moxSQLDataSource><moxSQLDataSource name=\"b\"/>"
                                   "</moxZYNCollection>")
                              ->root());
  EXPECT_EQ(collection->findItem("a"), nullptr);
  EXPECT_NE(collection->findItem("b"), nullptr);
  auto const skipped = dynamic_cast<moxZYNLoadReport const&>(*collection).skippedElements();
  ASSERT_EQ(skipped.size(), 1u);
  EXPECT_EQ(skipped[0].elementName, "moxSQLDataSource");
  EXPECT_EQ(skipped[0].line, 2);
  EXPECT_EQ(skipped[0].reason, "no class is registered under the name 'moxSearch'");
}
