#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/datasources/group_data_source.h"
#include "zyn/datasources/named_data_source.h"
#include "zyn/items/typed_collection.h"

/// The definition of a small program of sources. What its members name elsewhere is looked up on
/// every need; look-ups along a ring of groups throw as DepthGuard does.
class GroupDataSource final : public NamedDataSource<moxGroupDataSource>,
                              public std::enable_shared_from_this<GroupDataSource> {
 public:
  std::string name() const override { return "moxGroupDataSource"; }

  /// Adds to what is there, and so is meant for a new object. Throws moxError "Membro de grupo
  /// inválido: " with the class for an element that is no member, and what a member throws; the
  /// group is then half read.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  /// Those of the member that gives the result. Empty when there is none, or when it has no source.
  std::vector<moxDataSourceColumnType> getColumns() const override;

  /// Those of the member that the group's filters go to, as the group's filter sources and managers
  /// leave them. Throws what wiring the members throws.
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override;
  std::vector<moxDataSourceColumnType> getRelatedColumns(
      std::vector<moxNamedDataSource> const&) const override {
    return getColumns();
  }

  /// Empty: a group reads nothing but what its members make.
  std::vector<std::shared_ptr<moxDataSource const>> getRelatedDataSources(bool) const override {
    return {};
  }
  std::shared_ptr<moxDataSourceExecution> createExecution() const override;

  Members& dataSources() override { return dataSources_; }
  Members const& dataSources() const override { return dataSources_; }
  void setOutputSource(std::string const& member) override { outputSource_ = member; }
  std::string getOutputSource() const override { return outputSource_; }
  void setFilterSource(std::string const& member) override { filterSource_ = member; }
  std::string getFilterSource() const override { return filterSource_; }

 private:
  std::string outputSource_;
  std::string filterSource_;
  moxSortableTypedCollectionImplementation<moxDadoDataSource, GroupDataSource> dataSources_;
};
