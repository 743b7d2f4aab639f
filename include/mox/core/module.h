#pragma once

#include <cstdint>

class VELMORApplication;
class moxPluginRegistry;
class moxSessionService;

/// The record behind `moxPlugIn_ModuleVersion`: plain data, readable whatever compiler built the
/// module. The framework refuses a module whose magic, size or interface version is not its own.
struct moxModuleVersion {
  static constexpr std::uint32_t kMagic = 0x4D4F5856;  // "MOXV"
  static constexpr std::uint32_t kInterfaceVersion = 1;

  std::uint32_t magic;
  std::uint32_t size;              // sizeof(moxModuleVersion)
  std::uint32_t interfaceVersion;  // grows when a virtual order of include/ changes
  char const* library;             // as given to setLibraryName
  char const* version;             // for people: "1.2.3"
  char const* compiler;            // for people
};

/// The four entry points of a module, as the loader finds them by symbol, in the order in which
/// they are called.
struct moxModuleEntryPoints {
  static constexpr char const* kModuleVersion = "moxPlugIn_ModuleVersion";
  static constexpr char const* kDoValidityCheck = "moxPlugIn_DoValidityCheck";
  static constexpr char const* kEntryPoint = "moxPlugIn_EntryPoint";
  static constexpr char const* kRegisterClasses = "moxPlugIn_RegisterClasses";

  void const* (*moduleVersion)() = nullptr;
  int (*doValidityCheck)() = nullptr;  // 0 refuses to be loaded
  void (*entryPoint)(VELMORApplication*, moxSessionService*) = nullptr;
  int (*registerClasses)(moxPluginRegistry*) = nullptr;  // 0 is a failure
};
