#include "core/app/module_loader.h"

#include <exception>
#include <map>
#include <mutex>
#include <utility>

#include <dlfcn.h>
#include <fmt/format.h>

#include "core/app/library_file.h"
#include "mox/core/error.h"

namespace mox::core {

namespace {

[[noreturn]] void refuse(std::string const& name, std::string const& reason) {
  throw moxDefaultErrorImpl<moxError>(fmt::format("module '{}' {}", name, reason));
}

/// Runs code of a module, and turns whatever leaves it into a refusal. The texts are copied: what
/// was thrown belongs to the module's code, which may be closed next.
template <class Call>
auto guarded(std::string const& name, std::string const& doing, Call const& call) {
  try {
    return call();
  } catch (moxError const& error) {
    refuse(name, doing + error.errorMessage());
  } catch (std::exception const& error) {
    refuse(name, doing + error.what());
  } catch (...) {
    refuse(name, doing + "something that is no error class was thrown");
  }
}

/// An open module file, closed unless kept.
class ModuleFile {
 public:
  explicit ModuleFile(std::string path)
      : path_(std::move(path)), handle_(dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
      char const* const reason = dlerror();
      refuse(path_, fmt::format("cannot be loaded: {}",
                                reason != nullptr ? reason : "no reason is given"));
    }
  }
  ~ModuleFile() {
    if (handle_ != nullptr) {
      dlclose(handle_);
    }
  }
  ModuleFile(ModuleFile const&) = delete;
  ModuleFile& operator=(ModuleFile const&) = delete;

  template <class Function>
  void find(char const* symbol, Function& function) const {
    void* const address = dlsym(handle_, symbol);
    if (address == nullptr) {
      refuse(path_,
             fmt::format("has no entry point {}; it is not made for this application", symbol));
    }
    function = reinterpret_cast<Function>(address);
  }

  void keep() { handle_ = nullptr; }

 private:
  std::string const path_;
  void* handle_;
};

moxModuleEntryPoints entryPointsOf(ModuleFile const& file) {
  moxModuleEntryPoints points;
  file.find(moxModuleEntryPoints::kModuleVersion, points.moduleVersion);
  file.find(moxModuleEntryPoints::kDoValidityCheck, points.doValidityCheck);
  file.find(moxModuleEntryPoints::kEntryPoint, points.entryPoint);
  file.find(moxModuleEntryPoints::kRegisterClasses, points.registerClasses);
  return points;
}

// The fields are looked at one by one: behind a wrong magic or size there may be no further field.
void demandVersion(moxModuleEntryPoints const& points, std::string const& name) {
  auto const* const version = static_cast<moxModuleVersion const*>(
      guarded(name, "cannot tell its version: ", [&] { return points.moduleVersion(); }));
  if (version == nullptr) {
    refuse(name, "gives no version record");
  }
  if (version->magic != moxModuleVersion::kMagic) {
    refuse(name, fmt::format("has a version record of a foreign kind ({:#010x})", version->magic));
  }
  if (version->size != sizeof(moxModuleVersion)) {
    refuse(name, fmt::format("has a version record of {} bytes instead of {}", version->size,
                             sizeof(moxModuleVersion)));
  }
  if (version->interfaceVersion != moxModuleVersion::kInterfaceVersion) {
    refuse(name,
           fmt::format("is built for interface version {}, and this application has version {}; "
                       "use a module and an application of the same release",
                       version->interfaceVersion, moxModuleVersion::kInterfaceVersion));
  }
}

void demandValidity(moxModuleEntryPoints const& points, std::string const& name) {
  if (guarded(name, "failed in its own validity check: ", [&] {
        return points.doValidityCheck();
      }) == 0) {
    refuse(name, "does not pass its own validity check");
  }
}

/// Which loader a module works for, by the address of its entry point. That is unique among all
/// modules whose entry point ran, since their code stays mapped.
struct Claims {
  std::mutex mutex;
  std::map<void (*)(VELMORApplication*, moxSessionService*), ModuleLoader const*> owners;
};

Claims& claims() {
  static Claims instance;
  return instance;
}

}  // namespace

ModuleLoader::~ModuleLoader() {
  std::lock_guard const lock(claims().mutex);
  std::erase_if(claims().owners, [this](auto const& claimed) { return claimed.second == this; });
}

void ModuleLoader::load(std::filesystem::path const& path) {
  std::string const name = std::filesystem::absolute(path).lexically_normal().string();
  if (isCutShort(name)) {
    refuse(name, "cannot be loaded: the file is cut short");
  }
  ModuleFile file(name);
  auto const points = entryPointsOf(file);
  demandVersion(points, name);
  demandValidity(points, name);
  claim(points, name);
  file.keep();
  enterOrRelease(points, name);
}

void ModuleLoader::add(moxModuleEntryPoints const& points, std::string const& name) {
  demandVersion(points, name);
  demandValidity(points, name);
  claim(points, name);
  enterOrRelease(points, name);
}

void ModuleLoader::claim(moxModuleEntryPoints const& points, std::string const& name) {
  std::lock_guard const lock(claims().mutex);
  auto const [owner, isNew] = claims().owners.try_emplace(points.entryPoint, this);
  if (!isNew) {
    refuse(name, owner->second == this
                     ? "was loaded already"
                     : "works for another application of this program; end that one first");
  }
}

void ModuleLoader::enterOrRelease(moxModuleEntryPoints const& points, std::string const& name) {
  try {
    enter(points, name);
  } catch (...) {
    std::lock_guard const lock(claims().mutex);
    claims().owners.erase(points.entryPoint);
    throw;
  }
}

void ModuleLoader::enter(moxModuleEntryPoints const& points, std::string const& name) {
  auto registration = registry_.newRegistration();
  int const result = guarded(name, "failed to register its classes: ", [&] {
    points.entryPoint(&application_, &sessions_);
    return points.registerClasses(&registration);
  });
  if (!registration.failure().empty()) {
    refuse(name, "failed to register its classes: " + registration.failure());
  }
  if (result == 0) {
    refuse(name, "reports that it could not register its classes");
  }
  guarded(name,
          "failed to register its classes: ", [&] { registry_.add(std::move(registration)); });
}

}  // namespace mox::core
