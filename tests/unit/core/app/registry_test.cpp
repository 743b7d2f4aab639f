#include "core/app/registry.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "core/app/host_container.h"
#include "core/app/type_service.h"
#include "mox/core/error.h"

using mox::core::HostContainer;
using mox::core::Registration;
using mox::core::Registry;

namespace {

class Interface : public virtual moxPluginBase {};

int constructed = 0;

class Implementation final : public Interface {
 public:
  Implementation() { ++constructed; }
  std::string name() const override { return "moxInterface"; }
};

class OtherInterface : public virtual moxPluginBase {};

class Unavailable final : public moxCorePluginBasicContainer {
 public:
  void setParentLibraryName(std::string const& libraryName) override { library = libraryName; }
  bool isAvaliable() const override { return false; }
  std::shared_ptr<moxPluginBase> getInstance() const override {
    throw std::logic_error("an unavailable class was made");
  }
  std::type_info const& getTypeInfo() const override { return typeid(Implementation); }
  moxPluginPermissions const* getPermissions() const override { return nullptr; }
  std::string const& name() const override { return name_; }
  std::string containerKind() const override { return "core"; }

  std::string library;

 private:
  std::string const name_ = "moxUnavailable";
};

/// Notes what is done to it, in a list shared by several.
class NotingService final : public moxServiceBase {
 public:
  NotingService(std::string name, std::vector<std::string>& notes)
      : name_(std::move(name)), notes_(notes) {}
  ~NotingService() override { notes_.push_back("gone " + name_); }

  std::string name() const override { return name_; }
  void start() override {
    if (failsToStart) {
      throw moxDefaultErrorImpl<moxError>("cannot start " + name_);
    }
    notes_.push_back("start " + name_);
  }
  void stop() override {
    notes_.push_back("stop " + name_);
    if (failsToStop) {
      throw moxDefaultErrorImpl<moxError>("cannot stop " + name_);
    }
  }
  bool canStart() override { return mayStart; }
  bool verifyProperties(Properties properties) override { return properties == kind; }
  void setParentLibraryName(std::string const& libraryName) override { library_ = libraryName; }
  std::string getParentLibraryName() const override { return library_; }

  bool failsToStart = false;
  bool failsToStop = false;
  bool mayStart = true;
  Properties kind = kStartsWithApplication;

 private:
  std::string const name_;
  std::vector<std::string>& notes_;
  std::string library_;
};

class RegistryTest : public testing::Test {
 protected:
  void add(std::function<void(moxPluginRegistry&)> const& enter) {
    auto registration = registry_.newRegistration();
    registration.setLibraryName("LIB");
    enter(registration);
    registry_.add(std::move(registration));
  }

  NotingService& addService(std::string const& name) {
    auto service = std::make_unique<NotingService>(name, notes_);
    auto& added = *service;
    add([&](moxPluginRegistry& registry) { registry.registerService(std::move(service)); });
    return added;
  }

  void addInterface() {
    add([](moxPluginRegistry& registry) {
      registry.registerClass(std::make_unique<HostContainer<Implementation>>("moxInterface"));
    });
  }

  mox::core::TypeService const types_;
  std::vector<std::string> notes_;  // outlives the services
  Registry registry_{types_};
};

template <class Call>
std::string messageOf(Call const& call) {
  try {
    call();
    return "no failure";
  } catch (moxError const& error) {
    return error.errorMessage();
  }
}

}  // namespace

TEST_F(RegistryTest, DeliversWhatWasRegistered) {
  addInterface();
  auto const object = registry_.get("moxInterface", typeid(Interface));
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->name(), "moxInterface");
  EXPECT_NE(object, registry_.get("moxInterface", typeid(moxPluginBase)));
}

TEST_F(RegistryTest, AnUnknownNameThrowsPluginNotFound) {
  try {
    registry_.get("moxNobody", typeid(moxPluginBase));
    FAIL() << "something was delivered";
  } catch (moxPluginNotFound const& error) {
    EXPECT_EQ(error.errorMessage(), "no class is registered under the name 'moxNobody'");
    EXPECT_EQ(error.errorCode(), "");
    EXPECT_TRUE(error.errorDetails().empty());
  }
}

TEST_F(RegistryTest, WhatIsLookedForIsEmptyForAnUnknownName) {
  addInterface();
  EXPECT_EQ(registry_.find("moxAbsent", typeid(Interface)), nullptr);
  EXPECT_EQ(registry_.find("moxInterface", typeid(OtherInterface)), nullptr);
  EXPECT_NE(registry_.find("moxInterface", typeid(Interface)), nullptr);
}

TEST_F(RegistryTest, NamesAreComparedByteByByte) {
  addInterface();
  EXPECT_THROW(registry_.get("moxinterface", typeid(Interface)), moxPluginNotFound);
}

TEST_F(RegistryTest, AnUnavailableClassIsEmptyAndNotMade) {
  add([](moxPluginRegistry& registry) { registry.registerClass(std::make_unique<Unavailable>()); });
  EXPECT_EQ(registry_.get("moxUnavailable", typeid(Interface)), nullptr);
}

