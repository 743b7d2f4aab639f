#include "core/app/application.h"

#include <utility>

#include <fmt/format.h>

#include "core/app/database_password.h"
#include "core/app/document_folder.h"
#include "core/app/host_classes.h"
#include "core/app/query_cursor.h"
#include "core/database/database.h"
#include "core/session/database_user_directory.h"
#include "core/session/settings_user_directory.h"
#include "mox/core/blob.h"
#include "mox/core/error.h"

namespace mox::core {

Application::Application(Settings settings)
    : settings_(std::move(settings)), registry_(types_), modules_(*this, sessions_, registry_) {
  auto registration = registry_.newRegistration();
  registerHostClasses(registration);
  registry_.add(std::move(registration));
}

Application::~Application() {
  try {
    registry_.stopServices();
  } catch (...) {
    // Every service was stopped nevertheless, and a destructor has nobody to tell.
  }
  sessions_.endAll();
  registry_.clear();
}

std::shared_ptr<moxPluginBase> Application::get(std::string const& name,
                                                std::type_info const& wantedType) {
  return registry_.get(name, wantedType);
}

moxDatabaseConnection& Application::databaseConnection() {
  auto* const open = openDatabase_.load(std::memory_order_acquire);
  return open != nullptr ? *open : openConfiguredDatabase();
}

std::unique_ptr<moxQueryCursor> Application::query(std::string const& sql,
                                                   std::string const& whereWord, int unit,
                                                   std::string const& order, int limit) {
  std::string text = sql;
  text += unit != 0 ? fmt::format(" {} id_unidade = {}", whereWord, unit) : "";
  text += !order.empty() ? " order by " + order : "";
  text += limit > 0 ? fmt::format(" limit {}", limit) : "";
  auto statement = databaseConnection().prepare(text);
  statement->execute();
  return std::make_unique<QueryCursor>(std::move(statement));
}

UserDirectory& Application::users() {
  std::lock_guard const lock(usersMutex_);
  if (!users_) {
    if (settings_.hasSection("users")) {
      users_ = std::make_unique<SettingsUserDirectory>(settings_);
    } else {
      users_ = std::make_unique<DatabaseUserDirectory>(
          [this]() -> moxDatabaseConnection& { return databaseConnection(); });
    }
  }
  return *users_;
}

void Application::setDatabase(std::unique_ptr<moxDatabaseConnection> database) {
  std::lock_guard const lock(databaseMutex_);
  openDatabase_.store(database.get(), std::memory_order_release);
  database_ = std::move(database);
}

std::vector<std::shared_ptr<moxReadBlob>> Application::documents(std::string const& folder) {
  return readDocuments(settings_.value(folder, "dir", ""));
}

// Two threads that come at the same time open one database; after a failure the next call tries
// again.
moxDatabaseConnection& Application::openConfiguredDatabase() {
  std::lock_guard const lock(databaseMutex_);
  if (!database_) {
    database_ = openDatabase(databaseOptions());
    openDatabase_.store(database_.get(), std::memory_order_release);
  }
  return *database_;
}

DatabaseOptions Application::databaseOptions() const {
  auto const url = settings_.value("database", "url", "");
  if (url.empty()) {
    throw moxDefaultErrorImpl<moxError>(
        "no database is configured; name one in the settings: [database] url = \"sqlite:FILE\"");
  }
  return {url, databasePassword(settings_), settings_.baseDirectory(), [this] {
            auto const user = sessions_.currentUserSession();
            return user ? user->headOfficeUnit() : 0;
          }};
}

}  // namespace mox::core
