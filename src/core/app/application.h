#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/app/module_loader.h"
#include "core/app/registry.h"
#include "core/app/settings.h"
#include "core/app/type_service.h"
#include "core/session/session_service.h"
#include "core/session/user_directory.h"
#include "mox/core/application.h"
#include "mox/core/module.h"
#include "mox/core/plugin_lookup.h"

namespace mox::core {

struct DatabaseOptions;

/// The application of the framework: registry, modules, sessions, database and settings in one
/// object.
///
/// Life: make it, load modules, start(), open sessions and work from any threads, let go of the
/// sessions, stop(), destroy it. Loading, starting, stopping and the set... operations belong to
/// one thread, while no other uses the application; everything else is safe from any thread.
class Application final : public VELMORApplication, public moxPluginLookup {
 public:
  explicit Application(Settings settings = {});

  /// Stops the services, ends the sessions that are left, and destroys all containers, in that
  /// order; only then the database, the session service and the settings go. A failure of a service
  /// to stop is lost here: whoever wants to know calls stop() before. Objects made by the registry
  /// must be gone by then.
  ~Application() override;

  // The face to the modules.
  std::shared_ptr<moxPluginBase> get(std::string const& name,
                                     std::type_info const& wantedType) override;
  using VELMORApplication::get;
  std::shared_ptr<moxPluginBase> find(std::string const& name,
                                      std::type_info const& wantedType) override {
    return registry_.find(name, wantedType);
  }
  moxSettings& settings() override { return settings_; }
  moxDatabaseConnection& databaseConnection() override;
  moxTypeService& typeService() override { return types_; }
  std::unique_ptr<moxQueryCursor> query(std::string const& sql, std::string const& whereWord,
                                        int unit, std::string const& order, int limit) override;
  std::weak_ptr<moxGuiUserInterface> userInterface() override { return userInterface_; }
  std::vector<std::shared_ptr<moxReadBlob>> documents(std::string const& folder) override;

  // The face to the program that hosts it.

  /// As ModuleLoader::load and add.
  void loadModule(std::filesystem::path const& file) { modules_.load(file); }
  void addModule(moxModuleEntryPoints const& entryPoints, std::string const& name) {
    modules_.add(entryPoints, name);
  }

  /// As Registry::startServices and stopServices. Modules are loaded before.
  void start() { registry_.startServices(); }
  void stop() { registry_.stopServices(); }

  Registry& registry() { return registry_; }
  SessionService& sessions() { return sessions_; }
  Settings const& configuration() const { return settings_; }

  /// Where users are looked up: the settings' section [users] when there is one, else the database.
  UserDirectory& users();

  /// Opens a session for the user of that login. Throws moxError for one that the directory does
  /// not know.
  std::shared_ptr<Session> openSession(std::string const& login) {
    return sessions_.open(users().find(login));
  }

  /// Puts a database in place of the one that the settings name. Nothing may be in use of the
  /// former.
  void setDatabase(std::unique_ptr<moxDatabaseConnection> database);

  void setUserInterface(std::weak_ptr<moxGuiUserInterface> userInterface) {
    userInterface_ = std::move(userInterface);
  }

 private:
  moxDatabaseConnection& openConfiguredDatabase();
  DatabaseOptions databaseOptions() const;

  // Destroyed from the last to the first: containers need the session service and may hold
  // statements.
  Settings settings_;
  TypeService types_;
  SessionService sessions_;
  std::mutex databaseMutex_;
  std::unique_ptr<moxDatabaseConnection> database_;             // guarded by databaseMutex_
  std::atomic<moxDatabaseConnection*> openDatabase_ = nullptr;  // database_, once it is open
  std::mutex usersMutex_;
  std::unique_ptr<UserDirectory> users_;  // guarded by usersMutex_; made on first demand
  std::weak_ptr<moxGuiUserInterface> userInterface_;
  Registry registry_;
  ModuleLoader modules_;
};

}  // namespace mox::core
