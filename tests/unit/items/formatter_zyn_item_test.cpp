#include "zyn/items/formatter_zyn_item.h"

#include "unit/items/items_fixture.h"

using items_test::ItemsTest;

namespace {

class FormatterItem : public ItemsTest {
 protected:
  bool load(std::string const& content) {
    return item_->load(
        document("<moxFormatterZYNItem>" + content + "</moxFormatterZYNItem>")->root());
  }

  std::shared_ptr<moxFormatterZYNItem> item_ =
      host_.get<moxFormatterZYNItem>("moxFormatterZYNItem");
};

}  // namespace

TEST_F(FormatterItem, KnowsItsNameAndKind) {
  EXPECT_EQ(item_->name(), "moxFormatterZYNItem");
  EXPECT_EQ(item_->getTipo(), 2);
}

TEST_F(FormatterItem, WithoutFormatterHasNoDescriptionAndTakesNone) {
  EXPECT_EQ(item_->description(), "");
  item_->setDescription("x");
  EXPECT_EQ(item_->description(), "");
  EXPECT_EQ(std::as_const(*item_).getFormatter(), nullptr);
}

TEST_F(FormatterItem, WithoutFormatterClearsTheNodeAndIsSaved) {
  auto const target = document("<n a=\"1\"><c/></n>");
  EXPECT_TRUE(item_->save(target->root()));
  EXPECT_EQ(target->writeText(0, 0), "<n/>");
}

TEST_F(FormatterItem, ForwardsTheDescriptionToItsFormatter) {
  item_->setFormatterPlugin("moxTestFormatter");
  ASSERT_NE(item_->getFormatter(), nullptr);
  item_->setDescription("Moeda");
  EXPECT_EQ(item_->getFormatter()->getDescription(), "Moeda");
  EXPECT_EQ(item_->description(), "Moeda");
}

TEST_F(FormatterItem, MakesTheRoundTrip) {
  EXPECT_TRUE(load("<moxTestFormatter description=\"Moeda\"/>"));
  EXPECT_EQ(item_->description(), "Moeda");
  auto const target = document("<moxFormatterZYNItem/>");
  EXPECT_TRUE(item_->save(target->root()));
  EXPECT_EQ(target->writeText(0, 0),
            "<moxFormatterZYNItem><moxTestFormatter description=\"Moeda\"/>"
            "</moxFormatterZYNItem>");
}

TEST_F(FormatterItem, LoadFailsWithoutNodeChildOrFormatter) {
  EXPECT_FALSE(item_->load({}));
  EXPECT_FALSE(item_->save({}));
  EXPECT_FALSE(load(""));
  EXPECT_FALSE(load("<moxDataMatrix/>"));
}

TEST_F(FormatterItem, TheFormattersOwnLoadGivesTheResult) {
  EXPECT_FALSE(load("<moxTestFormatter refuse=\"1\"/>"));
}

TEST_F(FormatterItem, AnUnknownFormatterIsTheRegistrysError) {
  EXPECT_THROW(item_->setFormatterPlugin("moxUnheardOf"), moxPluginNotFound);
  EXPECT_THROW(load("<moxUnheardOf/>"), moxPluginNotFound);
}

TEST_F(FormatterItem, AClassThatIsNoFormatterLeavesTheItemWithout) {
  item_->setFormatterPlugin("moxTestFormatter");
  item_->setFormatterPlugin("moxDataMatrix");
  EXPECT_EQ(item_->getFormatter(), nullptr);
}
