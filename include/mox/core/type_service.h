#pragma once

#include <typeinfo>

/// Answers questions on class trees that the language only answers for an object at hand.
/// Thread-safe.
class moxTypeService {
 public:
  virtual ~moxTypeService() = default;

  /// Whether `type` is `base` or publicly derived from it, also across libraries.
  virtual bool isDerivedFrom(std::type_info const& type, std::type_info const& base) const = 0;
};
