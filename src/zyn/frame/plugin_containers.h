#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "mox/core/plugin_container.h"
#include "mox/core/session.h"
#include "mox/zyn/frame/plugin_entry.h"

/// Whether the current session may use the classes of a library; false without a session service.
bool currentSessionMayUse(std::string const& libraryName);

/// What a class asks of its user: null for most, specialised beside the classes that carry a label.
template <class T>
struct PluginPermissionsOf {
  static moxPluginPermissions const* get() { return nullptr; }
};

/// What the five containers share: the registered name, the library, and what is known of `T`
/// without making one.
template <class T>
class PluginContainerBase : public virtual moxCorePluginBasicContainer {
 public:
  explicit PluginContainerBase(std::string registeredName) : name_(std::move(registeredName)) {}

  void setParentLibraryName(std::string const& libraryName) override {
    parentLibraryName_ = libraryName;
  }
  std::type_info const& getTypeInfo() const override { return typeid(T); }
  moxPluginPermissions const* getPermissions() const override {
    return PluginPermissionsOf<T>::get();
  }
  std::string const& name() const override { return name_; }

 protected:
  std::string const& parentLibraryName() const { return parentLibraryName_; }

 private:
  std::string const name_;
  std::string parentLibraryName_;
};

/// A new instance on every call; everybody's.
template <class T>
class moxInternalPluginContainer final : public PluginContainerBase<T> {
 public:
  using PluginContainerBase<T>::PluginContainerBase;

  bool isAvaliable() const override { return true; }
  std::shared_ptr<moxPluginBase> getInstance() const override { return std::make_shared<T>(); }
  std::string containerKind() const override { return "internal"; }
};

/// The one instance of a static container, made on first demand. The lock is recursive because a
/// constructor may ask the registry for other classes, and so come by again.
template <class T>
class SharedInstance {
 public:
  std::shared_ptr<T> get() {
    std::lock_guard const lock(mutex_);
    if (!instance_) {
      instance_ = std::make_shared<T>();
    }
    return instance_;
  }

 private:
  std::recursive_mutex mutex_;
  std::shared_ptr<T> instance_;
};

/// One shared instance, everybody's; made on first demand, kept as long as the container.
template <class T>
class moxInternalStaticPluginContainer final : public PluginContainerBase<T> {
 public:
  using PluginContainerBase<T>::PluginContainerBase;

  bool isAvaliable() const override { return true; }
  std::shared_ptr<moxPluginBase> getInstance() const override { return instance_.get(); }
  std::string containerKind() const override { return "internal static"; }

 private:
  mutable SharedInstance<T> instance_;
};

/// A new instance on every call, for sessions that may use the library.
template <class T>
class moxCorePluginContainer final : public PluginContainerBase<T> {
 public:
  using PluginContainerBase<T>::PluginContainerBase;

  bool isAvaliable() const override { return currentSessionMayUse(this->parentLibraryName()); }
  std::shared_ptr<moxPluginBase> getInstance() const override { return std::make_shared<T>(); }
  std::string containerKind() const override { return "core"; }
};

/// One shared instance, for sessions that may use the library.
template <class T>
class moxCoreStaticPluginContainer final : public PluginContainerBase<T> {
 public:
  using PluginContainerBase<T>::PluginContainerBase;

  bool isAvaliable() const override { return currentSessionMayUse(this->parentLibraryName()); }
  std::shared_ptr<moxPluginBase> getInstance() const override { return instance_.get(); }
  std::string containerKind() const override { return "core static"; }

 private:
  mutable SharedInstance<T> instance_;
};

/// One instance a session, dropped when the session ends.
template <class T>
class moxCoreStaticSessionPluginContainer final : public PluginContainerBase<T>,
                                                  public moxSessionPluginBasicContainer {
 public:
  using PluginContainerBase<T>::PluginContainerBase;

  ~moxCoreStaticSessionPluginContainer() override {
    if (registered_ && moxSession != nullptr) {
      moxSession->sessionManager().unregisterSessionContainer(this);
    }
  }

  bool isAvaliable() const override { return currentSessionMayUse(this->parentLibraryName()); }

  /// Empty without a session service.
  std::shared_ptr<moxPluginBase> getInstance() const override {
    if (moxSession == nullptr) {
      return {};
    }
    std::lock_guard const lock(mutex_);
    void const* const session = moxSession->currentSession();
    auto const found = instances_.find(session);
    return found != instances_.end() ? found->second : makeFor(session);
  }

  std::string containerKind() const override { return "core static session"; }

  void releaseSession(void const* session) const override {
    std::shared_ptr<T> last;  // dies after the lock is gone: its destructor may come back here
    std::lock_guard const lock(mutex_);
    auto const found = instances_.find(session);
    if (found != instances_.end()) {
      last = std::move(found->second);
      instances_.erase(found);
    }
  }

 private:
  std::shared_ptr<T> makeFor(void const* session) const {
    auto instance = std::make_shared<T>();
    moxSession->sessionManager().registerSessionContainer(session, this);
    registered_ = true;
    return instances_.emplace(session, std::move(instance)).first->second;
  }

  mutable std::recursive_mutex mutex_;
  mutable std::map<void const*, std::shared_ptr<T>> instances_;
  mutable bool registered_ = false;
};
