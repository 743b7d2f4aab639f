#include "mox/zyn/frame/plugin_entry.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mox/core/error.h"
#include "mox/core/module.h"
#include "mox/core/registry.h"
#include "support/test_host.h"

namespace {

/// Notes what a module does at its registration.
class RecordingRegistry final : public moxPluginRegistry {
 public:
  void registerClass(std::unique_ptr<moxCorePluginBasicContainer> container) override {
    container->setParentLibraryName(libraryName);
    containers.push_back(std::move(container));
  }
  void registerService(std::unique_ptr<moxServiceBase> service) override {
    services.push_back(std::move(service));
  }
  void setLibraryName(std::string const& name) override {
    EXPECT_TRUE(containers.empty()) << "a class came before the library's name";
    libraryName = name;
  }

  std::string libraryName;
  std::vector<std::unique_ptr<moxCorePluginBasicContainer>> containers;
  std::vector<std::unique_ptr<moxServiceBase>> services;
};

/// A registry that has no room for a class.
class FullRegistry final : public moxPluginRegistry {
 public:
  void registerClass(std::unique_ptr<moxCorePluginBasicContainer>) override {
    throw moxDefaultErrorImpl<moxError>("full");
  }
  void registerService(std::unique_ptr<moxServiceBase>) override {}
  void setLibraryName(std::string const&) override {}
};

std::vector<std::string> namesOf(RecordingRegistry const& registry) {
  std::vector<std::string> names;
  for (auto const& container : registry.containers) {
    names.push_back(container->name());
  }
  return names;
}

std::string containerKindOf(std::string const& registeredName) {
  static std::map<std::string, std::string> const others = {
      {"moxZYNUtils", "internal static"},
      {"moxZYNCache", "internal static"},
      {"moxZYNTools", "internal static"},
      {"moxZYNSessionCache", "core static session"}};
  auto const found = others.find(registeredName);
  return found != others.end() ? found->second : "internal";
}

}  // namespace

TEST(PluginEntry, EntryPointStoresBothPointersAndNothingElse) {
  auto* const application = reinterpret_cast<VELMORApplication*>(0x10);
  auto* const session = reinterpret_cast<moxSessionService*>(0x20);
  moxPlugIn_EntryPoint(application, session);
  EXPECT_EQ(moxApp, application);
  EXPECT_EQ(moxSession, session);
  moxPlugIn_EntryPoint(nullptr, nullptr);
  EXPECT_EQ(moxApp, nullptr);
  EXPECT_EQ(moxSession, nullptr);
}

TEST(PluginEntry, ValidityCheckGives1) {
  EXPECT_EQ(moxPlugIn_DoValidityCheck(), 1);
}

TEST(PluginEntry, ModuleVersionIsAStaticRecordThatTheFrameworkTakes) {
  auto const* const version = static_cast<moxModuleVersion const*>(moxPlugIn_ModuleVersion());
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version->magic, moxModuleVersion::kMagic);
  EXPECT_EQ(version->size, sizeof(moxModuleVersion));
  EXPECT_EQ(version->interfaceVersion, moxModuleVersion::kInterfaceVersion);
  EXPECT_STREQ(version->library, "ZYNC");
  EXPECT_EQ(version, moxPlugIn_ModuleVersion());
}

TEST(PluginEntry, RegistrationNamesTheLibraryAndGives1) {
  RecordingRegistry registry;
  EXPECT_EQ(moxPlugIn_RegisterClasses(&registry), 1);
  EXPECT_EQ(registry.libraryName, "ZYNC");
}

