#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDataSourceExecutionContext;
class moxFilterSpecification;

/// One run of one definition, pending or finished. Used by one thread, in one context.
class moxDataSourceExecution : public virtual moxPluginBase {
 public:
  /// Makes the matrix and registers it in the context under `targetName`, or under the definition's
  /// name when that is empty. Inputs are taken from the context. False when an input is missing,
  /// and when the name is taken already; throws moxError for what can be said in more words, and
  /// then nothing is registered.
  virtual bool generateDataMatrix(std::shared_ptr<moxDataSourceExecutionContext> context,
                                  std::string const& targetName) const = 0;

  /// Under which names the context knows the inputs: pairs (name in the definition, name in the
  /// context). An input that no pair names is looked up under its own name. Replaces earlier pairs.
  virtual void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const& relations) const = 0;

  /// What a user can be asked for in this run, which may be less than the definition offers.
  virtual std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const = 0;
};
