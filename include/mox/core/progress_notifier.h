#pragma once

#include "mox/core/plugin_base.h"

/// Implemented by whoever starts a run and wants to follow it, or to end it early. Called from the
/// run's thread only.
class moxDataSourceExecutionProgressNotifier : public virtual moxPluginBase {
 public:
  /// How many steps the run will take; called before the first step.
  virtual void setTotal(int count) = 0;

  /// `done` steps are finished. False asks the run to stop.
  virtual bool step(int done) = 0;
};
