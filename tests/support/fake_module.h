#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "mox/core/module.h"
#include "mox/core/plugin_base.h"

/// A small module that is linked into the tests: one class behind each of the five kinds of
/// container, entered for the library "ZYNC". It stands beside the real module's classes, where not
/// every kind of container has a class yet.
namespace fake_module {

/// What every class of the module is asked for as.
class FakeObject : public virtual moxPluginBase {
 public:
  virtual std::shared_ptr<FakeObject>
  self() = 0;  // empty for a class that does not hand itself out

  std::atomic<int> value = 0;  // a session's or a static class's state
};

/// An interface that no class of the module offers.
class ForeignInterface : public virtual moxPluginBase {};

inline constexpr char const* kInternal = "moxFakeInternal";
inline constexpr char const* kInternalStatic = "moxFakeInternalStatic";
inline constexpr char const* kCore = "moxFakeCore";
inline constexpr char const* kCoreStatic = "moxFakeCoreStatic";
inline constexpr char const* kCoreStaticSession = "moxFakeCoreStaticSession";

/// How many objects of the module are alive.
int liveObjects();

/// How many were made by now.
int madeObjects();

moxModuleEntryPoints entryPoints();

}  // namespace fake_module
