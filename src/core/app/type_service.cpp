#include "core/app/type_service.h"

#include <algorithm>

#include <cxxabi.h>

namespace mox::core {

// The recursion follows the bases that a class was written with, never data: it ends, and is not
// deep.
bool TypeService::isDerivedFrom(std::type_info const& type, std::type_info const& base) const {
  if (type == base) {
    return true;
  }
  // The kinds of type_info are classes without further derived ones, so that to compare is enough;
  // a dynamic_cast for each would be most of what a look-up by name costs.
  std::type_info const& kind = typeid(type);
  if (kind == typeid(abi::__si_class_type_info)) {  // one base, public and not virtual
    return isDerivedFrom(*static_cast<abi::__si_class_type_info const&>(type).__base_type, base);
  }
  if (kind != typeid(abi::__vmi_class_type_info)) {
    return false;
  }
  auto const& several = static_cast<abi::__vmi_class_type_info const&>(type);
  auto const* const first = several.__base_info;
  return std::any_of(first, first + several.__base_count,
                     [&](abi::__base_class_type_info const& entry) {
                       return entry.__is_public_p() && isDerivedFrom(*entry.__base_type, base);
                     });
}

}  // namespace mox::core
