#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/app/registry.h"
#include "mox/core/application.h"
#include "mox/core/module.h"
#include "mox/core/session.h"

namespace mox::core {

/// Brings modules into an application, after proof that they fit. Whatever does not fit is refused
/// by a moxError that names the module and what is wrong with it, and leaves nothing registered.
/// Used by the thread that starts the application.
///
/// A module's code stays mapped once its entry point ran: what it was given and what it handed out
/// cannot be called back. A module keeps its application in globals, so it works for one
/// application at a time.
class ModuleLoader {
 public:
  /// All three must outlive the loader.
  ModuleLoader(VELMORApplication& application, moxSessionService& sessions, Registry& registry)
      : application_(application), sessions_(sessions), registry_(registry) {}

  /// Other applications may have the modules from then on.
  ~ModuleLoader();

  ModuleLoader(ModuleLoader const&) = delete;
  ModuleLoader& operator=(ModuleLoader const&) = delete;

  /// Loads a module from a file.
  void load(std::filesystem::path const& path);

  /// Takes a module that is linked into the program; `name` is what messages call it.
  void add(moxModuleEntryPoints const& entryPoints, std::string const& name);

 private:
  void claim(moxModuleEntryPoints const& entryPoints, std::string const& name);
  void enterOrRelease(moxModuleEntryPoints const& entryPoints, std::string const& name);
  void enter(moxModuleEntryPoints const& entryPoints, std::string const& name);

  VELMORApplication& application_;
  moxSessionService& sessions_;
  Registry& registry_;
};

}  // namespace mox::core
