#include "core/app/registry.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include <fmt/format.h>

#include "mox/core/error.h"

namespace mox::core {

Registration Registry::newRegistration() const {
  std::shared_lock const lock(mutex_);
  std::set<std::string> taken;
  for (auto const& entry : entries_) {
    taken.insert(entry.name);
  }
  return Registration(std::move(taken));
}

void Registry::add(Registration registration) {
  auto classes = registration.takeClasses();
  auto services = registration.takeServices();
  std::unique_lock const lock(mutex_);
  demandFree(classes);
  for (auto& entry : classes) {
    byName_.emplace(entry.name, entry.container.get());
    entries_.push_back(std::move(entry));
  }
  for (auto& service : services) {
    services_.push_back(std::move(service));
  }
}

std::shared_ptr<moxPluginBase> Registry::get(std::string const& name,
                                             std::type_info const& wantedType) const {
  auto const* const container = containerOf(name);
  if (container == nullptr) {
    throw moxDefaultErrorImpl<moxPluginNotFound>(
        fmt::format("no class is registered under the name '{}'", name));
  }
  return instanceOf(*container, wantedType);
}

std::shared_ptr<moxPluginBase> Registry::find(std::string const& name,
                                              std::type_info const& wantedType) const {
  auto const* const container = containerOf(name);
  return container != nullptr ? instanceOf(*container, wantedType) : nullptr;
}

std::vector<RegisteredClass> Registry::classes() const {
  std::shared_lock const lock(mutex_);
  std::vector<RegisteredClass> list;
  list.reserve(entries_.size());
  for (auto const& entry : entries_) {
    list.push_back({entry.name, entry.container->containerKind(), entry.libraryName,
                    entry.container->isAvaliable()});
  }
  return list;
}

void Registry::startServices() {
  try {
    for (auto const& service : services_) {
      if (!isStarted(service.get()) &&
          service->verifyProperties(moxServiceBase::kStartsWithApplication) &&
          service->canStart()) {
        service->start();
        started_.push_back(service.get());
      }
    }
  } catch (...) {
    stopAll();  // a failure in here follows from the one that is reported
    throw;
  }
}

void Registry::stopServices() {
  if (auto const failure = stopAll()) {
    std::rethrow_exception(failure);
  }
}

// Classes leave one at a time, without a lock held: an instance that dies may ask for another
// class.
void Registry::clear() {
  for (std::unique_lock lock(mutex_); !entries_.empty(); lock.lock()) {
    auto const last = std::move(entries_.back());
    entries_.pop_back();
    byName_.erase(last.name);
    lock.unlock();
  }
  while (!services_.empty()) {
    services_.pop_back();
  }
}

bool Registry::isStarted(moxServiceBase const* service) const {
  return std::find(started_.begin(), started_.end(), service) != started_.end();
}

std::exception_ptr Registry::stopAll() {
  std::exception_ptr firstFailure;
  for (; !started_.empty(); started_.pop_back()) {
    try {
      started_.back()->stop();
    } catch (...) {
      firstFailure = firstFailure ? firstFailure : std::current_exception();
    }
  }
  return firstFailure;
}

std::shared_ptr<moxPluginBase> Registry::instanceOf(moxCorePluginBasicContainer const& container,
                                                    std::type_info const& wantedType) const {
  if (!container.isAvaliable() || !types_.isDerivedFrom(container.getTypeInfo(), wantedType)) {
    return {};
  }
  return container.getInstance();
}

moxCorePluginBasicContainer const* Registry::containerOf(std::string const& name) const {
  std::shared_lock const lock(mutex_);
  auto const found = byName_.find(name);
  return found != byName_.end() ? found->second : nullptr;
}

void Registry::demandFree(std::vector<Registration::ClassEntry> const& entries) const {
  for (auto const& entry : entries) {
    if (byName_.count(entry.name) == 1) {
      throw moxDefaultErrorImpl<moxError>(
          fmt::format("enters the class '{}', whose name is taken already", entry.name));
    }
  }
}

}  // namespace mox::core
