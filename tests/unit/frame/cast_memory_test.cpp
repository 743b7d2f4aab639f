#include "zyn/frame/cast_memory.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace {

struct Root {
  virtual ~Root() = default;
};

struct Left : virtual Root {
  int left = 1;
};

struct Right : virtual Root {
  int right = 2;
};

struct Both : Left, Right {};
struct Turned : Right, Left {};

template <class To>
void expectAsDynamicCast(Root* object) {
  EXPECT_EQ(castOf<To>(object), dynamic_cast<To*>(object));
  EXPECT_EQ(castOf<To const>(const_cast<Root const*>(object)),
            dynamic_cast<To const*>(const_cast<Root const*>(object)));
}

void expectAllAsDynamicCast() {
  Left left;
  Right right;
  Both both;
  Both another;
  Turned turned;
  for (int round = 0; round < 3; ++round) {
    for (Root* const object :
         std::array<Root*, 6>{&left, &right, &both, &another, &turned, nullptr}) {
      expectAsDynamicCast<Left>(object);
      expectAsDynamicCast<Right>(object);
      expectAsDynamicCast<Both>(object);
      expectAsDynamicCast<Root>(object);
    }
  }
}

TEST(CastMemory, CastsAreAsDynamicCastWithAndWithoutIt) {
  expectAllAsDynamicCast();
  CastMemory const outer;
  expectAllAsDynamicCast();
  {
    CastMemory const inner;
    expectAllAsDynamicCast();
  }
  expectAllAsDynamicCast();
}

TEST(CastMemory, SharedPointersShareTheirObject) {
  CastMemory const casts;
  std::shared_ptr<Root> const object = std::make_shared<Both>();
  auto const right = sharedCastOf<Right>(object);
  EXPECT_EQ(right.get(), dynamic_cast<Right*>(object.get()));
  EXPECT_EQ(object.use_count(), 2);
  EXPECT_EQ(sharedCastOf<Turned>(object), nullptr);
  EXPECT_EQ(sharedCastOf<Right>(std::shared_ptr<Root>()), nullptr);
}

}  // namespace
