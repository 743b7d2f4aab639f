#include "core/app/application.h"

#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "mox/core/blob.h"
#include "mox/core/compress.h"
#include "mox/core/database_connection.h"
#include "mox/core/error.h"
#include "mox/core/file_operations.h"
#include "mox/core/json.h"
#include "mox/core/registry.h"
#include "mox/core/xml.h"
#include "support/temporary_directory.h"

using mox::core::Application;
using mox::core::SessionScope;
using mox::core::Settings;

namespace {

Settings withDatabase(std::string const& url) {
  Settings settings;
  settings.set("database", "url", {url});
  return settings;
}

template <class Call>
std::string messageOf(Call const& call) {
  try {
    call();
    return "no failure";
  } catch (moxError const& error) {
    return error.errorMessage();
  }
}

std::vector<int> intsOf(moxQueryCursor& cursor) {
  std::vector<int> values;
  while (cursor.step()) {
    values.push_back(cursor.getInt(0));
  }
  return values;
}

class NumbersInTheDatabase : public testing::Test {
 protected:
  NumbersInTheDatabase() {
    auto& database = application_.databaseConnection();
    database.execute("create table numbers (n int, id_unidade int)");
    database.execute("insert into numbers values (3, 1), (1, 1), (2, 2)");
  }

  std::vector<int> ask(std::string const& sql, std::string const& whereWord, int unit,
                       std::string const& order, int limit) {
    return intsOf(*application_.query(sql, whereWord, unit, order, limit));
  }

  Application application_{withDatabase("sqlite::memory:")};
};

// What the order of the application's end is seen by: a service and a session's instance.
std::vector<std::string>* notes = nullptr;  // of the test that runs

class NotingService final : public moxServiceBase {
 public:
  std::string name() const override { return "NotingService"; }
  void start() override { notes->push_back("start"); }
  void stop() override {
    notes->push_back("stop");
    throw moxDefaultErrorImpl<moxError>("cannot stop");
  }
  bool canStart() override { return true; }
  bool verifyProperties(Properties properties) override {
    return properties == kStartsWithApplication;
  }
  void setParentLibraryName(std::string const&) override {}
  std::string getParentLibraryName() const override { return "NOTES"; }
};

moxSessionService* sessionService = nullptr;

class NotingContainer final : public moxCorePluginBasicContainer,
                              public moxSessionPluginBasicContainer {
 public:
  ~NotingContainer() override {
    notes->push_back("container gone");
    sessionService->sessionManager().unregisterSessionContainer(this);
  }
  void setParentLibraryName(std::string const&) override {}
  bool isAvaliable() const override { return true; }
  std::shared_ptr<moxPluginBase> getInstance() const override {
    sessionService->sessionManager().registerSessionContainer(sessionService->currentSession(),
                                                              this);
    return nullptr;
  }
  std::type_info const& getTypeInfo() const override { return typeid(moxPluginBase); }
  moxPluginPermissions const* getPermissions() const override { return nullptr; }
  std::string const& name() const override { return name_; }
  std::string containerKind() const override { return "noting"; }
  void releaseSession(void const*) const override { notes->push_back("session released"); }

 private:
  std::string const name_ = "moxNoting";
};

moxModuleVersion const kVersion{moxModuleVersion::kMagic,
                                sizeof(moxModuleVersion),
                                moxModuleVersion::kInterfaceVersion,
                                "NOTES",
                                "1",
                                ""};

moxModuleEntryPoints notingModule() {
  return {[]() -> void const* { return &kVersion; }, [] { return 1; },
          [](VELMORApplication*, moxSessionService* service) { sessionService = service; },
          [](moxPluginRegistry* registry) {
            registry->setLibraryName("NOTES");
            registry->registerClass(std::make_unique<NotingContainer>());
            registry->registerService(std::make_unique<NotingService>());
            return 1;
          }};
}

}  // namespace

TEST(Application, HasTheFrameworksOwnClasses) {
  Application application;
  EXPECT_NE(application.get<moxXMLDocument>("moxXMLDocument"), nullptr);
  EXPECT_NE(application.get<moxJsonDocument>("moxJsonDocument"), nullptr);
  EXPECT_NE(application.get<moxBlob>("moxBlob"), nullptr);
  EXPECT_NE(application.get<moxAdapterBlob>("moxAdapterBlob"), nullptr);
  EXPECT_NE(application.get<moxFileOperations>("moxFileOperations"), nullptr);
  for (auto const& entry : application.registry().classes()) {
    EXPECT_EQ(entry.library, "CORE");
    EXPECT_TRUE(entry.available);
  }
}

TEST(Application, CompressionIsFoundUnderBothItsNames) {
  Application application;
  EXPECT_NE(application.get<moxCompress>("moxZCompress"), nullptr);
  EXPECT_NE(application.get<moxCompress>("moxCompress"), nullptr);
}

TEST(Application, GetOfAnotherInterfaceIsEmpty) {
  Application application;
  EXPECT_EQ(application.get<moxCompress>("moxBlob"), nullptr);
}

TEST(Application, WithoutADatabaseSaysWhatToDo) {
  Application application;
  EXPECT_EQ(messageOf([&] { application.databaseConnection(); }),
            "no database is configured; name one in the settings: [database] url = "
            "\"sqlite:FILE\"");
}

TEST(Application, TheDatabaseIsOpenedOnceAndStays) {
  Application application(withDatabase("sqlite::memory:"));
  auto& first = application.databaseConnection();
  EXPECT_EQ(&first, &application.databaseConnection());
}

