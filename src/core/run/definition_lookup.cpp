#include "core/run/definition_lookup.h"

#include "core/run/filter_value.h"
#include "mox/core/error_with_details.h"
#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/manage_filter_data_source.h"
#include "mox/zyn/items/zyn_cache.h"
#include "mox/zyn/search/search.h"

namespace mox::core {

namespace {

using Item = std::shared_ptr<moxZYNItem>;

[[noreturn]] void fail(std::string const& message) {
  throw moxDefaultErrorImpl<moxError>(message);
}

Item findItem(VELMORApplication& application, std::string const& name) {
  auto item = madeByRegistry<moxZYNCache>(application, "moxZYNCache")->getCollection(name);
  if (!item) {
    fail("there is no definition " + quotedForMessage(name));
  }
  return item;
}

/// The item itself or the one that stands for it in the caches: an item of a pair is found under
/// the description of the other.
template <class T>
std::shared_ptr<T const> itemAs(Item const& item) {
  auto found = std::dynamic_pointer_cast<T const>(item);
  return found ? found : std::dynamic_pointer_cast<T const>(item->getZynItemRelated());
}

std::shared_ptr<moxDataSource const> sourceOf(moxSearch const& search, std::string const& name) {
  std::shared_ptr<moxDataSource const> source;
  try {
    source = search.getDataSource();
  } catch (moxError const& error) {
    auto const named = search.dataSourceExterno();
    throw moxErrorWithDetails(
        error, {},
        {"the search " + quotedForMessage(name) +
         (named.empty() ? " names no source" : " names the source " + quotedForMessage(named))});
  }
  if (!source) {
    fail("the search " + quotedForMessage(name) + " has no source");
  }
  return source;
}

}  // namespace

FoundDefinition findDefinition(VELMORApplication& application, std::string const& name) {
  auto const item = findItem(application, name);
  auto search = std::dynamic_pointer_cast<moxSearch const>(item);
  if (search) {
    return {sourceOf(*search, name), search};
  }
  auto source = itemAs<moxDataSource>(item);
  if (!source) {
    fail("the definition " + quotedForMessage(name) + " gives no data: it is a " + item->name());
  }
  if (std::dynamic_pointer_cast<moxManageFilterDataSource const>(source)) {
    fail("the definition " + quotedForMessage(name) +
         " gives no data: it says in a group which filters there are");
  }
  return {std::move(source), {}};
}

FoundDefinition findSearch(VELMORApplication& application, std::string const& name) {
  auto const item = findItem(application, name);
  auto search = itemAs<moxSearch>(item);
  if (!search) {
    fail("the definition " + quotedForMessage(name) + " is no search: it is a " + item->name());
  }
  return {sourceOf(*search, name), search};
}

}  // namespace mox::core
