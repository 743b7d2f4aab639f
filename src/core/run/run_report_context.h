#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/application.h"
#include "mox/core/report.h"

namespace mox::core {

/// Stands for a report in runs that are not part of one, so that cross tables can be made there
/// too. Belongs to the run's thread.
class RunReportContext final : public moxReportExecutionContext {
 public:
  /// What a run handed over.
  struct Taken {
    std::shared_ptr<moxDataMatrix> matrix;
    std::shared_ptr<moxPluginBase> relation;
    bool generated = false;
  };

  /// `application` outlives it.
  explicit RunReportContext(VELMORApplication& application) : application_(application) {}

  std::string name() const override { return "RunReportContext"; }

  /// The formatter that is a definition of that name, as the calling thread's session sees it; else
  /// a new one of the registered class; else nothing.
  std::shared_ptr<moxGenericFormatter> formatterByName(std::string const& name) const override;

  void takeOver(std::shared_ptr<moxDataMatrix> matrix, std::shared_ptr<moxPluginBase> relation,
                bool generated) override {
    taken_.push_back({std::move(matrix), std::move(relation), generated});
  }

  /// In the order in which they came.
  std::vector<Taken> const& taken() const { return taken_; }

 private:
  VELMORApplication& application_;
  std::vector<Taken> taken_;
};

}  // namespace mox::core
