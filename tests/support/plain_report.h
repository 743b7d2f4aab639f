#pragma once

#include <memory>
#include <string>

#include "mox/core/report.h"

namespace mox_test {

/// A report that has no formatter of its own and keeps nothing: what a cross table needs to run.
class PlainReport final : public moxReportExecutionContext {
 public:
  std::string name() const override { return "plainReport"; }
  std::shared_ptr<moxGenericFormatter> formatterByName(std::string const&) const override {
    return {};
  }
  void takeOver(std::shared_ptr<moxDataMatrix>, std::shared_ptr<moxPluginBase>, bool) override {}
};

}  // namespace mox_test
