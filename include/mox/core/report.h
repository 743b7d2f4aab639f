#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"

class moxDataMatrix;
class moxGenericFormatter;

/// What a report lends to the run that computes its data. Belongs to the run's thread.
class moxReportExecutionContext : public virtual moxPluginBase {
 public:
  /// The report's formatter of that name; empty when it has none.
  virtual std::shared_ptr<moxGenericFormatter> formatterByName(std::string const& name) const = 0;

  /// Hands over a matrix whose columns were made while it was computed. `relation` tells which
  /// source column each of them came from; the report casts it to the kind of relation it knows.
  /// `generated` tells that the columns are not known ahead. Both objects are kept beyond the run.
  virtual void takeOver(std::shared_ptr<moxDataMatrix> matrix,
                        std::shared_ptr<moxPluginBase> relation, bool generated) = 0;
};
