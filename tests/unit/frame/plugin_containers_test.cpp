#include "zyn/frame/plugin_containers.h"

#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "core/session/session.h"
#include "mox/core/error.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_sorter.h"
#include "support/fake_module.h"
#include "support/test_host.h"

using fake_module::FakeObject;
using fake_module::ForeignInterface;
using mox::core::SessionScope;
using mox::core::User;

namespace {

class PluginContainers : public testing::Test {
 protected:
  PluginContainers() { host_.application().addModule(fake_module::entryPoints(), "fake"); }
  ~PluginContainers() override { moxSession = &host_.application().sessions(); }

  std::shared_ptr<FakeObject> get(char const* name) { return host_.get<FakeObject>(name); }

  TestHost host_;
};

/// A class that the registry does not know: its containers are the tests' own.
class Standalone final : public moxPluginBase {
 public:
  std::string name() const override { return "moxStandalone"; }
};

class Labelled final : public moxPluginBase {
 public:
  std::string name() const override { return "moxLabelled"; }
};

}  // namespace

template <>
struct PluginPermissionsOf<Labelled> {
  static moxPluginPermissions const* get() {
    static constexpr moxPluginPermissions kPermissions{"Fonte de dados", {}};
    return &kPermissions;
  }
};

TEST_F(PluginContainers, AnInternalClassIsNewOnEveryGet) {
  auto const first = host_.get<moxDataMatrix>("moxDataMatrix");
  auto const second = host_.get<moxDataMatrix>("moxDataMatrix");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
}

TEST_F(PluginContainers, AStaticClassIsTheSameObjectOnEveryGet) {
  auto const first = get(fake_module::kInternalStatic);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first, get(fake_module::kInternalStatic));
}

TEST_F(PluginContainers, AStaticClassIsMadeOnFirstDemand) {
  int const before = fake_module::madeObjects();
  get(fake_module::kInternalStatic);
  get(fake_module::kInternalStatic);
  EXPECT_EQ(fake_module::madeObjects(), before + 1);
}

TEST_F(PluginContainers, GetOfAnotherInterfaceIsEmptyAndMakesNothing) {
  EXPECT_EQ(host_.get<moxDataMatrixSorter>("moxDataMatrix"), nullptr);
  int const before = fake_module::madeObjects();
  EXPECT_EQ(host_.get<ForeignInterface>(fake_module::kInternal), nullptr);
  EXPECT_EQ(fake_module::madeObjects(), before);
}

TEST_F(PluginContainers, GetOfAnUnknownNameThrows) {
  EXPECT_THROW(host_.get<moxDataMatrix>("moxNobody"), moxPluginNotFound);
}

TEST_F(PluginContainers, WithoutASessionServiceCoreClassesAreUnavailableAndInternalOnesAreNot) {
  moxSession = nullptr;
  for (auto const* const name :
       {fake_module::kCore, fake_module::kCoreStatic, fake_module::kCoreStaticSession}) {
    EXPECT_EQ(get(name), nullptr) << name;
  }
  EXPECT_NE(get(fake_module::kInternal), nullptr);
  EXPECT_NE(get(fake_module::kInternalStatic), nullptr);
  EXPECT_NE(host_.get<moxDataMatrix>("moxDataMatrix"), nullptr);
}

TEST_F(PluginContainers, ASessionWithoutLibrariesMayUseCoreClasses) {
  host_.logIn({.id = 7});
  EXPECT_NE(get(fake_module::kCore), nullptr);
  EXPECT_NE(get(fake_module::kCoreStatic), nullptr);
  EXPECT_NE(get(fake_module::kCoreStaticSession), nullptr);
}

TEST_F(PluginContainers, ASessionWithTheLibraryMayUseCoreClasses) {
  host_.logIn({.id = 7, .libraries = {"OUTRA", "ZYNC"}});
  EXPECT_NE(get(fake_module::kCore), nullptr);
}

TEST_F(PluginContainers, ASessionWithOtherLibrariesOnlyMayNotUseCoreClasses) {
  host_.logIn({.id = 7, .libraries = {"OUTRA"}});
  EXPECT_EQ(get(fake_module::kCore), nullptr);
  EXPECT_EQ(get(fake_module::kCoreStatic), nullptr);
  EXPECT_EQ(get(fake_module::kCoreStaticSession), nullptr);
  EXPECT_NE(get(fake_module::kInternal), nullptr);
}

TEST_F(PluginContainers, LibraryNamesAreComparedByteByByte) {
  host_.logIn({.id = 7, .libraries = {"zync", "ZYNC2"}});
  EXPECT_EQ(get(fake_module::kCore), nullptr);
}

TEST_F(PluginContainers, TheListingTellsWhatTheSessionMayUse) {
  host_.logIn({.id = 7, .libraries = {"OUTRA"}});
  int available = 0;
  int unavailable = 0;
  for (auto const& entry : host_.application().registry().classes()) {
    if (entry.name.starts_with("moxFake")) {
      (entry.available ? available : unavailable) += 1;
    }
  }
  EXPECT_EQ(available, 2);
  EXPECT_EQ(unavailable, 3);
}