TEST(PluginEntry, ClassesAreRegisteredInTheirOrder) {
  RecordingRegistry registry;
  moxPlugIn_RegisterClasses(&registry);
  EXPECT_EQ(namesOf(registry), (std::vector<std::string>{"moxZYNCollection",
                                                         "moxZYNPack",
                                                         "moxZYNUtils",
                                                         "moxZYNCache",
                                                         "moxZYNSessionCache",
                                                         "moxZYNTools",
                                                         "moxFormatterZYNItem",
                                                         "moxDataMatrix",
                                                         "moxDataMatrixDateColumn",
                                                         "moxDataMatrixDoubleColumn",
                                                         "moxDataMatrixIntColumn",
                                                         "moxDataMatrixTextColumn",
                                                         "moxDataMatrixBlobColumn",
                                                         "moxDataMatrixRow",
                                                         "moxIntegralFormatter",
                                                         "moxDecimalFormatter",
                                                         "moxTextFormatter",
                                                         "moxTextFilter",
                                                         "moxDateFormatter",
                                                         "moxDataMatrixSQLLoader",
                                                         "moxDataMatrixSQLIntegerUniqueFilter",
                                                         "moxDataMatrixSQLIntegerUniqueSQLFilter",
                                                         "moxDataMatrixSQLIntegerRangeFilter",
                                                         "moxDataMatrixSQLIntegerInFilter",
                                                         "moxDataMatrixSQLTextUniqueFilter",
                                                         "moxDataMatrixSQLTextRangeFilter",
                                                         "moxDataMatrixSQLTextInFilter",
                                                         "moxDataMatrixSQLDoubleUniqueFilter",
                                                         "moxDataMatrixSQLDoubleRangeFilter",
                                                         "moxDataMatrixSQLDoubleInFilter",
                                                         "moxDataMatrixSQLDateUniqueFilter",
                                                         "moxDataMatrixSQLDateRangeFilter",
                                                         "moxDataMatrixExporter",
                                                         "moxDataMatrixExporterCSVFormat",
                                                         "moxDataMatrixSorter",
                                                         "moxDataMatrixUnion",
                                                         "moxDataMatrixPivoting",
                                                         "moxDataMatrixJoin",
                                                         "moxIntegralUniqueFilter",
                                                         "moxIntegralUniqueSQLFilter",
                                                         "moxIntegralRangeFilter",
                                                         "moxIntegralInFilter",
                                                         "moxTextUniqueFilter",
                                                         "moxTextRangeFilter",
                                                         "moxTextInFilter",
                                                         "moxDoubleUniqueFilter",
                                                         "moxDoubleRangeFilter",
                                                         "moxDoubleInFilter",
                                                         "moxDateUniqueFilter",
                                                         "moxDateRangeFilter",
                                                         "moxSearchRunner",
                                                         "moxSearch",
                                                         "moxPropertiesCollection",
                                                         "FormatterProperty",
                                                         "moxDataMatrixAggregator",
                                                         "moxDoubleSum",
                                                         "moxIntegralSum",
                                                         "moxDoubleMin",
                                                         "moxIntegralMin",
                                                         "moxDoubleMax",
                                                         "moxIntegralMax",
                                                         "moxDoubleAvg",
                                                         "moxIntegralAvg",
                                                         "moxBlobFirst",
                                                         "moxBlobLast",
                                                         "moxTextLast",
                                                         "moxTextFirst",
                                                         "moxTextMin",
                                                         "moxTextMax",
                                                         "moxTextAppend",
                                                         "moxTextPrepend",
                                                         "moxDateMin",
                                                         "moxDateMax",
                                                         "moxExpressionContext",
                                                         "moxExpressionContextUtilities",
                                                         "moxDataMatrixExpressionProcessor",
                                                         "moxSQLDataSource",
                                                         "moxAggregationDataSource",
                                                         "moxSorterDataSource",
                                                         "moxObjectDataSource",
                                                         "moxJoinDataSource",
                                                         "moxExpressionDataSource",
                                                         "moxColumnExpression",
                                                         "moxDataSourcePivoting",
                                                         "moxUnionDataSource",
                                                         "moxDataSourceExecutionContext",
                                                         "moxFilterDataSource",
                                                         "moxFilterDataSourceSpec",
                                                         "moxManageFilterDataSource",
                                                         "moxDadoDataSource",
                                                         "moxGroupDataSource"}));
}

TEST(PluginEntry, TheServiceThatLoadsCollectionsIsRegistered) {
  RecordingRegistry registry;
  moxPlugIn_RegisterClasses(&registry);
  ASSERT_EQ(registry.services.size(), 1u);
  EXPECT_EQ(registry.services[0]->name(), "ZYNCLoaderService");
}

TEST(PluginEntry, EveryClassOfTheModuleCanBeMadeAndKnowsItsRegisteredName) {
  TestHost host;
  for (auto const& entry : host.application().registry().classes()) {
    if (entry.library == "ZYNC") {
      EXPECT_EQ(entry.containerKind, containerKindOf(entry.name)) << entry.name;
      auto const object = host.get<moxPluginBase>(entry.name);
      ASSERT_NE(object, nullptr) << entry.name;
      EXPECT_EQ(object->name(), entry.name);
    }
  }
}

TEST(PluginEntry, AFailureOfTheRegistryLeavesThroughTheException) {
  FullRegistry registry;
  EXPECT_THROW(moxPlugIn_RegisterClasses(&registry), moxError);
}

TEST(PluginEntry, OneHostMayFollowAnother) {
  for (int i = 0; i < 2; ++i) {
    TestHost host(TestHost::kMemoryDatabase);
    host.database().execute("create table t (a int)");
    EXPECT_EQ(moxApp, &host.application());
    EXPECT_NE(host.get<moxPluginBase>("moxDataMatrix"), nullptr);
  }
  EXPECT_EQ(moxApp, nullptr);
  EXPECT_EQ(moxSession, nullptr);
}
