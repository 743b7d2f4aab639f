#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <typeinfo>

#include "mox/core/plugin_base.h"

/// What a class asks of whoever uses it. A static record of the module, five words long: never
/// owned by its reader.
struct moxPluginPermissions {
  char const* label;                // text for the user, UTF-8, never null
  std::uintptr_t reserved[4] = {};  // all zero; readers pass over them
};

/// Root of the registry's entries: knows which library brought the class.
class moxPluginBasicContainer {
 public:
  virtual ~moxPluginBasicContainer() = default;

  /// Called once by the registry, before any other operation, with the name given to
  /// setLibraryName.
  virtual void setParentLibraryName(std::string const& libraryName) = 0;
};

/// The registry's entry for one class: its name, and how an instance is delivered.
/// All operations may be called from any thread once the class is registered.
class moxCorePluginBasicContainer : public virtual moxPluginBasicContainer {
 public:
  /// Whether the calling thread's session may use the class. The registry asks before every
  /// getInstance.
  virtual bool isAvaliable() const = 0;

  /// An instance; new or shared is the container's business. Throws what the class's constructor
  /// throws.
  virtual std::shared_ptr<moxPluginBase> getInstance() const = 0;

  /// The implementation class. The registry compares it with the type wanted before it makes an
  /// object, so that a name read from a document cannot run the constructor of an unrelated class.
  virtual std::type_info const& getTypeInfo() const = 0;

  /// Null for a class that asks nothing.
  virtual moxPluginPermissions const* getPermissions() const = 0;

  /// The registered name; the reference lives as long as the container.
  virtual std::string const& name() const = 0;

  /// How instances are delivered, in a word for people ("internal", "static", "core", ...). Never
  /// empty.
  virtual std::string containerKind() const = 0;
};

/// Second face of a container that keeps one instance a session.
class moxSessionPluginBasicContainer {
 public:
  virtual ~moxSessionPluginBasicContainer() = default;

  /// Drops the instance of a session that ends. Called before the handle dies; an unknown handle is
  /// ignored.
  virtual void releaseSession(void const* session) const = 0;
};
