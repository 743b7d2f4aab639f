#include "zyn/datasources/user_defined_sort_option.h"

#include "unit/datasources/definition_fixture.h"

namespace {

using Order = std::pair<std::string, bool>;
using Offer = std::vector<std::pair<std::string, std::string>>;
using ColumnInfo = moxSorterDataSource::ColumnInfo;

class UserDefinedSortOptionTest : public mox_test::DefinitionTest {
 protected:
  std::shared_ptr<moxSorterDataSourceOption const> option() const {
    return std::dynamic_pointer_cast<moxSorterDataSourceOption const>(definition_->options().at(0));
  }

  std::shared_ptr<moxSorterDataSource> definition_ =
      host_.get<moxSorterDataSource>("moxSorterDataSource");
};

}  // namespace

TEST_F(UserDefinedSortOptionTest, IsNamedWithTheComponentThatShowsIt) {
  ASSERT_NE(option(), nullptr);
  EXPECT_EQ(option()->name(), "moxSorterDataSourceOption");
  EXPECT_EQ(option()->getVisualRepresentation(), "moxReportSorterDataSourceUserOption");
}

TEST_F(UserDefinedSortOptionTest, IsHeadedByTheDescriptionAsItIsNow) {
  auto const held = option();
  definition_->setDescription("Ordenar por");
  EXPECT_EQ(held->getName(), "Ordenar por");
}

TEST_F(UserDefinedSortOptionTest, ReadsAndWritesNothing) {
  SorterDataSource::UserDefinedSortOption made(nullptr);
  auto const node = document("<a b=\"c\"/>");
  EXPECT_FALSE(made.load(node->root()));
  EXPECT_FALSE(made.save(node->root()));
  EXPECT_FALSE(made.load(nullptr));
  EXPECT_FALSE(made.save(nullptr));
  EXPECT_EQ(node->writeText(0, 0), "<a b=\"c\"/>");
}

TEST_F(UserDefinedSortOptionTest, TheDefaultIsTheFirstColumnWithADirection) {
  definition_->setOrderColumn("a", "A", ColumnInfo::kSemDirecao);
  EXPECT_EQ(option()->getDefaultOrder(), Order("", false));
  definition_->setOrderColumn("b", "B", ColumnInfo::kDecrescente);
  definition_->setOrderColumn("c", "C", ColumnInfo::kCrescente);
  EXPECT_EQ(option()->getDefaultOrder(), Order("b", true));
  definition_->removeOrderColumn("b");
  EXPECT_EQ(option()->getDefaultOrder(), Order("c", false));
}

TEST_F(UserDefinedSortOptionTest, OffersEveryColumnWhateverItsDirection) {
  EXPECT_TRUE(option()->getAvailableColumns().empty());
  definition_->setOrderColumn("a", "A", ColumnInfo::kSemDirecao);
  definition_->setOrderColumn("b", "B", ColumnInfo::kDecrescente);
  EXPECT_EQ(option()->getAvailableColumns(), (Offer{{"a", "A"}, {"b", "B"}}));
}

TEST_F(UserDefinedSortOptionTest, MakesANewEmptyAnswerOnEveryCall) {
  auto const made = option()->createOptionData();
  EXPECT_EQ(made->name(), "moxSorterDataSourceOptionData");
  EXPECT_NE(made, option()->createOptionData());
  auto const answer = std::dynamic_pointer_cast<moxSorterDataSourceOptionData>(made);
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer->getOrder(), Order("", false));
  answer->setOrder("nota", true);
  EXPECT_EQ(answer->getOrder(), Order("nota", true));
}

TEST_F(UserDefinedSortOptionTest, KeepsTheDefinitionThatItSpeaksFor) {
  definition_->setDescription("Ordenar por");
  auto const held = option();
  std::weak_ptr<moxSorterDataSource> const watched = definition_;
  definition_.reset();
  EXPECT_FALSE(watched.expired());
  EXPECT_EQ(held->getName(), "Ordenar por");
}

TEST_F(UserDefinedSortOptionTest, OneThatTheDefinitionDroppedIsStillGood) {
  definition_->setOrderColumn("a", "A", ColumnInfo::kDecrescente);
  auto const held = option();
  definition_->setUserDefined(false);
  EXPECT_EQ(held->getDefaultOrder(), Order("a", true));
}

TEST_F(UserDefinedSortOptionTest, IsOneObjectForAllWhoAsk) {
  EXPECT_EQ(option(), option());
}

TEST_F(UserDefinedSortOptionTest, ADefinitionThatNoSharedPointerHoldsCannotHandItOut) {
  SorterDataSource onTheStack;
  EXPECT_THROW((void)onTheStack.options(), std::bad_weak_ptr);
}