TEST_F(PluginContainers, ACoreClassThatHandsItselfOutKnowsItself) {
  auto const object = get(fake_module::kCore);
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->self(), object);
  EXPECT_NE(get(fake_module::kCore), object);
}

TEST_F(PluginContainers, TwoSessionsGetTwoInstances) {
  auto const one = host_.application().sessions().open(User{.id = 1});
  auto const other = host_.application().sessions().open(User{.id = 2});
  std::shared_ptr<FakeObject> ofOne;
  {
    SessionScope const scope(one);
    ofOne = get(fake_module::kCoreStaticSession);
    EXPECT_EQ(get(fake_module::kCoreStaticSession), ofOne);
  }
  SessionScope const scope(other);
  EXPECT_NE(get(fake_module::kCoreStaticSession), ofOne);
}

TEST_F(PluginContainers, AfterReleaseSessionTheNextInstanceIsAFreshOne) {
  moxCoreStaticSessionPluginContainer<Standalone> const container("moxStandalone");
  auto const one = host_.application().sessions().open(User{.id = 1});
  auto const other = host_.application().sessions().open(User{.id = 2});
  std::shared_ptr<moxPluginBase> ofOther;
  {
    SessionScope const scope(other);
    ofOther = container.getInstance();
  }
  SessionScope const scope(one);
  auto const before = container.getInstance();
  container.releaseSession(one->handle());
  auto const after = container.getInstance();
  EXPECT_NE(after, before);
  EXPECT_EQ(container.getInstance(), after);
  SessionScope const inOther(other);
  EXPECT_EQ(container.getInstance(), ofOther);
}

TEST_F(PluginContainers, AReleasedInstanceDiesWithItsLastUser) {
  auto session = host_.application().sessions().open(User{.id = 1});
  int const before = fake_module::liveObjects();
  std::shared_ptr<FakeObject> kept;
  {
    SessionScope const scope(session);
    kept = get(fake_module::kCoreStaticSession);
  }
  session.reset();
  EXPECT_EQ(fake_module::liveObjects(), before + 1);
  kept.reset();
  EXPECT_EQ(fake_module::liveObjects(), before);
}

TEST_F(PluginContainers, TheEndOfASessionDropsItsInstance) {
  int const before = fake_module::liveObjects();
  {
    SessionScope const scope(host_.application().sessions().open(User{.id = 1}));
    get(fake_module::kCoreStaticSession)->value = 5;
    EXPECT_EQ(fake_module::liveObjects(), before + 1);
  }
  EXPECT_EQ(fake_module::liveObjects(), before);
  SessionScope const scope(host_.application().sessions().open(User{.id = 1}));
  EXPECT_EQ(get(fake_module::kCoreStaticSession)->value, 0);
}

TEST_F(PluginContainers, ReleaseOfAnUnknownSessionIsIgnored) {
  moxCoreStaticSessionPluginContainer<Standalone> const container("moxStandalone");
  container.releaseSession(nullptr);
  container.releaseSession(&container);
}

TEST_F(PluginContainers, ASessionContainerWithoutASessionServiceGivesNothing) {
  moxSession = nullptr;
  moxCoreStaticSessionPluginContainer<Standalone> const container("moxStandalone");
  EXPECT_EQ(container.getInstance(), nullptr);
  EXPECT_FALSE(container.isAvaliable());
}

TEST_F(PluginContainers, ASessionContainerThatDiesIsForgottenByTheSessions) {
  auto session = host_.application().sessions().open(User{.id = 1});
  {
    SessionScope const scope(session);
    moxCoreStaticSessionPluginContainer<Standalone> const container("moxStandalone");
    container.getInstance();
  }
  session.reset();
}

TEST_F(PluginContainers, TypeAndNameAreKnownWithoutAnInstance) {
  moxInternalPluginContainer<Standalone> const container("moxRegistered");
  EXPECT_EQ(container.getTypeInfo(), typeid(Standalone));
  EXPECT_EQ(container.name(), "moxRegistered");
  EXPECT_EQ(&container.name(), &container.name());
}

TEST_F(PluginContainers, OnlyALabelledClassAsksPermissions) {
  EXPECT_EQ(moxInternalPluginContainer<Standalone>("x").getPermissions(), nullptr);
  EXPECT_EQ(moxCorePluginContainer<Standalone>("x").getPermissions(), nullptr);
  auto const* const permissions = moxInternalPluginContainer<Labelled>("x").getPermissions();
  ASSERT_NE(permissions, nullptr);
  EXPECT_STREQ(permissions->label, "Fonte de dados");
}

TEST_F(PluginContainers, KindsAreToldInWords) {
  EXPECT_EQ(moxInternalPluginContainer<Standalone>("x").containerKind(), "internal");
  EXPECT_EQ(moxInternalStaticPluginContainer<Standalone>("x").containerKind(), "internal static");
  EXPECT_EQ(moxCorePluginContainer<Standalone>("x").containerKind(), "core");
  EXPECT_EQ(moxCoreStaticPluginContainer<Standalone>("x").containerKind(), "core static");
  EXPECT_EQ(moxCoreStaticSessionPluginContainer<Standalone>("x").containerKind(),
            "core static session");
}
