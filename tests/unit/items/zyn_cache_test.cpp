#include "zyn/items/zyn_cache.h"

#include "core/session/session.h"
#include "unit/items/items_fixture.h"

using items_test::ItemsTest;
using items_test::TestItem;

namespace {

class ZynCache : public ItemsTest {
 protected:
  void append(std::string const& content, std::string const& library = "") {
    cache_->appendCollection(collection(content, library));
  }

  std::string libraryOf(std::string const& description) {
    auto const found = cache_->getCollection(description);
    return found ? found->getParentLibName() : "none";
  }

  std::vector<std::string> described(std::type_info const& type) {
    std::vector<std::string> list;
    for (auto const& found : cache_->getItemsByType(type)) {
      list.push_back(found->description() + "/" + found->getParentLibName());
    }
    return list;
  }

  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
};

using Texts = std::vector<std::string>;

}  // namespace

TEST_F(ZynCache, IsOneForTheProcess) {
  EXPECT_EQ(cache_->name(), "moxZYNCache");
  EXPECT_EQ(host_.get<moxZYNCache>("moxZYNCache"), cache_);
}

TEST_F(ZynCache, AnUnknownNameGivesAnEmptyPointerWithASessionAndWithoutOne) {
  append("<moxTestItem name=\"a\"/>");
  EXPECT_EQ(cache_->getCollection("b"), nullptr);
  host_.logIn({.id = 1});
  EXPECT_EQ(cache_->getCollection("b"), nullptr);
  EXPECT_NE(cache_->getCollection("a"), nullptr);
}

TEST_F(ZynCache, OfTwoCollectionsThatDefineTheSameTheFirstOneLoadedIsGiven) {
  append("<moxTestItem name=\"a\"/>", "UM");
  append("<moxTestItem name=\"a\"/>", "DOIS");
  EXPECT_EQ(libraryOf("a"), "UM");
  EXPECT_EQ(described(typeid(TestItem)), (Texts{"a/UM", "a/DOIS"}));
  host_.logIn({.id = 1});
  EXPECT_EQ(libraryOf("a"), "UM");
}

TEST_F(ZynCache, OfTwoCollectionsThatDefineTheSameASessionGetsTheOneThatItMaySee) {
  append("<moxTestItem name=\"a\"/>", "UM");
  append("<moxTestItem name=\"a\"/>", "DOIS");
  host_.logIn({.id = 1, .libraries = {"ZYNC", "DOIS"}});
  EXPECT_EQ(libraryOf("a"), "DOIS");
  host_.logIn({.id = 2, .libraries = {"ZYNC"}});
  EXPECT_EQ(libraryOf("a"), "none");
}

TEST_F(ZynCache, AUserWithoutTheModulesLibraryIsHeldToHisLibrariesAllTheSame) {
  append("<moxTestItem name=\"a\"/>", "UM");
  host_.logIn({.id = 1, .libraries = {"OUTRA"}});
  EXPECT_EQ(libraryOf("a"), "none");
}

TEST_F(ZynCache, AnEmptyLibraryNameIsPermittedWhenNothingIsRestrictedOrItIsNamed) {
  append("<moxTestItem name=\"a\"/>");
  host_.logIn({.id = 1});
  EXPECT_EQ(libraryOf("a"), "");
  host_.logIn({.id = 2, .libraries = {"ZYNC"}});
  EXPECT_EQ(libraryOf("a"), "none");
  host_.logIn({.id = 3, .libraries = {"ZYNC", ""}});
  EXPECT_EQ(libraryOf("a"), "");
}

TEST_F(ZynCache, APackIsGivenItself) {
  append("<moxZYNPack name=\"p\"/>");
  ASSERT_NE(cache_->getCollection("p"), nullptr);
  EXPECT_EQ(cache_->getCollection("p")->name(), "moxZYNPack");
}

TEST_F(ZynCache, AnItemWithARelatedOneIsFoundUnderBothNamesAndListedOnce) {
  append("<moxTestItem name=\"fonte\" related=\"busca\"/>", "L");
  auto const found = cache_->getCollection("busca");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->description(), "fonte");
  EXPECT_EQ(cache_->getCollection("fonte"), found);
  EXPECT_EQ(found->getParentLibName(), "L");
  EXPECT_EQ(found->getZynItemRelated()->getParentLibName(), "L");
  EXPECT_EQ(described(typeid(TestItem)), (Texts{"fonte/L"}));
}

TEST_F(ZynCache, EmptyPointersOfACollectionAreNotEntered) {
  append("<moxTestItem name=\"a\"/><moxDataMatrix/><moxTestItem name=\"b\"/>");
  EXPECT_NE(cache_->getCollection("b"), nullptr);
  EXPECT_EQ(described(typeid(moxZYNItem)), (Texts{"a/", "b/"}));
}

TEST_F(ZynCache, ItemsByTypeComeByDescriptionWithDerivedOnes) {
  append("<moxTestItem name=\"c\"/><moxDerivedItem name=\"a\"/><moxZYNPack name=\"b\"/>");
  EXPECT_EQ(described(typeid(TestItem)), (Texts{"a/", "c/"}));
  EXPECT_EQ(described(typeid(items_test::DerivedItem)), (Texts{"a/"}));
  EXPECT_EQ(described(typeid(moxZYNPack)), (Texts{"b/"}));
  host_.logIn({.id = 1});
  EXPECT_EQ(described(typeid(TestItem)), (Texts{"a/", "c/"}));
}

TEST_F(ZynCache, ClearLeavesWhatIsInUseToItsUsers) {
  append("<moxTestItem name=\"a\"/>");
  auto const held = cache_->getCollection("a");
  cache_->clear();
  EXPECT_EQ(cache_->getCollection("a"), nullptr);
  EXPECT_EQ(held->description(), "a");
}

TEST_F(ZynCache, TellsWhatItsCollectionsLeftOutUntilItIsCleared) {
  append("<moxUnheardOf/>", "L");
  auto const& report = dynamic_cast<moxZYNLoadReport const&>(*cache_);
  ASSERT_EQ(report.skippedElements().size(), 1u);
  EXPECT_EQ(report.skippedElements()[0].elementName, "moxUnheardOf");
  EXPECT_EQ(report.skippedElements()[0].library, "L");
  cache_->clear();
  EXPECT_TRUE(report.skippedElements().empty());
}
