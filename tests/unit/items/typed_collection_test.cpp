#include "zyn/items/typed_collection.h"

#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "mox/core/error.h"

namespace {

struct Owner {
  void entered(std::shared_ptr<int> item) { seen.push_back(std::move(item)); }

  std::vector<std::shared_ptr<int>> seen;
};

using List = moxSortableTypedCollectionImplementation<int, Owner>;

struct Named {
  std::string title() const { return text; }

  std::string text;
};

struct NamedOwner {};

using NamedList = moxNamedSortableTypedCollectionImplementation<Named, NamedOwner, &Named::title>;

std::string textOf(List& list) {
  std::string text;
  for (auto const& item : list.get()) {
    text += item ? std::to_string(*item) : "-";
  }
  return text;
}

class TypedCollection : public testing::Test {
 protected:
  TypedCollection() {
    for (auto const& item : {a_, b_, c_}) {
      list_.add(item);
    }
  }

  std::string replaceMessage(std::shared_ptr<int> item, std::shared_ptr<int> original) {
    try {
      list_.replace(item, original);
    } catch (moxError const& error) {
      return error.errorMessage();
    }
    return {};
  }

  Owner owner_;
  List list_{&owner_, &Owner::entered};
  std::shared_ptr<int> a_ = std::make_shared<int>(1);
  std::shared_ptr<int> b_ = std::make_shared<int>(2);
  std::shared_ptr<int> c_ = std::make_shared<int>(3);
  std::shared_ptr<int> foreign_ = std::make_shared<int>(9);
};

}  // namespace

TEST_F(TypedCollection, AddOfTheSamePointerTwiceHoldsItOnceAndTellsTheOwnerOnce) {
  list_.add(b_);
  EXPECT_EQ(textOf(list_), "123");
  EXPECT_EQ(owner_.seen, (std::vector<std::shared_ptr<int>>{a_, b_, c_}));
}

TEST_F(TypedCollection, WithoutOwnerOrOperationNobodyIsTold) {
  List alone;
  alone.add(a_);
  List silent(&owner_);
  silent.add(a_);
  EXPECT_EQ(textOf(alone), "1");
  EXPECT_EQ(textOf(silent), "1");
  EXPECT_EQ(owner_.seen.size(), 3u);
}

TEST_F(TypedCollection, TheOwnerIsNotToldOfAnEmptyPointer) {
  list_.append({});
  EXPECT_EQ(textOf(list_), "123-");
  EXPECT_EQ(owner_.seen.size(), 3u);
}

TEST_F(TypedCollection, EraseTellsWhetherTheObjectWasThere) {
  EXPECT_TRUE(list_.erase(b_));
  EXPECT_FALSE(list_.erase(b_));
  EXPECT_EQ(textOf(list_), "13");
}

TEST_F(TypedCollection, GetIsACopy) {
  list_.get().clear();
  EXPECT_EQ(textOf(list_), "123");
  EXPECT_EQ(std::as_const(list_).get().size(), 3u);
}

TEST_F(TypedCollection, ReplaceTakesThePlaceWithoutTellingTheOwner) {
  list_.replace(foreign_, b_);
  EXPECT_EQ(textOf(list_), "193");
  EXPECT_EQ(owner_.seen.size(), 3u);
}

TEST_F(TypedCollection, ReplaceWithoutOriginalFails) {
  EXPECT_EQ(replaceMessage(foreign_, {}), "Replace without original Item. Did you mean add?");
  EXPECT_EQ(textOf(list_), "123");
}

TEST_F(TypedCollection, ReplaceOfAnUnknownOriginalFailsAndChangesNothing) {
  EXPECT_EQ(replaceMessage(a_, foreign_), "Original doesn't belong to collection.");
  EXPECT_EQ(textOf(list_), "123");
}

TEST_F(TypedCollection, MoveBeforeNothingPutsLast) {
  list_.move(a_, {});
  EXPECT_EQ(textOf(list_), "231");
}

TEST_F(TypedCollection, MoveFromBehindPutsDirectlyInFront) {
  list_.move(c_, a_);
  EXPECT_EQ(textOf(list_), "312");
}

TEST_F(TypedCollection, MoveFromTheFrontPutsDirectlyInFront) {
  list_.move(a_, c_);
  EXPECT_EQ(textOf(list_), "213");
}

TEST_F(TypedCollection, MoveOfOrBeforeAStrangerOrItselfChangesNothing) {
  list_.move(foreign_, a_);
  list_.move(a_, foreign_);
  list_.move(b_, b_);
  EXPECT_EQ(textOf(list_), "123");
}

TEST_F(TypedCollection, MovesEqualTakingOutAndPuttingIn) {
  std::mt19937 random(7);
  std::vector<std::shared_ptr<int>> plain = {a_, b_, c_};
  for (int i = 4; i < 9; ++i) {
    plain.push_back(std::make_shared<int>(i));
    list_.add(plain.back());
  }
  for (int round = 0; round < 500; ++round) {
    auto const item = plain[random() % plain.size()];
    auto const before = random() % 5 == 0 ? nullptr : plain[random() % plain.size()];
    list_.move(item, before);
    if (item != before) {
      std::erase(plain, item);
      plain.insert(before ? std::find(plain.begin(), plain.end(), before) : plain.end(), item);
    }
    ASSERT_EQ(list_.get(), plain) << "round " << round;
  }
}

TEST(NamedTypedCollection, FindsTheFirstOfAName) {
  NamedList list;
  auto const first = std::make_shared<Named>(Named{"b"});
  list.add(std::make_shared<Named>(Named{"a"}));
  list.append(nullptr);
  list.add(first);
  list.add(std::make_shared<Named>(Named{"b"}));
  EXPECT_EQ(list.findByName("b"), first);
  EXPECT_EQ(std::as_const(list).findByName("b"), first);
  EXPECT_EQ(list.findByName("B"), nullptr);
  EXPECT_EQ(NamedList().findByName(""), nullptr);
}
