#pragma once

#include <string>

/// Root of every object that the registry makes, whichever library brings the class. Deriving
/// classes do it virtually, so that an object has one root however many interfaces it offers. The
/// root carries no `enable_shared_from_this`: a class that hands itself out adds its own, once.
class moxPluginBase {
 public:
  virtual ~moxPluginBase() = default;

  /// The registered name of the object's class, never empty.
  virtual std::string name() const = 0;
};
