#pragma once

#include <memory>
#include <string>

#include "mox/core/application.h"
#include "mox/core/error.h"

class moxDataSource;
class moxSearch;

namespace mox::core {

/// What a session finds under a name.
struct FoundDefinition {
  std::shared_ptr<moxDataSource const> source;  // never empty
  std::shared_ptr<moxSearch const> search;      // empty unless the name is that of a search
};

/// The definition of that name for the calling thread's session; of a search, its source. Throws
/// moxError when there is none, when it gives no data, and what a search throws that has no source.
FoundDefinition findDefinition(VELMORApplication& application, std::string const& name);

/// As findDefinition, for a search alone.
FoundDefinition findSearch(VELMORApplication& application, std::string const& name);

/// An object of the class; moxError when it is not available to the session.
template <class T>
std::shared_ptr<T> madeByRegistry(VELMORApplication& application, char const* className) {
  auto object = application.get<T>(className);
  if (!object) {
    throw moxDefaultErrorImpl<moxError>(std::string("the class ") + className +
                                        " is not available to this session");
  }
  return object;
}

}  // namespace mox::core