TEST(Application, AnUnknownKindOfDatabaseIsAnErrorEachTime) {
  Application application(withDatabase("oracle:x"));
  auto const message = messageOf([&] { application.databaseConnection(); });
  EXPECT_NE(message.find("oracle"), std::string::npos);
  EXPECT_EQ(messageOf([&] { application.databaseConnection(); }), message);
}

TEST(Application, ADatabaseFileIsMeantFromTheSettingsFolder) {
  TemporaryDirectory const directory;
  auto const file = directory.path() / "zyn.toml";
  std::ofstream(file) << "[database]\nurl = \"sqlite:school.db?mode=rwc\"\n";
  {
    Application application(Settings::load(file));
    application.databaseConnection().execute("create table t (a int)");
  }
  EXPECT_TRUE(std::filesystem::exists(directory.path() / "school.db"));
}

TEST_F(NumbersInTheDatabase, QueryRunsTheStatementAsItStands) {
  EXPECT_EQ(ask("select n from numbers order by n", "where", 0, "", 0),
            (std::vector<int>{1, 2, 3}));
}

TEST_F(NumbersInTheDatabase, QueryAddsUnitOrderAndLimit) {
  EXPECT_EQ(ask("select n from numbers", "where", 1, "n", 0), (std::vector<int>{1, 3}));
  EXPECT_EQ(ask("select n from numbers where n > 1", "and", 1, "", 0), (std::vector<int>{3}));
  EXPECT_EQ(ask("select n from numbers", "where", 0, "n desc", 2), (std::vector<int>{3, 2}));
}

TEST_F(NumbersInTheDatabase, QueryMayBeSteppedBeyondItsEnd) {
  auto const cursor = application_.query("select n from numbers where n = 1", "where", 0, "", 0);
  EXPECT_TRUE(cursor->step());
  EXPECT_FALSE(cursor->step());
  EXPECT_FALSE(cursor->step());
}

TEST_F(NumbersInTheDatabase, QueryReadsANullAs0) {
  EXPECT_EQ(ask("select null", "where", 0, "", 0), (std::vector<int>{0}));
}

TEST_F(NumbersInTheDatabase, QueryThatTheDatabaseRefusesIsAnError) {
  EXPECT_THROW(ask("select from nowhere", "where", 0, "", 0), moxError);
}

TEST_F(NumbersInTheDatabase, TheHeadOfficeIsThatOfTheCurrentUser) {
  auto const countFor = [&](int headOffice) {
    auto const session = application_.sessions().open({.units = {{1, headOffice}}});
    session->user()->registerLogin(1);
    SessionScope const scope(session);
    auto const statement = application_.databaseConnection().prepareForUnit(
        "select n from numbers t", "", "t", "id_unidade", "where");
    statement->execute();
    int rows = 0;
    while (statement->fetch()) {
      ++rows;
    }
    return rows;
  };
  EXPECT_EQ(countFor(1), 2);
  EXPECT_EQ(countFor(2), 1);
  EXPECT_EQ(countFor(3), 0);
}

TEST(Application, UsersComeFromTheSettingsWhenTheyHaveAny) {
  Application application(Settings::parse("[users.maria]\nid = 7\n", "/srv/zyn.toml"));
  EXPECT_EQ(application.openSession("maria")->user()->userId(), 7);
  EXPECT_EQ(messageOf([&] { application.openSession("joao"); }), "user 'joao' is not known");
}

TEST(Application, UsersComeFromTheDatabaseOtherwise) {
  Application application(withDatabase("sqlite::memory:"));
  EXPECT_NE(messageOf([&] { application.openSession("joao"); }).find("ambiente_usuarios"),
            std::string::npos);
}

TEST(Application, DocumentsOfAFolderAreThoseThatTheSettingsName) {
  TemporaryDirectory const directory;
  std::ofstream(directory.path() / "a.xml") << "<Menu/>";
  Settings settings;
  settings.set("menu", "dir", {directory.path().string()});
  Application application(std::move(settings));
  ASSERT_EQ(application.documents("menu").size(), 1U);
  EXPECT_EQ(application.documents("menu").front()->size(), 7U);
  EXPECT_TRUE(application.documents("other").empty());
}

TEST(Application, HasNoUserInterfaceUntilItIsGivenOne) {
  Application application;
  EXPECT_TRUE(application.userInterface().expired());
}

TEST(Application, ASessionThatIsLetGoOfIsReleasedAtOnce) {
  std::vector<std::string> noted;
  notes = &noted;
  Application application;
  application.addModule(notingModule(), "notes");
  {
    SessionScope const scope(application.sessions().openAnonymous());
    application.get<moxPluginBase>("moxNoting");
  }
  EXPECT_EQ(noted, (std::vector<std::string>{"session released"}));
}

TEST(Application, EndsServicesThenSessionsThenContainers) {
  std::vector<std::string> noted;
  notes = &noted;
  std::shared_ptr<mox::core::Session> survivor;
  {
    Application application;
    application.addModule(notingModule(), "notes");
    application.start();
    survivor = application.sessions().openAnonymous();
    SessionScope const scope(survivor);
    application.get<moxPluginBase>("moxNoting");
  }
  EXPECT_EQ(noted,
            (std::vector<std::string>{"start", "stop", "session released", "container gone"}));
}

TEST(Application, StopTellsAFailureThatTheEndWouldSwallow) {
  std::vector<std::string> noted;
  notes = &noted;
  Application application;
  application.addModule(notingModule(), "notes");
  application.start();
  EXPECT_EQ(messageOf([&] { application.stop(); }), "cannot stop");
}
