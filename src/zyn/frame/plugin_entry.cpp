#include "mox/zyn/frame/plugin_entry.h"

#include "mox/core/module.h"
#include "mox/core/registry.h"
#include "zyn/frame/class_table.h"

#define MOX_EXPORT __attribute__((visibility("default")))

MOX_EXPORT VELMORApplication* moxApp = nullptr;
MOX_EXPORT moxSessionService* moxSession = nullptr;

extern "C" {

MOX_EXPORT void moxPlugIn_EntryPoint(VELMORApplication* application, moxSessionService* session) {
  moxApp = application;
  moxSession = session;
}

MOX_EXPORT int moxPlugIn_RegisterClasses(moxPluginRegistry* registry) {
  registry->setLibraryName(kLibraryName);
  registerModuleClasses(*registry);
  return 1;
}

MOX_EXPORT int moxPlugIn_DoValidityCheck() {
  return 1;
}

MOX_EXPORT void const* moxPlugIn_ModuleVersion() {
  static moxModuleVersion const version{moxModuleVersion::kMagic,
                                        sizeof(moxModuleVersion),
                                        moxModuleVersion::kInterfaceVersion,
                                        kLibraryName,
                                        ZYN_MODULE_VERSION,
                                        "GCC-compatible " __VERSION__};
  return &version;
}
}
