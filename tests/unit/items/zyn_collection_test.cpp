#include "zyn/items/zyn_collection.h"

#include "unit/items/items_fixture.h"

using items_test::ItemsTest;

namespace {

class ZynCollection : public ItemsTest {};

moxZYNLoadReport const& reportOf(moxZYNCollection const& collection) {
  return dynamic_cast<moxZYNLoadReport const&>(collection);
}

}  // namespace

TEST_F(ZynCollection, KnowsItsName) {
  EXPECT_EQ(newCollection()->name(), "moxZYNCollection");
}

TEST_F(ZynCollection, WithoutItemsIsAnElementWithOneAttributeAndReadsBack) {
  auto const empty = newCollection();
  empty->setParentLibraryName("ESCOLA");
  EXPECT_EQ(textOf(*empty), "<moxZYNCollection parentLibraryName=\"ESCOLA\"/>");
  auto const read = collection("", "ESCOLA");
  EXPECT_EQ(read->getParentLibraryName(), "ESCOLA");
  EXPECT_TRUE(read->items().get().empty());
}

TEST_F(ZynCollection, ItemsMakeTheRoundTripInOrder) {
  auto const read = collection(
      "<moxTestItem name=\"b\"/><moxDerivedItem name=\"a\"/>"
      "<moxZYNPack name=\"p\"><moxTestPackItem value=\"v\"/></moxZYNPack>",
      "L");
  EXPECT_EQ(textOf(*read),
            "<moxZYNCollection parentLibraryName=\"L\"><moxTestItem name=\"b\"/>"
            "<moxDerivedItem name=\"a\"/><moxZYNPack name=\"p\"><moxTestPackItem value=\"v\"/>"
            "</moxZYNPack></moxZYNCollection>");
}

TEST_F(ZynCollection, FindItemGivesTheFirstOfTwoWithTheSameDescription) {
  auto const read = collection("<moxTestItem name=\"x\"/><moxDerivedItem name=\"x\"/>");
  ASSERT_NE(read->findItem("x"), nullptr);
  EXPECT_EQ(read->findItem("x")->name(), "moxTestItem");
}

TEST_F(ZynCollection, FindItemComparesBytes) {
  auto const read = collection("<moxTestItem name=\"Ação\"/>");
  EXPECT_NE(read->findItem("Ação"), nullptr);
  EXPECT_EQ(read->findItem("ação"), nullptr);
  EXPECT_EQ(read->findItem(""), nullptr);
}

TEST_F(ZynCollection, AnItemThatRefusesEndsTheListAndIsNotAdded) {
  auto const read = newCollection();
  auto const text = document(
      "<r><moxTestItem name=\"a\"/><moxTestItem name=\"b\" refuse=\"1\"/>"
      "<moxTestItem name=\"c\"/></r>");
  EXPECT_TRUE(read->unserialize(text->root()));
  ASSERT_EQ(read->items().get().size(), 1u);
  EXPECT_EQ(read->items().get()[0]->description(), "a");
}

TEST_F(ZynCollection, AClassThatIsNoItemLeavesAnEmptyPointerThatOthersPassOver) {
  auto const read =
      collection("<moxTestItem name=\"a\"/><moxDataMatrix/><moxTestItem name=\"b\"/>");
  ASSERT_EQ(read->items().get().size(), 3u);
  EXPECT_EQ(read->items().get()[1], nullptr);
  EXPECT_NE(read->findItem("b"), nullptr);
  EXPECT_EQ(textOf(*read),
            "<moxZYNCollection parentLibraryName=\"\"><moxTestItem name=\"a\"/>"
            "<moxTestItem name=\"b\"/></moxZYNCollection>");
}

TEST_F(ZynCollection, AnUnknownClassIsReportedByNameWithoutHarmToTheOthers) {
  auto const read = collection(
      "<moxTestItem name=\"a\"/>\n<moxUnheardOf name=\"u\"/>\n<moxTestItem name=\"b\"/>", "L");
  EXPECT_EQ(read->items().get().size(), 2u);
  EXPECT_NE(read->findItem("b"), nullptr);
  auto const skipped = reportOf(*read).skippedElements();
  ASSERT_EQ(skipped.size(), 1u);
  EXPECT_EQ(skipped[0].elementName, "moxUnheardOf");
  EXPECT_EQ(skipped[0].line, 2);
  EXPECT_EQ(skipped[0].reason, "no class is registered under the name 'moxUnheardOf'");
  EXPECT_EQ(skipped[0].library, "L");
}

TEST_F(ZynCollection, UnknownClassesInsideItemsAreReportedToo) {
  auto const read = collection(
      "<moxZYNPack name=\"p\"><moxUnheardOf/><moxTestPackItem value=\"v\"/></moxZYNPack>"
      "<moxFormatterZYNItem><moxNoFormatter/></moxFormatterZYNItem>"
      "<moxTestItem name=\"last\"/>");
  EXPECT_EQ(read->items().get().size(), 2u);
  EXPECT_NE(read->findItem("last"), nullptr);
  auto const skipped = reportOf(*read).skippedElements();
  ASSERT_EQ(skipped.size(), 2u);
  EXPECT_EQ(skipped[0].elementName, "moxUnheardOf");
  EXPECT_EQ(skipped[1].elementName, "moxFormatterZYNItem");
  EXPECT_EQ(skipped[1].reason, "no class is registered under the name 'moxNoFormatter'");
}

TEST_F(ZynCollection, ASaveThatFailsEndsTheListAndTheResultIsTrueAllTheSame) {
  auto const written = newCollection();
  auto const second = item("b");
  second->unsaveable = true;
  for (auto const& each : {item("a"), second, item("c")}) {
    written->items().add(each);
  }
  auto const target = host_.get<moxXMLDocument>("moxXMLDocument");
  EXPECT_TRUE(written->serialize(target->root()));
  EXPECT_EQ(target->writeText(0, 0),
            "<moxZYNCollection parentLibraryName=\"\"><moxTestItem name=\"a\"/>"
            "<moxTestItem name=\"b\"/></moxZYNCollection>");
}

TEST_F(ZynCollection, ReadingAddsToWhatIsThere) {
  auto const read = collection("<moxTestItem name=\"a\"/>");
  read->unserialize(document("<r><moxTestItem name=\"b\"/></r>")->root());
  EXPECT_EQ(read->items().get().size(), 2u);
}

TEST_F(ZynCollection, AnEmptyNodeGivesFalse) {
  EXPECT_FALSE(newCollection()->serialize({}));
  EXPECT_FALSE(newCollection()->unserialize({}));
}
