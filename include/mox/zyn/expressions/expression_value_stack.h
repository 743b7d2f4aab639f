#pragma once

#include "mox/core/plugin_base.h"

/// The values of one evaluation. Belongs to it and to its thread; operations only borrow it.
class moxExpressionValueStack : public virtual moxPluginBase {
 public:
  virtual void push(double value) = 0;

  /// Takes the value off the top into `*value`. False, and `*value` as it was, for an empty stack.
  virtual bool pop(double* value) = 0;
};
