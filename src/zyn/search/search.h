#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/sql_data_source_column.h"
#include "mox/zyn/search/search.h"

/// The definition of a list screen. What it finds by name it keeps no reference to: it is shared by
/// sessions, and each of them may have a source of its own under the name.
class moxSE_Search final : public moxSearch {
 public:
  using ColumnNames = moxSQLDataSourceColumn::SQLColum;

  std::string name() const override { return "moxSearch"; }

  /// Meant for a new object. False for an empty node alone. Throws what the own source throws when
  /// it is read, and moxPluginNotFound for a source of an unknown class.
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool save(std::shared_ptr<moxXMLNode> node) const override;

  std::string description() const override { return internalName_; }
  int getTipo() const override { return kSearch; }
  std::shared_ptr<moxZYNItem> getZynItemRelated() override { return {}; }
  void setParentLibraryName(std::string const& libraryName) override {
    parentLibraryName_ = libraryName;
  }
  std::string getParentLibName() const override { return parentLibraryName_; }

  void setInternalName(std::string const& internalName) override { internalName_ = internalName; }
  void setHeaderName(std::string const& headerName) override { headerName_ = headerName; }
  std::string getHeaderName() const override { return headerName_; }
  void setAllowReorder(bool allowReorder) override { allowReorder_ = allowReorder; }
  void setAutoFill(bool autoFill) override { autoFill_ = autoFill; }
  bool allowReorder() const override { return allowReorder_; }
  bool autoFill() const override { return autoFill_; }
  void setInitialSize(unsigned int width, unsigned int height) override;
  unsigned int getInitialWidth() const override { return initialWidth_; }
  unsigned int getInitialHeight() const override { return initialHeight_; }

  std::shared_ptr<moxSQLDataSourceColumn const> getInitialOrderColumn() const override;
  bool getInitialOrderAscending() const override { return initialOrderAscending_; }
  void setInitialOrderColumn(std::shared_ptr<moxSQLDataSourceColumn const> column,
                             bool ascending) override;

  std::shared_ptr<moxDataSource> getDataSource() override { return dataSource_; }
  std::shared_ptr<moxDataSource const> getDataSource() const override;
  void setDataSource(std::shared_ptr<moxDataSource> dataSource) override;
  std::string dataSourceExterno() const override { return dataSourceExterno_; }
  void setDataSourceExterno(std::string const& name,
                            std::shared_ptr<moxDataSource const> dataSource) override;
  std::shared_ptr<moxSQLDataSource const> getSqlDataSource() const override;

  void setRequireFilter(bool requireFilter) override { requireFilter_ = requireFilter; }
  bool requireFilter() const override { return requireFilter_; }
  void setRequirePermission(bool requirePermission) override {
    requirePermission_ = requirePermission;
  }
  bool requirePermission() const override { return requirePermission_; }

  // For reading and writing the definition's element.

  /// Whether the source is named, not owned.
  bool isSourceExternal() const { return externalSource_; }
  std::shared_ptr<moxDataSource const> ownedSource() const { return dataSource_; }

  /// The names of the initial sort column, by which its source finds it.
  ColumnNames const& initialOrderNames() const { return initialOrderNames_; }
  void setInitialOrderNames(ColumnNames names, bool ascending);

 private:
  std::shared_ptr<moxDataSource const> namedSource() const;

  std::string internalName_;
  std::string headerName_;
  std::string parentLibraryName_;
  std::string dataSourceExterno_;
  ColumnNames initialOrderNames_;
  std::shared_ptr<moxSQLDataSourceColumn const> initialOrderColumn_;  // as given, else empty
  std::shared_ptr<moxDataSource> dataSource_;                         // owned
  std::weak_ptr<moxDataSource const> givenSource_;                    // for the external name
  unsigned int initialWidth_ = 760;                                   // pixels
  unsigned int initialHeight_ = 450;
  bool autoFill_ = false;
  bool allowReorder_ = false;
  bool initialOrderAscending_ = false;
  bool externalSource_ = false;
  bool requireFilter_ = false;
  bool requirePermission_ = true;
};
