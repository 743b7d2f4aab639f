#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/core/plugin_lookup.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/frame/cast_memory.h"

/// As moxApp->get, for objects that are made by the thousand.
template <class T>
std::shared_ptr<T> registered(std::string const& name) {
  return sharedCastOf<T>(moxApp->get(name, typeid(T)));
}

/// An object by a name that may come from a file; empty also when nobody registered the name, which
/// the callers do not tell apart from a class of another kind.
template <class T>
std::shared_ptr<T> registeredOrNone(std::string const& name) {
  if (moxApp == nullptr) {
    throw std::logic_error("the module was given no application");
  }
  if (auto* const lookup = castOf<moxPluginLookup>(moxApp)) {
    return sharedCastOf<T>(lookup->find(name, typeid(T)));
  }
  try {
    return moxApp->get<T>(name);
  } catch (moxPluginNotFound const&) {
    return {};
  }
}
