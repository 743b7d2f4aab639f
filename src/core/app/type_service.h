#pragma once

#include "mox/core/type_service.h"

namespace mox::core {

/// Reads the class trees that the compiler leaves in the program for its own casts. Types are
/// compared by name, so that a class seen by two libraries is one. Classes in unnamed namespaces
/// are told apart.
class TypeService final : public moxTypeService {
 public:
  bool isDerivedFrom(std::type_info const& type, std::type_info const& base) const override;
};

}  // namespace mox::core
