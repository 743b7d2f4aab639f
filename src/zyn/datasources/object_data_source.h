#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/object_data_source.h"
#include "zyn/datasources/named_data_source.h"
#include "zyn/items/typed_collection.h"

/// The definition of a statement that is run for what it does.
class ObjectDataSource final : public NamedDataSource<moxObjectDataSource>,
                               public std::enable_shared_from_this<ObjectDataSource> {
 public:
  std::string name() const override { return "moxObjectDataSource"; }

  /// Adds to the filters that are there, and so is meant for a new object. Throws moxError "Filtro
  /// inválido: " with the class for an element that is no filter, and moxPluginNotFound for a class
  /// that nobody has registered: without one of its filters the statement would take the values of
  /// others.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  std::vector<moxDataSourceColumnType> getColumns() const override { return {}; }

  /// The list of what is bound, so that a screen can ask for the values.
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override;
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return getColumns();
  }
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool) const override {
    return {};
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  void setSQL(std::string const& sql) override { sql_ = sql; }
  std::string getSQL() const override { return sql_; }
  Filters& filters() override { return filters_; }
  Filters const& filters() const override { return filters_; }

 private:
  std::string sql_;
  moxNamedSortableTypedCollectionImplementation<moxFilterSpecification, ObjectDataSource,
                                                &moxFilterSpecification::getDescription>
      filters_;  // in the order of binding
};
