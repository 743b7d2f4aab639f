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
  if (auto const* const single = dynamic_cast<abi::__si_class_type_info const*>(&type)) {
    return isDerivedFrom(*single->__base_type, base);  // one base, public and not virtual
  }
  auto const* const several = dynamic_cast<abi::__vmi_class_type_info const*>(&type);
  if (several == nullptr) {
    return false;
  }
  auto const* const first = several->__base_info;
  return std::any_of(first, first + several->__base_count,
                     [&](abi::__base_class_type_info const& entry) {
                       return entry.__is_public_p() && isDerivedFrom(*entry.__base_type, base);
                     });
}

}  // namespace mox::core
