#include "core/app/module_loader.h"

#include <string>

#include <gtest/gtest.h>

#include "core/app/application.h"
#include "mox/core/error.h"

using mox::core::Application;

namespace {

constexpr char const* kModules = TEST_MODULE_DIR "/test_modules/";

std::string fileOf(std::string const& module) {
  return kModules + module + ".so";
}

/// What the refusal of a module of tests/data/modules says behind the module's name. Fails the test
/// when the module was taken, or left anything behind.
std::string refusalOf(std::string const& module) {
  Application application;
  auto const before = application.registry().classes().size();
  try {
    application.loadModule(fileOf(module));
    ADD_FAILURE() << module << " was taken";
    return "";
  } catch (moxError const& error) {
    EXPECT_EQ(application.registry().classes().size(), before);
    EXPECT_THROW(application.get<moxPluginBase>("FixtureObject"), moxPluginNotFound);
    auto const prefix = "module '" + fileOf(module) + "' ";
    EXPECT_EQ(error.errorMessage().substr(0, prefix.size()), prefix);
    return error.errorMessage().substr(prefix.size());
  }
}

std::string messageOf(Application& application, std::string const& file) {
  try {
    application.loadModule(file);
    return "no failure";
  } catch (moxError const& error) {
    return error.errorMessage();
  }
}

}  // namespace

TEST(ModuleLoader, TakesASoundModule) {
  Application application;
  application.loadModule(fileOf("sound_module"));
  auto const object = application.get<moxPluginBase>("FixtureObject");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->name(), "FixtureObject");
  auto const last = application.registry().classes().back();
  EXPECT_EQ(last.name, "FixtureObject");
  EXPECT_EQ(last.library, "FIXTURE");
  EXPECT_EQ(last.containerKind, "fixture");
}

TEST(ModuleLoader, ObjectsOutliveTheApplicationThatLoadedTheirModule) {
  std::shared_ptr<moxPluginBase> object;
  {
    Application application;
    application.loadModule(fileOf("sound_module"));
    object = application.get<moxPluginBase>("FixtureObject");
  }
  EXPECT_EQ(object->name(), "FixtureObject");
}

TEST(ModuleLoader, AModuleServesOneApplicationAfterAnother) {
  for (int i = 0; i < 2; ++i) {
    Application application;
    application.loadModule(fileOf("sound_module"));
    EXPECT_NE(application.get<moxPluginBase>("FixtureObject"), nullptr);
  }
}

TEST(ModuleLoader, RefusesAModuleThatServesAnotherApplication) {
  Application first;
  Application second;
  first.loadModule(fileOf("sound_module"));
  EXPECT_EQ(messageOf(second, fileOf("sound_module")),
            "module '" + fileOf("sound_module") +
                "' works for another application of this program; end that one first");
  EXPECT_NE(first.get<moxPluginBase>("FixtureObject"), nullptr);
}

TEST(ModuleLoader, RefusesAModuleThatWasLoadedAlready) {
  Application application;
  application.loadModule(fileOf("sound_module"));
  EXPECT_EQ(messageOf(application, fileOf("sound_module")),
            "module '" + fileOf("sound_module") + "' was loaded already");
  EXPECT_NE(application.get<moxPluginBase>("FixtureObject"), nullptr);
}

TEST(ModuleLoader, ARefusedModuleDoesNotStandInASoundOnesWay) {
  Application application;
  EXPECT_NE(messageOf(application, fileOf("register_throws")), "no failure");
  application.loadModule(fileOf("sound_module"));
  EXPECT_NE(application.get<moxPluginBase>("FixtureObject"), nullptr);
}

TEST(ModuleLoader, ARefusedModuleIsRefusedForTheSameReasonAgain) {
  EXPECT_EQ(refusalOf("register_fails"), refusalOf("register_fails"));
  Application application;
  EXPECT_EQ(messageOf(application, fileOf("register_fails")),
            messageOf(application, fileOf("register_fails")));
}

TEST(ModuleLoader, RefusesAFileThatIsNotThere) {
  EXPECT_EQ(refusalOf("nowhere").substr(0, 18), "cannot be loaded: ");
}

TEST(ModuleLoader, RefusesAFileThatIsNoLibrary) {
  Application application;
  std::string const file = TEST_DATA_DIR "/modules/no_library.so";
  EXPECT_EQ(messageOf(application, file),
            "module '" + file + "' cannot be loaded: " + file + ": file too short");
}

TEST(ModuleLoader, RefusesAModuleWithoutVersion) {
  EXPECT_EQ(refusalOf("without_version"),
            "has no entry point moxPlugIn_ModuleVersion; it is not made for this application");
}

