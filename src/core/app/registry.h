#pragma once

#include <exception>
#include <memory>
#include <set>
#include <shared_mutex>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <vector>

#include "core/app/registration.h"
#include "mox/core/plugin_base.h"
#include "mox/core/plugin_container.h"
#include "mox/core/service.h"
#include "mox/core/type_service.h"

namespace mox::core {

/// A line of the registry's listing.
struct RegisteredClass {
  std::string name;
  std::string containerKind;
  std::string library;
  bool available = false;  // to the session of the calling thread
};

/// Every class and service that libraries have entered. Entries are added whole, a library at a
/// time, and stay as long as the registry; asking for objects is safe from any thread, also while a
/// library is added.
class Registry {
 public:
  /// `types` must outlive the registry.
  explicit Registry(moxTypeService const& types) : types_(types) {}
  ~Registry() { clear(); }

  /// A registration that knows the names taken so far.
  Registration newRegistration() const;

  /// Makes what a library entered known to all. Throws moxError, and changes nothing, when a name
  /// was taken since the registration was begun.
  void add(Registration registration);

  /// As VELMORApplication::get. No lock is held while the instance is made: a constructor may ask
  /// for others.
  std::shared_ptr<moxPluginBase> get(std::string const& name,
                                     std::type_info const& wantedType) const;

  /// As moxPluginLookup::find.
  std::shared_ptr<moxPluginBase> find(std::string const& name,
                                      std::type_info const& wantedType) const;

  /// Every class, in the order of registration.
  std::vector<RegisteredClass> classes() const;

  /// Starts the services that start with the application and can, in the order of registration.
  /// When one throws, those before it are stopped again. Those that run already are left alone.
  void startServices();

  /// Stops what was started, last one first. Every one is stopped, then the first failure is
  /// thrown.
  void stopServices();

  /// Forgets every class and service, the last one first, so that what a class destroys still finds
  /// those that stood before it. Services are stopped by then.
  void clear();

 private:
  bool isStarted(moxServiceBase const* service) const;
  std::exception_ptr stopAll();
  moxCorePluginBasicContainer const* containerOf(std::string const& name) const;
  std::shared_ptr<moxPluginBase> instanceOf(moxCorePluginBasicContainer const& container,
                                            std::type_info const& wantedType) const;
  void demandFree(std::vector<Registration::ClassEntry> const& entries) const;

  moxTypeService const& types_;
  mutable std::shared_mutex mutex_;
  std::vector<std::unique_ptr<moxServiceBase>> services_;
  std::vector<moxServiceBase*>
      started_;  // in order of start; used by the thread that starts and stops
  std::vector<Registration::ClassEntry> entries_;                               // guarded by mutex_
  std::unordered_map<std::string, moxCorePluginBasicContainer const*> byName_;  // guarded by mutex_
};

}  // namespace mox::core
