#pragma once

#include <memory>
#include <string>

#include "mox/core/application.h"
#include "mox/core/error.h"
#include "mox/zyn/frame/plugin_entry.h"

/// An object by a name that may come from a file; empty also when nobody registered the name, which
/// the callers do not tell apart from a class of another kind.
template <class T>
std::shared_ptr<T> registeredOrNone(std::string const& name) {
  try {
    return moxApp->get<T>(name);
  } catch (moxPluginNotFound const&) {
    return {};
  }
}
