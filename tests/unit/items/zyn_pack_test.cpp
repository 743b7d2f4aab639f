#include "zyn/items/zyn_pack.h"

#include "unit/items/items_fixture.h"

using items_test::ItemsTest;

namespace {

class ZynPack : public ItemsTest {
 protected:
  std::shared_ptr<moxZYNPack> pack_ = host_.get<moxZYNPack>("moxZYNPack");
};

}  // namespace

TEST_F(ZynPack, KnowsItsNameAndKind) {
  EXPECT_EQ(pack_->name(), "moxZYNPack");
  EXPECT_EQ(pack_->getTipo(), 1);
  EXPECT_EQ(pack_->getZynItemRelated(), nullptr);
}

TEST_F(ZynPack, MakesTheRoundTrip) {
  std::string const text =
      "<moxZYNPack name=\"Alunos\"><moxTestPackItem value=\"1\"/><moxTestPackItem value=\"2\"/>"
      "</moxZYNPack>";
  EXPECT_TRUE(pack_->load(document(text)->root()));
  EXPECT_EQ(pack_->description(), "Alunos");
  EXPECT_EQ(pack_->items().get().size(), 2u);
  auto const target = host_.get<moxXMLDocument>("moxXMLDocument");
  target->create("moxZYNPack");
  EXPECT_TRUE(pack_->save(target->root()));
  EXPECT_EQ(target->writeText(0, 0), text);
}

TEST_F(ZynPack, KeepsLibraryAndDescription) {
  pack_->setParentLibraryName("L");
  pack_->setDescription("d");
  EXPECT_EQ(pack_->getParentLibName(), "L");
  EXPECT_EQ(pack_->description(), "d");
}

TEST_F(ZynPack, AClassThatIsNoPackItemLeavesAnEmptyPointer) {
  pack_->load(document("<p><moxTestItem/><moxTestPackItem/></p>")->root());
  ASSERT_EQ(pack_->items().get().size(), 2u);
  EXPECT_EQ(pack_->items().get()[0], nullptr);
}

TEST_F(ZynPack, AnEmptyNodeGivesFalse) {
  EXPECT_FALSE(pack_->load({}));
  EXPECT_FALSE(pack_->save({}));
}
