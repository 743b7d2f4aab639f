#pragma once

#include <memory>
#include <string>
#include <typeinfo>

#include "mox/core/plugin_base.h"

/// Second face of an application that can look for a class without a failure when nobody has
/// registered it. Documents name classes that may well be absent, by the thousand: an exception for
/// each would take longer than reading it. Ask for the face by a dynamic_cast; an application
/// without it is asked by get alone.
class moxPluginLookup {
 public:
  virtual ~moxPluginLookup() = default;

  /// As VELMORApplication::get, and empty also for a name that is not registered. Safe to call from
  /// any thread.
  virtual std::shared_ptr<moxPluginBase> find(std::string const& name,
                                              std::type_info const& wantedType) = 0;
};
