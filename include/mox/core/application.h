#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDatabaseConnection;
class moxGuiUserInterface;
class moxReadBlob;
class moxSettings;
class moxTypeService;

/// Rows of VELMORApplication::query. Belongs to the thread that asked; ends the statement when
/// destroyed.
class moxQueryCursor {
 public:
  virtual ~moxQueryCursor() = default;

  /// Moves to the next row, at first to the first one; false after the last. Throws moxError when
  /// the result breaks off.
  virtual bool step() = 0;

  /// The column's value in the current row, 0 for a null. Valid after a step() that gave true.
  virtual int getInt(int columnIndex) const = 0;
};

/// The application: the one way to everything outside the calling module, and to every registered
/// class. All operations are safe to call from any thread; what they hand out follows its own rule.
class VELMORApplication {
 public:
  virtual ~VELMORApplication() = default;

  /// An instance of the class registered as `name`. Empty when the class is not available to the
  /// current session, or is not (derived from) `wantedType`: then nothing is constructed. Throws
  /// moxPluginNotFound for a name that is not registered.
  virtual std::shared_ptr<moxPluginBase> get(std::string const& name,
                                             std::type_info const& wantedType) = 0;

  /// Lives as long as the application.
  virtual moxSettings& settings() = 0;

  /// The connection to the application's database, for the calling thread. The reference stays good
  /// for the application's life; statements and temporary tables belong to the thread. Throws
  /// moxError when no database is configured or it cannot be reached.
  virtual moxDatabaseConnection& databaseConnection() = 0;

  /// Lives as long as the application.
  virtual moxTypeService& typeService() = 0;

  /// Runs a statement as it stands and hands out its rows. `whereWord` joins a condition that the
  /// host may add; `unit` 0, `order` "" and `limit` 0 add nothing. Throws moxError.
  virtual std::unique_ptr<moxQueryCursor> query(std::string const& sql,
                                                std::string const& whereWord, int unit,
                                                std::string const& order, int limit) = 0;

  /// The interface that the user sits at; expired where there is none.
  virtual std::weak_ptr<moxGuiUserInterface> userInterface() = 0;

  /// Contents of the documents in one of the application's folders ("menu"), decompressed, ordered
  /// by file name. Empty when the folder is not there.
  virtual std::vector<std::shared_ptr<moxReadBlob>> documents(std::string const& folder) = 0;

  /// An object by registered name and wanted interface; empty when the class does not offer it, or
  /// is not available. Throws moxPluginNotFound for an unknown name.
  template <class T>
  std::shared_ptr<T> get(std::string const& name) {
    return std::dynamic_pointer_cast<T>(get(name, typeid(T)));
  }
};
