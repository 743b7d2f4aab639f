#include <stdexcept>

#include "module_parts.h"

MODULE_ENTRY_POINT void const* moxPlugIn_ModuleVersion() {
  return &parts::kSoundVersion;
}
MODULE_ENTRY_POINT int moxPlugIn_DoValidityCheck() {
  throw std::runtime_error("no licence");
}
MODULE_ENTRY_POINT void moxPlugIn_EntryPoint(VELMORApplication*, moxSessionService*) {}
MODULE_ENTRY_POINT int moxPlugIn_RegisterClasses(moxPluginRegistry* registry) {
  return parts::registerAll(*registry);
}
