#include "module_parts.h"

MODULE_ENTRY_POINT void const* moxPlugIn_ModuleVersion() {
  static moxModuleVersion const version = [] {
    auto spoilt = parts::kSoundVersion;
    spoilt.size += 8;
    return spoilt;
  }();
  return &version;
}
MODULE_ENTRY_POINT int moxPlugIn_DoValidityCheck() {
  return 1;
}
MODULE_ENTRY_POINT void moxPlugIn_EntryPoint(VELMORApplication*, moxSessionService*) {}
MODULE_ENTRY_POINT int moxPlugIn_RegisterClasses(moxPluginRegistry* registry) {
  return parts::registerAll(*registry);
}
