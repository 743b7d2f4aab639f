#include "core/run/run_report_context.h"

#include "core/run/definition_lookup.h"
#include "mox/core/plugin_lookup.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/items/formatter_zyn_item.h"
#include "mox/zyn/items/zyn_cache.h"

namespace mox::core {

namespace {

using Formatter = std::shared_ptr<moxGenericFormatter>;

Formatter definedFormatter(VELMORApplication& application, std::string const& name) {
  auto const cache = madeByRegistry<moxZYNCache>(application, "moxZYNCache");
  auto const item = std::dynamic_pointer_cast<moxFormatterZYNItem>(cache->getCollection(name));
  return item ? item->getFormatter() : nullptr;
}

/// A name that nobody has registered is no failure here: it may be that of a definition which is
/// not there.
Formatter registeredFormatter(VELMORApplication& application, std::string const& name) {
  auto* const lookup = dynamic_cast<moxPluginLookup*>(&application);
  if (lookup == nullptr) {
    return {};
  }
  return std::dynamic_pointer_cast<moxGenericFormatter>(
      lookup->find(name, typeid(moxGenericFormatter)));
}

}  // namespace

Formatter RunReportContext::formatterByName(std::string const& name) const {
  if (name.empty()) {
    return {};
  }
  auto const defined = definedFormatter(application_, name);
  return defined ? defined : registeredFormatter(application_, name);
}

}  // namespace mox::core
