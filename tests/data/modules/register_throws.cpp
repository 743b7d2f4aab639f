#include <exception>

#include "module_parts.h"

namespace {

// Of the module alone: whoever catches it must be done with it before the module could be closed.
class SpoiltConstructor : public std::exception {
 public:
  char const* what() const noexcept override { return "a constructor failed"; }
};

}  // namespace

MODULE_ENTRY_POINT void const* moxPlugIn_ModuleVersion() {
  return &parts::kSoundVersion;
}
MODULE_ENTRY_POINT int moxPlugIn_DoValidityCheck() {
  return 1;
}
MODULE_ENTRY_POINT void moxPlugIn_EntryPoint(VELMORApplication*, moxSessionService*) {}
MODULE_ENTRY_POINT int moxPlugIn_RegisterClasses(moxPluginRegistry* registry) {
  parts::registerAll(*registry);
  throw SpoiltConstructor();
}
