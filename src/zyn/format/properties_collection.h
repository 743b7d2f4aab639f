#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/format/properties_collection.h"

class PropertiesCollection final : public moxPropertiesCollection,
                                   public moxDetachable,
                                   public std::enable_shared_from_this<PropertiesCollection> {
 public:
  PropertiesCollection() { setXMLGroup({}); }
  PropertiesCollection(PropertiesCollection const&) = delete;
  PropertiesCollection& operator=(PropertiesCollection const&) = delete;

  std::string name() const override { return "moxPropertiesCollection"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) override;

  std::vector<std::shared_ptr<moxProperty>> getProperties() const override { return all_; }
  void setObject(moxPropertiesObject* owner) override { owner_ = owner; }
  void propertyChanged() override;
  void setXMLGroup(std::string const& group) override { currentGroup_ = &groups_[group]; }

  std::shared_ptr<moxIntProperty> addIntProperty(std::string const& name,
                                                 std::string const& description,
                                                 int* target) override;
  std::shared_ptr<moxDoubleProperty> addDoubleProperty(std::string const& name,
                                                       std::string const& description,
                                                       double* target) override;
  std::shared_ptr<moxStringProperty> addStringProperty(std::string const& name,
                                                       std::string const& description,
                                                       std::string* target) override;
  std::shared_ptr<moxTextProperty> addTextProperty(std::string const& name,
                                                   std::string const& description,
                                                   std::string* target) override;
  std::shared_ptr<moxBooleanProperty> addBooleanProperty(std::string const& name,
                                                         std::string const& description,
                                                         bool* target) override;
  std::shared_ptr<moxProperty> addCustomProperty(std::shared_ptr<moxProperty> property) override;

  std::vector<std::shared_ptr<moxProperty const>> findProperties(
      std::type_info const& type) const override;
  std::shared_ptr<moxProperty const> findProperty(std::string const& name,
                                                  std::type_info const& type) const override;

  void detach() override;

 private:
  using Group = std::vector<std::shared_ptr<moxProperty>>;

  moxPropertiesObject* owner_ = nullptr;
  Group all_;
  std::map<std::string, Group> groups_;
  Group* currentGroup_ = nullptr;  // in groups_, whose entries stay where they are
};