TEST_F(RegistryTest, AnotherTypeThanWantedIsEmptyAndNotMade) {
  addInterface();
  constructed = 0;
  EXPECT_EQ(registry_.get("moxInterface", typeid(OtherInterface)), nullptr);
  EXPECT_EQ(constructed, 0);
}

TEST_F(RegistryTest, ClassesAreListedInOrderOfRegistration) {
  addInterface();
  add([](moxPluginRegistry& registry) {
    registry.registerClass(std::make_unique<Unavailable>());
    registry.setLibraryName("SECOND");
    registry.registerClass(std::make_unique<HostContainer<Implementation>>("aLast"));
  });
  auto const classes = registry_.classes();
  ASSERT_EQ(classes.size(), 3U);
  EXPECT_EQ(classes[0].name, "moxInterface");
  EXPECT_EQ(classes[0].containerKind, "framework");
  EXPECT_EQ(classes[0].library, "LIB");
  EXPECT_TRUE(classes[0].available);
  EXPECT_EQ(classes[1].name, "moxUnavailable");
  EXPECT_EQ(classes[1].containerKind, "core");
  EXPECT_FALSE(classes[1].available);
  EXPECT_EQ(classes[2].name, "aLast");
  EXPECT_EQ(classes[2].library, "SECOND");
}

TEST_F(RegistryTest, ContainersAndServicesAreToldTheirLibrary) {
  auto container = std::make_unique<Unavailable>();
  auto const& told = *container;
  add([&](moxPluginRegistry& registry) { registry.registerClass(std::move(container)); });
  EXPECT_EQ(told.library, "LIB");
  EXPECT_EQ(addService("one").getParentLibraryName(), "LIB");
}

TEST_F(RegistryTest, ATakenNameIsRefused) {
  addInterface();
  EXPECT_EQ(messageOf([&] { addInterface(); }),
            "enters the class 'moxInterface', whose name is taken already");
  EXPECT_EQ(registry_.classes().size(), 1U);
}

TEST_F(RegistryTest, OfTwoRegistrationsAtOnceTheSecondIsRefusedWhole) {
  auto first = registry_.newRegistration();
  auto second = registry_.newRegistration();
  for (auto* const registration : {&first, &second}) {
    registration->setLibraryName("LIB");
  }
  first.registerClass(std::make_unique<HostContainer<Implementation>>("moxInterface"));
  second.registerClass(std::make_unique<HostContainer<Implementation>>("moxOther"));
  second.registerClass(std::make_unique<HostContainer<Implementation>>("moxInterface"));
  registry_.add(std::move(first));
  EXPECT_EQ(messageOf([&] { registry_.add(std::move(second)); }),
            "enters the class 'moxInterface', whose name is taken already");
  EXPECT_EQ(registry_.classes().size(), 1U);
  EXPECT_THROW(registry_.get("moxOther", typeid(Interface)), moxPluginNotFound);
}

TEST_F(RegistryTest, ServicesStartInOrderAndStopBackwards) {
  addService("one");
  addService("two");
  registry_.startServices();
  registry_.stopServices();
  EXPECT_EQ(notes_, (std::vector<std::string>{"start one", "start two", "stop two", "stop one"}));
}

TEST_F(RegistryTest, OnlyServicesOfTheApplicationThatCanStartDo) {
  addService("manual").kind = moxServiceBase::kManual;
  addService("cannot").mayStart = false;
  addService("one");
  registry_.startServices();
  registry_.stopServices();
  EXPECT_EQ(notes_, (std::vector<std::string>{"start one", "stop one"}));
}

TEST_F(RegistryTest, AServiceIsStartedAndStoppedOnce) {
  addService("one");
  registry_.startServices();
  registry_.startServices();
  registry_.stopServices();
  registry_.stopServices();
  EXPECT_EQ(notes_, (std::vector<std::string>{"start one", "stop one"}));
}

TEST_F(RegistryTest, WhenAServiceFailsToStartThoseBeforeItAreStopped) {
  addService("one");
  addService("two").failsToStart = true;
  addService("three");
  EXPECT_EQ(messageOf([&] { registry_.startServices(); }), "cannot start two");
  EXPECT_EQ(notes_, (std::vector<std::string>{"start one", "stop one"}));
}

TEST_F(RegistryTest, EveryServiceIsStoppedBeforeTheFirstFailureIsTold) {
  addService("one").failsToStop = true;
  addService("two").failsToStop = true;
  registry_.startServices();
  EXPECT_EQ(messageOf([&] { registry_.stopServices(); }), "cannot stop two");
  EXPECT_EQ(notes_, (std::vector<std::string>{"start one", "start two", "stop two", "stop one"}));
}

TEST_F(RegistryTest, ClearForgetsEverythingLastOneFirst) {
  addInterface();
  addService("one");
  addService("two");
  registry_.clear();
  EXPECT_TRUE(registry_.classes().empty());
  EXPECT_THROW(registry_.get("moxInterface", typeid(Interface)), moxPluginNotFound);
  EXPECT_EQ(notes_, (std::vector<std::string>{"gone two", "gone one"}));
}
