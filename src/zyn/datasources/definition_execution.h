#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/data_source_execution.h"
#include "mox/zyn/datasources/data_source_execution_context.h"
#include "zyn/datasources/external_relations.h"

/// What the runs of definitions share: they keep their definition, offer its filters, and know its
/// sources, and their own result, by the names of the context. `Definition` is the class that they
/// run, `Interface` theirs.
template <class Definition, class Interface = moxDataSourceExecution>
class DefinitionExecution : public virtual Interface {
 public:
  /// `definition` is not empty.
  explicit DefinitionExecution(std::shared_ptr<Definition const> definition)
      : definition_(std::move(definition)) {}

  void setDataSourceExternalRelation(ExternalRelations::Pairs const& relations) const override {
    externalRelations_.set(relations);
  }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override {
    return definition_->getFilters();
  }

 protected:
  Definition const& definition() const { return *definition_; }

  /// The matrix of a source by its name in the definition; empty when the context has none.
  std::shared_ptr<moxDataMatrix> input(moxDataSourceExecutionContext const& context,
                                       std::string const& definedName) const {
    return context.getDataMatrix(externalRelations_.nameInContext(definedName));
  }

  /// Under what the result is registered.
  std::string resultName(std::string const& targetName) const {
    return targetName.empty() ? definition_->getName() : targetName;
  }

 private:
  std::shared_ptr<Definition const> const definition_;
  mutable ExternalRelations externalRelations_;
};
