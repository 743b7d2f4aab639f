#pragma once

#include <memory>
#include <optional>

#include "core/app/application.h"
#include "mox/core/module.h"
#include "mox/zyn/frame/plugin_entry.h"

namespace mox::fuzz {

/// An application with the module linked in. The module keeps it in globals, which are given back.
class ModuleHost {
 public:
  ModuleHost() {
    application_.emplace();
    application_->addModule({moxPlugIn_ModuleVersion, moxPlugIn_DoValidityCheck,
                             moxPlugIn_EntryPoint, moxPlugIn_RegisterClasses},
                            "the linked module");
  }
  ModuleHost(ModuleHost const&) = delete;
  ModuleHost& operator=(ModuleHost const&) = delete;
  ~ModuleHost() {
    application_.reset();
    moxPlugIn_EntryPoint(nullptr, nullptr);
  }

  core::Application& application() { return *application_; }

  template <class T>
  std::shared_ptr<T> get(char const* name) {
    return application_->get<T>(name);
  }

 private:
  std::optional<core::Application> application_;
};

}  // namespace mox::fuzz
