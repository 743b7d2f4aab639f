#include "zyn/frame/plugin_containers.h"

#include <set>

bool currentSessionMayUse(std::string const& libraryName) {
  if (moxSession == nullptr) {
    return false;
  }
  auto const permitted =
      moxSession->sessionManager().permittedLibraries(moxSession->currentSession());
  return permitted.empty() || permitted.count(libraryName) == 1;
}
