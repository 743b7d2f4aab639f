#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_container.h"
#include "mox/core/service.h"

/// What a module sees of the framework's registry while it enters its classes.
/// Used only inside `moxPlugIn_RegisterClasses`, in the thread that loads the module.
class moxPluginRegistry {
 public:
  virtual ~moxPluginRegistry() = default;

  /// Enters a class and takes ownership. Throws moxError for an empty name or one that is taken
  /// already.
  virtual void registerClass(std::unique_ptr<moxCorePluginBasicContainer> container) = 0;

  /// Enters a service and takes ownership.
  virtual void registerService(std::unique_ptr<moxServiceBase> service) = 0;

  /// Names the library whose classes follow; each container and service is told this name.
  virtual void setLibraryName(std::string const& libraryName) = 0;
};
