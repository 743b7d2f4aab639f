#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/dado_data_source.h"
#include "mox/zyn/datasources/data_source.h"

/// A member of a group. What it names elsewhere is looked up on every need, and never kept:
/// sessions share the definition, and each may know another source by the name.
class DadoDataSource final : public virtual moxDadoDataSource {
 public:
  std::string name() const override { return "moxDadoDataSource"; }

  void setDataSourceRelation(Relation const& relation) override { relation_ = relation; }
  Relation getDataSourceRelation() const override { return relation_; }
  void setDataSource(std::shared_ptr<moxDataSource> dataSource) override;
  std::shared_ptr<moxDataSource> getDataSource() override { return held_; }
  std::shared_ptr<moxDataSource const> getDataSource() const override;

  /// Takes the place of all that was there. When it throws, or its source refuses the element,
  /// nothing changes. Throws moxError "Fonte de dados externa não definida" for a member that maps
  /// the inputs of a source elsewhere and names none. A source elsewhere may be loaded later.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  std::string getName() const override { return name_; }
  void setName(std::string const& name) override { name_ = name; }
  std::string dataSourceExterno() const override { return externalName_; }

  /// When it throws, nothing changes.
  void setDataSourceExterno(std::string const& name) override;
  void setDataSourceExternalRelation(
      std::vector<std::pair<std::string, std::string>> const& relations) override {
    externalRelations_ = relations;
  }
  std::vector<std::pair<std::string, std::string>> getDataSourceExternalRelation() const override {
    return externalRelations_;
  }
  void setUnificarTelaFiltro(bool unificar) override { joinsFilterScreen_ = unificar; }
  bool getUnificarTelaFiltro() const override { return joinsFilterScreen_; }
  std::vector<std::shared_ptr<moxFilterSpecification const>> getFilters() const override;

  /// An external member keeps the name of its source, and is saved by it.
  void setDataSource(std::shared_ptr<moxDataSource const> dataSource) override;

 private:
  std::string name_;
  bool joinsFilterScreen_ = false;
  std::shared_ptr<moxDataSource> held_;
  std::shared_ptr<moxDataSource const> lent_;  // goes ahead of the one that is held or named
  std::string externalName_;                   // empty unless the source is elsewhere
  std::vector<std::pair<std::string, std::string>> externalRelations_;
  Relation relation_;
};
