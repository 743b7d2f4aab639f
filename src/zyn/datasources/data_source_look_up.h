#pragma once

#include <memory>
#include <string>

#include "mox/core/application.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/items/zyn_cache.h"

/// The source of that name, as the calling thread's session sees it; empty when the name is empty,
/// unknown, or that of something else. To be asked on every need and not kept in a definition: a
/// definition is shared by all sessions, and each may have a source of its own under the name.
inline std::shared_ptr<moxDataSource> findDataSource(std::string const& name) {
  if (name.empty()) {
    return {};
  }
  auto const cache = moxApp->get<moxZYNCache>("moxZYNCache");
  return std::dynamic_pointer_cast<moxDataSource>(cache->getCollection(name));
}
