#include "module_parts.h"

MODULE_ENTRY_POINT void const* moxPlugIn_ModuleVersion() {
  return &parts::kSoundVersion;
}
MODULE_ENTRY_POINT int moxPlugIn_DoValidityCheck() {
  return 1;
}
MODULE_ENTRY_POINT void moxPlugIn_EntryPoint(VELMORApplication*, moxSessionService*) {}
MODULE_ENTRY_POINT int moxPlugIn_RegisterClasses(moxPluginRegistry* registry) {
  parts::registerAll(*registry);
  parts::registerClass(*registry, parts::kClassName);
  return 1;
}
