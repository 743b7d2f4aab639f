#pragma once

#include <map>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "mox/core/plugin_base.h"
#include "mox/zyn/items/zyn_item.h"

class moxZYNCollection;

/// Where definitions are found by their description. Registered as "moxZYNCache", one for the
/// process: written when the application starts and stops, read by every thread in between. For a
/// user it answers through his session's own cache, which may hold definitions of its own.
class moxZYNCache : public virtual moxPluginBase {
 public:
  /// Enters every item of a collection, under its description or that of its related item, and
  /// tells it the collection's library.
  virtual void appendCollection(std::shared_ptr<moxZYNCollection> collection) = 0;

  /// The item, not collection, of that description: the first in the order of loading whose library
  /// the session may use. Empty when there is none.
  virtual std::shared_ptr<moxZYNItem> getCollection(std::string const& description) = 0;

  /// Every item that is of the class or derived from it, by description and then in the order of
  /// loading. Throws std::bad_typeid when an empty pointer was entered.
  virtual std::vector<std::shared_ptr<moxZYNItem const>> getItemsByType(
      std::type_info const& type) = 0;

  /// Forgets every item; those in use live on with their users.
  virtual void clear() = 0;
};

/// Items by description; two libraries may define the same one.
using moxZYNItemMap = std::map<std::string, std::vector<std::shared_ptr<moxZYNItem>>>;

/// A session's own cache. Registered as "moxZYNSessionCache", one a session. It begins as a copy of
/// the process's cache; what is appended stands in front of it and is seen by this session alone.
class moxZYNSessionCache : public virtual moxZYNCache {
 public:
  /// Copies the items in, once: a cache that holds any keeps what it has.
  virtual void setItems(moxZYNItemMap const& items) = 0;
};
