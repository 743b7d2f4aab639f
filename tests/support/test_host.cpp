#include "support/test_host.h"

#include <utility>

#include "mox/zyn/frame/plugin_entry.h"

namespace {

mox::core::Settings databaseSettings(std::string const& url) {
  mox::core::Settings settings;
  settings.set("database", "url", {url});
  return settings;
}

}  // namespace

TestHost::TestHost() : TestHost(mox::core::Settings()) {}

TestHost::TestHost(std::string const& databaseUrl) : TestHost(databaseSettings(databaseUrl)) {}

TestHost::TestHost(std::unique_ptr<moxDatabaseConnection> database) : TestHost() {
  application_->setDatabase(std::move(database));
}

TestHost::TestHost(mox::core::Settings settings)
    : application_(std::make_unique<mox::core::Application>(std::move(settings))) {
  application_->addModule(linkedModule(), "the linked module");
  application_->start();
}

TestHost::~TestHost() {
  logOut();
  application_.reset();
  moxPlugIn_EntryPoint(nullptr, nullptr);
}

std::shared_ptr<mox::core::Session> TestHost::logIn(mox::core::User user) {
  if (user.defaultUnit == 0 && !user.units.empty()) {
    user.defaultUnit = user.units.front().id;
  }
  mox::core::normalizeUnits(user, 0);
  logOut();
  auto session = application_->sessions().open(std::move(user));
  scope_.emplace(session);
  return session;
}

void TestHost::logOut() {
  scope_.reset();
}

moxModuleEntryPoints linkedModule() {
  return {moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck, moxPlugIn_EntryPoint,
          moxPlugIn_RegisterClasses};
}