TEST(ModuleLoader, RefusesAModuleWithoutValidityCheck) {
  EXPECT_EQ(refusalOf("without_validity_check"),
            "has no entry point moxPlugIn_DoValidityCheck; it is not made for this application");
}

TEST(ModuleLoader, RefusesAModuleWithoutEntryPoint) {
  EXPECT_EQ(refusalOf("without_entry_point"),
            "has no entry point moxPlugIn_EntryPoint; it is not made for this application");
}

TEST(ModuleLoader, RefusesAModuleWithoutRegistration) {
  EXPECT_EQ(refusalOf("without_register_classes"),
            "has no entry point moxPlugIn_RegisterClasses; it is not made for this application");
}

TEST(ModuleLoader, RefusesAModuleWhoseVersionIsNull) {
  EXPECT_EQ(refusalOf("null_version"), "gives no version record");
}

TEST(ModuleLoader, RefusesAVersionRecordOfAForeignKind) {
  EXPECT_EQ(refusalOf("wrong_magic"), "has a version record of a foreign kind (0x12345678)");
}

TEST(ModuleLoader, RefusesAVersionRecordOfAnotherSize) {
  EXPECT_EQ(refusalOf("wrong_size"), "has a version record of 48 bytes instead of 40");
}

TEST(ModuleLoader, RefusesAnotherInterfaceVersion) {
  EXPECT_EQ(refusalOf("wrong_interface"),
            "is built for interface version 2, and this application has version 1; use a module "
            "and an application of the same release");
}

TEST(ModuleLoader, RefusesAModuleThatFindsItselfInvalid) {
  EXPECT_EQ(refusalOf("invalid"), "does not pass its own validity check");
}

TEST(ModuleLoader, RefusesAModuleWhoseValidityCheckThrows) {
  EXPECT_EQ(refusalOf("validity_check_throws"), "failed in its own validity check: no licence");
}

TEST(ModuleLoader, RefusesAModuleWhoseRegistrationFails) {
  EXPECT_EQ(refusalOf("register_fails"), "reports that it could not register its classes");
}

TEST(ModuleLoader, RefusesAModuleWhoseRegistrationThrows) {
  EXPECT_EQ(refusalOf("register_throws"), "failed to register its classes: a constructor failed");
  EXPECT_EQ(refusalOf("register_throws_mox_error"),
            "failed to register its classes: a table is missing");
  EXPECT_EQ(refusalOf("register_throws_int"),
            "failed to register its classes: something that is no error class was thrown");
}

TEST(ModuleLoader, RefusesAModuleThatRegistersANameTwice) {
  EXPECT_EQ(refusalOf("duplicate_class"),
            "failed to register its classes: enters the class 'FixtureObject', whose name is taken "
            "already");
}

TEST(ModuleLoader, RefusesAModuleThatTakesANameOfTheFramework) {
  EXPECT_EQ(refusalOf("duplicate_of_host"),
            "failed to register its classes: enters the class 'moxBlob', whose name is taken "
            "already");
}

TEST(ModuleLoader, RefusesAModuleThatKeepsItsFailureToItself) {
  EXPECT_EQ(refusalOf("swallows_duplicate"),
            "failed to register its classes: enters the class 'FixtureObject', whose name is taken "
            "already");
}

TEST(ModuleLoader, RefusesAModuleThatDoesNotNameItself) {
  EXPECT_EQ(refusalOf("unnamed_library"),
            "failed to register its classes: enters a class before it names itself");
}

TEST(ModuleLoader, RefusesAClassWithoutAName) {
  EXPECT_EQ(refusalOf("unnamed_class"),
            "failed to register its classes: enters a class without a name");
}

TEST(ModuleLoader, RefusesAnEmptyContainerOrService) {
  EXPECT_EQ(refusalOf("null_container"),
            "failed to register its classes: enters a class without a container");
  EXPECT_EQ(refusalOf("null_service"), "failed to register its classes: enters an empty service");
}

TEST(ModuleLoader, TheFirstClauseThatIsBrokenIsTheOneThatIsTold) {
  Application application;
  moxModuleEntryPoints const points{[]() -> void const* { return nullptr; }, [] { return 0; },
                                    [](VELMORApplication*, moxSessionService*) {},
                                    [](moxPluginRegistry*) { return 0; }};
  try {
    application.addModule(points, "linked");
    FAIL() << "a module without version was taken";
  } catch (moxError const& error) {
    EXPECT_EQ(error.errorMessage(), "module 'linked' gives no version record");
  }
}
