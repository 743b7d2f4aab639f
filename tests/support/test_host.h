#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/app/application.h"
#include "core/session/session.h"
#include "mox/core/database_connection.h"

/// An application with the module's own objects linked in: what a test needs to ask the registry
/// for classes, run statements and work as a user. The module keeps its application in globals, so
/// one host lives at a time; a second one may follow the first. Belongs to the thread that made it.
///
///     TestHost host(TestHost::kMemoryDatabase);
///     host.logIn({.id = 7, .units = {{3, 1}}, .worksByUnits = true});
///     auto const loader = host.get<moxDataMatrixSQLLoader>("moxDataMatrixSQLLoader");
class TestHost {
 public:
  /// An SQLite database of this host alone, born empty, shared by all threads.
  static constexpr char const* kMemoryDatabase = "sqlite::memory:";

  /// Without a database.
  TestHost();

  /// With the database of that URL; opened when it is first asked for.
  explicit TestHost(std::string const& databaseUrl);

  /// With a database at hand.
  explicit TestHost(std::unique_ptr<moxDatabaseConnection> database);

  /// Logs out, ends the application, and leaves the module without one.
  ~TestHost();

  TestHost(TestHost const&) = delete;
  TestHost& operator=(TestHost const&) = delete;

  mox::core::Application& application() { return *application_; }
  moxDatabaseConnection& database() { return application_->databaseConnection(); }

  /// As VELMORApplication::get.
  template <class T>
  std::shared_ptr<T> get(std::string const& registeredName) {
    return application_->get<T>(registeredName);
  }

  /// Opens a session and has the calling thread work for it, instead of the one before. A default
  /// unit is added to the user's units; without one the first of them is the default.
  std::shared_ptr<mox::core::Session> logIn(mox::core::User user);

  /// Ends the session; the calling thread works for none.
  void logOut();

 private:
  explicit TestHost(mox::core::Settings settings);

  std::unique_ptr<mox::core::Application> application_;
  std::optional<mox::core::SessionScope> scope_;
};

/// The entry points of the module's objects that are linked into the test program.
moxModuleEntryPoints linkedModule();
