#pragma once

class VELMORApplication;
class moxPluginRegistry;
class moxSessionService;

/// The application and its session service, as handed over at loading; written once, before
/// anything else runs. `moxSession` may be null: then nobody is logged in, and classes that ask for
/// rights are not available.
extern VELMORApplication* moxApp;
extern moxSessionService* moxSession;

extern "C" {

/// Stores the two pointers, which must outlive the module's use.
void moxPlugIn_EntryPoint(VELMORApplication* application, moxSessionService* session);

/// Enters every class and service of the module. Always 1; failures leave as exceptions.
int moxPlugIn_RegisterClasses(moxPluginRegistry* registry);

/// Always 1.
int moxPlugIn_DoValidityCheck();

/// The module's moxModuleVersion, static.
void const* moxPlugIn_ModuleVersion();
}
