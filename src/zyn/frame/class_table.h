#pragma once

class moxPluginRegistry;

/// The module's name for the framework and in users' rights.
inline constexpr char const* kLibraryName = "ZYNC";

/// Enters every class of the module, in the order that other modules rely on.
void registerModuleClasses(moxPluginRegistry& registry);
