#include "core/app/registration.h"

#include <fmt/format.h>

#include "mox/core/error.h"

namespace mox::core {

void Registration::registerClass(std::unique_ptr<moxCorePluginBasicContainer> container) {
  demandLibraryName("a class");
  if (!container) {
    fail("enters a class without a container");
  }
  container->setParentLibraryName(libraryName_);
  std::string const name = container->name();
  if (name.empty()) {
    fail("enters a class without a name");
  }
  if (!taken_.insert(name).second) {
    fail(fmt::format("enters the class '{}', whose name is taken already", name));
  }
  classes_.push_back({std::move(container), name, libraryName_});
}

void Registration::registerService(std::unique_ptr<moxServiceBase> service) {
  demandLibraryName("a service");
  if (!service) {
    fail("enters an empty service");
  }
  service->setParentLibraryName(libraryName_);
  services_.push_back(std::move(service));
}

void Registration::setLibraryName(std::string const& libraryName) {
  if (libraryName.empty()) {
    fail("gives itself an empty name");
  }
  libraryName_ = libraryName;
}

void Registration::fail(std::string message) {
  if (failure_.empty()) {
    failure_ = message;
  }
  throw moxDefaultErrorImpl<moxError>(std::move(message));
}

void Registration::demandLibraryName(std::string const& what) {
  if (libraryName_.empty()) {
    fail(fmt::format("enters {} before it names itself", what));
  }
}

}  // namespace mox::core
