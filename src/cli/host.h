#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/global_options.h"
#include "core/app/application.h"
#include "mox/core/error.h"

namespace mox::cli {

/// What of an application a command needs.
enum class Parts {
  kAll,      // the services too: the definitions are loaded
  kClasses,  // modules only, so that damaged collections keep nobody from mending them
};

/// The application behind a command: settings read, modules loaded, services started, and the
/// calling thread at work in a session of the user asked for. Lives as long as the command, in one
/// thread.
class Host {
 public:
  /// Throws moxError for bad settings, a module that does not fit, an unknown user, and a unit that
  /// the user has no right to.
  explicit Host(GlobalOptions const& options, Parts parts = Parts::kAll);

  core::Application& application() { return application_; }

  /// The units asked for; without any, the user's default unit counts.
  std::vector<int> const& units() const { return units_; }

  /// The head office of the user's unit; 0 when unknown.
  int headOfficeUnit() const;

  /// An object from the registry. Throws moxError where get gives an empty pointer.
  template <class T>
  std::shared_ptr<T> make(std::string const& name) {
    auto made = application_.get<T>(name);
    if (!made) {
      throw moxDefaultErrorImpl<moxError>("the class " + name +
                                          " is not available to this session");
    }
    return made;
  }

 private:
  std::shared_ptr<core::Session> openSession(GlobalOptions const& options);

  core::Application application_;
  std::vector<int> units_;
  std::shared_ptr<core::Session> session_;
  std::unique_ptr<core::SessionScope> scope_;
};

}  // namespace mox::cli
