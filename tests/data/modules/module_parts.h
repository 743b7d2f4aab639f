#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

#include "mox/core/module.h"
#include "mox/core/plugin_container.h"
#include "mox/core/registry.h"

#define MODULE_ENTRY_POINT extern "C" __attribute__((visibility("default")))

/// What the modules of this folder are made of: each takes these parts, and leaves one out or
/// spoils it. The names are theirs alone, so that one that was refused can be searched for.
namespace parts {

inline constexpr char const* kLibraryName = "FIXTURE";
inline constexpr char const* kClassName = "FixtureObject";

inline moxModuleVersion const kSoundVersion{moxModuleVersion::kMagic,
                                            sizeof(moxModuleVersion),
                                            moxModuleVersion::kInterfaceVersion,
                                            kLibraryName,
                                            "1.0.0",
                                            "the one that builds the tests"};

class Object final : public virtual moxPluginBase {
 public:
  std::string name() const override { return kClassName; }
};

class Container final : public moxCorePluginBasicContainer {
 public:
  explicit Container(std::string name) : name_(std::move(name)) {}

  void setParentLibraryName(std::string const&) override {}
  bool isAvaliable() const override { return true; }
  std::shared_ptr<moxPluginBase> getInstance() const override { return std::make_shared<Object>(); }
  std::type_info const& getTypeInfo() const override { return typeid(Object); }
  moxPluginPermissions const* getPermissions() const override { return nullptr; }
  std::string const& name() const override { return name_; }
  std::string containerKind() const override { return "fixture"; }

 private:
  std::string const name_;
};

inline void registerClass(moxPluginRegistry& registry, char const* name) {
  registry.registerClass(std::make_unique<Container>(name));
}

inline int registerAll(moxPluginRegistry& registry) {
  registry.setLibraryName(kLibraryName);
  registerClass(registry, kClassName);
  return 1;
}

}  // namespace parts
