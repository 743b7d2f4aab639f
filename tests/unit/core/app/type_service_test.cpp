#include "core/app/type_service.h"

#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

#include "core/app/application.h"
#include "mox/core/plugin_base.h"

namespace type_service_test {

struct Root {
  virtual ~Root() = default;
};
struct Single : Root {};
struct SingleOfSingle : Single {};
struct Other {
  virtual ~Other() = default;
};
struct Several : Single, Other {};
struct VirtualLeft : virtual Root {};
struct VirtualRight : virtual Root {};
struct Diamond : VirtualLeft, VirtualRight {};
struct PrivateOnly : private Root {};
struct ProtectedAndPublic : protected Root, public Other {};
struct ThroughPrivate : PrivateOnly {};
struct PrivateBesidePublic : private VirtualLeft, public VirtualRight {};
struct Unrelated {};

}  // namespace type_service_test

namespace {

using namespace type_service_test;

template <class Type, class Base>
bool isDerived() {
  return mox::core::TypeService().isDerivedFrom(typeid(Type), typeid(Base));
}

}  // namespace

TEST(TypeService, AClassIsItself) {
  EXPECT_TRUE((isDerived<Root, Root>()));
  EXPECT_TRUE((isDerived<Unrelated, Unrelated>()));
}

TEST(TypeService, SingleBasesAreFollowedToTheRoot) {
  EXPECT_TRUE((isDerived<Single, Root>()));
  EXPECT_TRUE((isDerived<SingleOfSingle, Root>()));
}

TEST(TypeService, ABaseIsNotDerivedFromItsChild) {
  EXPECT_FALSE((isDerived<Root, Single>()));
  EXPECT_FALSE((isDerived<Single, SingleOfSingle>()));
}

TEST(TypeService, EveryOneOfSeveralBasesIsFollowed) {
  EXPECT_TRUE((isDerived<Several, Single>()));
  EXPECT_TRUE((isDerived<Several, Root>()));
  EXPECT_TRUE((isDerived<Several, Other>()));
  EXPECT_FALSE((isDerived<Several, Unrelated>()));
}

TEST(TypeService, VirtualBasesAreFollowed) {
  EXPECT_TRUE((isDerived<VirtualLeft, Root>()));
  EXPECT_TRUE((isDerived<Diamond, Root>()));
  EXPECT_TRUE((isDerived<Diamond, VirtualRight>()));
}

TEST(TypeService, PrivateAndProtectedBasesDoNotCount) {
  EXPECT_FALSE((isDerived<PrivateOnly, Root>()));
  EXPECT_FALSE((isDerived<ThroughPrivate, Root>()));
  EXPECT_TRUE((isDerived<ThroughPrivate, PrivateOnly>()));
  EXPECT_FALSE((isDerived<ProtectedAndPublic, Root>()));
  EXPECT_TRUE((isDerived<ProtectedAndPublic, Other>()));
}

TEST(TypeService, OnePublicWayIsEnough) {
  EXPECT_FALSE((isDerived<PrivateBesidePublic, VirtualLeft>()));
  EXPECT_TRUE((isDerived<PrivateBesidePublic, Root>()));
}

TEST(TypeService, TypesThatAreNoClassesHaveNoBases) {
  EXPECT_TRUE((isDerived<int, int>()));
  EXPECT_FALSE((isDerived<int, Root>()));
  EXPECT_FALSE((isDerived<Root*, Root>()));
}

// The module has its own copy of the root's type, which nothing but the name makes equal to ours.
TEST(TypeService, AClassOfAnotherLibraryIsKnownByItsBases) {
  mox::core::Application application;
  application.loadModule(TEST_MODULE_DIR "/test_modules/sound_module.so");
  auto const object = application.get<moxPluginBase>("FixtureObject");
  ASSERT_NE(object, nullptr);
  auto const& type = typeid(*object);
  EXPECT_TRUE(application.typeService().isDerivedFrom(type, typeid(moxPluginBase)));
  EXPECT_FALSE(application.typeService().isDerivedFrom(type, typeid(Root)));
}
