#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

#include "mox/core/plugin_container.h"

namespace mox::core {

/// The registry's entry for a class of the framework itself: a new instance on every call, for
/// every session.
template <class T>
class HostContainer final : public moxCorePluginBasicContainer {
 public:
  explicit HostContainer(std::string registeredName) : name_(std::move(registeredName)) {}

  void setParentLibraryName(std::string const&) override {}
  bool isAvaliable() const override { return true; }
  std::shared_ptr<moxPluginBase> getInstance() const override { return std::make_shared<T>(); }
  std::type_info const& getTypeInfo() const override { return typeid(T); }
  moxPluginPermissions const* getPermissions() const override { return nullptr; }
  std::string const& name() const override { return name_; }
  std::string containerKind() const override { return "framework"; }

 private:
  std::string const name_;
};

}  // namespace mox::core
