#pragma once

#include <memory>
#include <string>

#include "mox/zyn/filters/filter_specification.h"
#include "zyn/frame/xml_element.h"

/// What all filter specifications share: their state and its XML. Derived classes tell the kind of
/// value, and the concrete ones what becomes of it.
class FilterSpecCommons : public virtual moxFilterSpecification, public LoadedFromElement {
 public:
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool loadElement(XmlElement const& element) override;

  void setTableName(std::string const& tableName) override { tableName_ = tableName; }
  std::string getTableName() const override { return tableName_; }
  void setColumn(std::string const& column) override { column_ = column; }
  std::string getColumn() const override { return column_; }

  std::string getVisualRepresentation() const override { return visualRepresentation_; }
  void setVisualRepresentation(std::string const& visualRepresentation) override;

  void setPosition(unsigned x, unsigned y) override;
  void setSpan(unsigned spanX, unsigned spanY) override;
  void getDimension(unsigned* x, unsigned* y, unsigned* spanX, unsigned* spanY) const override;

  void setDescription(std::string const& description) override { description_ = description; }
  std::string getDescription() const override { return description_; }

  std::shared_ptr<moxPropertiesObject> visualExtraProperties() const override {
    return extraProperties_;
  }

  void setSQLDataSourceColumn(std::shared_ptr<moxSQLDataSourceColumn> column) override;
  std::shared_ptr<moxSQLDataSourceColumn> getSQLDataSourceColumn() const override {
    return dataSourceColumn_;
  }

  bool getRequire() const override { return require_; }
  void setRequire(bool require) override { require_ = require; }

 protected:
  /// A new filter of that registered name, on the column.
  std::shared_ptr<moxDataMatrixSQLFilter> newFilter(std::string const& registeredName) const;

 private:
  /// What one kind of value has in XML beyond the others.
  virtual void saveKind(moxXMLNode& /*node*/) const {}
  virtual void loadKind(XmlElement const& /*element*/) {}

  void saveColumn(moxXMLNode& node) const;
  void saveExtraProperties(moxXMLNode& node) const;
  void loadExtraProperties(XmlElement const& element);
  void savePosition(moxXMLNode& node) const;
  void loadPosition(XmlElement const& element);

  std::string column_;
  std::string visualRepresentation_;
  std::string description_;
  std::string tableName_;
  unsigned spanX_ = 0;
  unsigned spanY_ = 0;
  unsigned positionX_ = 0;
  unsigned positionY_ = 0;
  std::shared_ptr<moxPropertiesObject> extraProperties_;
  std::shared_ptr<moxSQLDataSourceColumn> dataSourceColumn_;  // empty while unbound
  bool require_ = false;
};

class IntegralFilterSpecCommons : public FilterSpecCommons,
                                  public virtual moxIntegralFilterSpecification {
 public:
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Int; }
};

class DoubleFilterSpecCommons : public FilterSpecCommons,
                                public virtual moxDoubleFilterSpecification {
 public:
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Double; }
};

class TextFilterSpecCommons : public FilterSpecCommons, public virtual moxTextFilterSpecification {
 public:
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Text; }
  bool getRemovePunctuation() const override { return removePunctuation_; }
  void setRemovePunctuation(bool removePunctuation) override {
    removePunctuation_ = removePunctuation;
  }

 private:
  void saveKind(moxXMLNode& node) const override;
  void loadKind(XmlElement const& element) override;

  bool removePunctuation_ = false;
};

class DateFilterSpecCommons : public FilterSpecCommons,
                              public virtual moxDateTimeFilterSpecification {
 public:
  moxDataMatrixTypes::Types getType() const override { return moxDataMatrixTypes::Date; }
};
