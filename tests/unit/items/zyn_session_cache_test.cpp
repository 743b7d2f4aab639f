#include "zyn/items/zyn_session_cache.h"

#include "core/session/session.h"
#include "unit/items/items_fixture.h"

using items_test::ItemsTest;

namespace {

class ZynSessionCache : public ItemsTest {
 protected:
  ZynSessionCache() { cache_->appendCollection(collection("<moxTestItem name=\"a\"/>", "UM")); }

  std::shared_ptr<moxZYNSessionCache> own() {
    return host_.get<moxZYNSessionCache>("moxZYNSessionCache");
  }

  std::string libraryOf(std::string const& description) {
    auto const found = cache_->getCollection(description);
    return found ? found->getParentLibName() : "none";
  }

  std::shared_ptr<moxZYNCache> cache_ = host_.get<moxZYNCache>("moxZYNCache");
};

}  // namespace

TEST_F(ZynSessionCache, IsOneASession) {
  auto const first = host_.logIn({.id = 1});
  auto const firstCache = own();
  EXPECT_EQ(firstCache->name(), "moxZYNSessionCache");
  EXPECT_EQ(own(), firstCache);
  auto const second = host_.logIn({.id = 2});
  EXPECT_NE(own(), firstCache);
}

TEST_F(ZynSessionCache, IsNotSeededAgainAfterTheMainCacheHasGrown) {
  host_.logIn({.id = 1});
  EXPECT_EQ(libraryOf("a"), "UM");
  cache_->appendCollection(collection("<moxTestItem name=\"b\"/>", "UM"));
  EXPECT_EQ(libraryOf("b"), "none");
  host_.logIn({.id = 2});
  EXPECT_EQ(libraryOf("b"), "UM");
}

TEST_F(ZynSessionCache, SetItemsKeepsWhatIsThere) {
  host_.logIn({.id = 1});
  own()->setItems({{"x", {item("x")}}});
  own()->setItems({{"y", {item("y")}}});
  EXPECT_NE(own()->getCollection("x"), nullptr);
  EXPECT_EQ(own()->getCollection("y"), nullptr);
}

TEST_F(ZynSessionCache, ASessionSeesItsOwnDefinitionAndOthersDoNot) {
  auto const other = host_.logIn({.id = 2});
  host_.logOut();
  host_.logIn({.id = 1});
  own()->appendCollection(
      collection("<moxTestItem name=\"a\"/><moxTestItem name=\"n\"/>", "MINHA"));
  EXPECT_EQ(libraryOf("a"), "MINHA");
  EXPECT_EQ(libraryOf("n"), "MINHA");
  {
    mox::core::SessionScope const scope(other);
    EXPECT_EQ(libraryOf("a"), "UM");
    EXPECT_EQ(libraryOf("n"), "none");
  }
  host_.logOut();
  EXPECT_EQ(libraryOf("a"), "UM");
}

TEST_F(ZynSessionCache, AppendingBeforeTheFirstLookUpDoesNotHideTheSharedDefinitions) {
  host_.logIn({.id = 1});
  own()->appendCollection(collection("<moxTestItem name=\"n\"/>", "MINHA"));
  EXPECT_EQ(libraryOf("a"), "UM");
}

TEST_F(ZynSessionCache, AVisibleDefinitionIsReplacedInItsPlace) {
  cache_->appendCollection(collection("<moxTestItem name=\"a\"/>", "DOIS"));
  host_.logIn({.id = 1});
  own()->appendCollection(collection("<moxTestItem name=\"a\"/>", "MINHA"));
  auto const found = own()->getItemsByType(typeid(moxZYNItem));
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0]->getParentLibName(), "MINHA");
  EXPECT_EQ(found[1]->getParentLibName(), "DOIS");
}

TEST_F(ZynSessionCache, ADefinitionThatTheSessionMayNotSeeIsNotReplaced) {
  host_.logIn({.id = 1, .libraries = {"ZYNC", "MINHA"}});
  own()->appendCollection(collection("<moxTestItem name=\"a\"/>", "MINHA"));
  EXPECT_EQ(libraryOf("a"), "MINHA");
  EXPECT_EQ(own()->getItemsByType(typeid(moxZYNItem)).size(), 2u);
}

TEST_F(ZynSessionCache, ACollectionOfALibraryThatIsNotPermittedIsIgnored) {
  host_.logIn({.id = 1, .libraries = {"ZYNC", "UM"}});
  own()->appendCollection(collection("<moxTestItem name=\"n\"/>", "ALHEIA"));
  EXPECT_EQ(libraryOf("n"), "none");
  EXPECT_EQ(own()->getItemsByType(typeid(moxZYNItem)).size(), 1u);
}

TEST_F(ZynSessionCache, AnEmptyPointerThatWasEnteredIsBadTypeid) {
  host_.logIn({.id = 1});
  own()->setItems({{"x", {nullptr}}});
  EXPECT_EQ(own()->getCollection("x"), nullptr);
  EXPECT_THROW(own()->getItemsByType(typeid(moxZYNItem)), std::bad_typeid);
}

TEST_F(ZynSessionCache, ClearEmptiesIt) {
  host_.logIn({.id = 1});
  own()->appendCollection(collection("<moxTestItem name=\"n\"/>", "MINHA"));
  own()->clear();
  EXPECT_EQ(own()->getCollection("n"), nullptr);
  EXPECT_EQ(libraryOf("a"), "UM");
}

TEST_F(ZynSessionCache, ASeededSessionKeepsItsCopyWhenTheMainCacheIsCleared) {
  host_.logIn({.id = 1});
  EXPECT_EQ(libraryOf("a"), "UM");
  cache_->clear();
  EXPECT_EQ(libraryOf("a"), "UM");
  host_.logIn({.id = 2});
  EXPECT_EQ(libraryOf("a"), "none");
}

TEST_F(ZynSessionCache, AnAppendedItemIsNotSeenByASessionThatBorrowsTheSameMap) {
  auto const reader = host_.logIn({.id = 1});
  EXPECT_EQ(libraryOf("a"), "UM");
  host_.logOut();
  auto const writer = host_.logIn({.id = 2});
  own()->appendCollection(collection("<moxTestItem name=\"a\"/>", "MINHA"));
  EXPECT_EQ(libraryOf("a"), "MINHA");
  host_.logOut();
  EXPECT_EQ(libraryOf("a"), "UM");
}
