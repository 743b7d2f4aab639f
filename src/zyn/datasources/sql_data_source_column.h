#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox/core/database_connection.h"
#include "mox/zyn/datasources/sql_data_source_column.h"
#include "zyn/frame/xml_element.h"
#include "zyn/items/packed_texts.h"

/// The column of SQL sources and of filter sources, which make it themselves.
class SQLDataSourceColumn final : public moxSQLDataSourceColumn, public LoadedFromElement {
 public:
  using FieldInfo = moxDatabaseConnection::FieldInfo;
  using Column = std::shared_ptr<moxSQLDataSourceColumn>;
  using Formatter = std::shared_ptr<moxGenericFormatter>;
  using StringPair = std::pair<std::string, std::string>;

  std::string name() const override { return "moxSQLDataSourceColumn"; }

  void setVisibleName(std::string const& visibleName) override {
    texts_.set(kVisibleName, visibleName);
  }
  void setWidth(int width) override { width_ = width; }
  void setVisible(bool visible) override { visible_ = visible; }
  void setIconColumn(Column column) override { extras().iconColumn = std::move(column); }
  std::string getVisibleName() const override { return textOf(kVisibleName); }
  int getWidth() const override { return width_; }
  bool getVisible() const override { return visible_; }
  Column getIconColumn() const override { return extras_ ? extras_->iconColumn : nullptr; }
  FieldTypes getDbType() const override { return dbType_; }
  void setDbType(FieldTypes type) override { dbType_ = type; }
  void setFormatter(Formatter formatter) override { formatter_ = std::move(formatter); }
  void setIconFormatter(Formatter formatter) override {
    extras().iconFormatter = std::move(formatter);
  }
  Formatter getFormatter() override { return formatter_; }
  Formatter getIconFormatter() override { return iconFormatter(); }
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return formatter_; }
  std::shared_ptr<moxGenericFormatter const> getIconFormatter() const override {
    return iconFormatter();
  }
  bool save(std::shared_ptr<moxXMLNode> node) override;
  bool load(std::shared_ptr<moxXMLNode> node) override;
  bool loadElement(XmlElement const& element) override;
  void setDataType(std::string const& dataType) override { texts_.set(kDataType, dataType); }
  std::string getDataType() const override { return textOf(kDataType); }
  void setIdColumn(Column column) override { extras().idColumn = std::move(column); }
  Column getIdColumn() const override { return extras_ ? extras_->idColumn : nullptr; }
  std::string getTableName() const override { return textOf(kTable); }
  std::string getTableNameOrigin() const override { return textOf(kTableOrigin); }
  std::string getColumnName() const override { return textOf(kColumn); }
  std::string getColumnNameOrigin() const override { return textOf(kColumnOrigin); }
  void setTableName(std::string const& tableName) override { texts_.set(kTable, tableName); }
  void setColumnName(std::string const& columnName) override { texts_.set(kColumn, columnName); }
  std::string getColumnNameFull() const override;
  moxDataMatrixTypes::Types getDataMatrixType() const override;
  void addAllowedFiltersType(StringPair const& filter) override;
  std::vector<StringPair> getAllowedFiltersType() const override {
    return extras_ ? extras_->allowedFiltersType : std::vector<StringPair>();
  }
  void removeAllowedFiltersType(StringPair const& filter) override;
  StringPair getSQLColumn() const override { return {textOf(kExpression), textOf(kAlias)}; }
  int getSQLColumnIndex() const override { return sqlColumnIndex_; }
  void setSQLColumn(StringPair const& expressionAndAlias) override;
  void setSQLColumnIndex(int index) override { sqlColumnIndex_ = index; }
  void setColumnOrigin(std::vector<SQLColum> const& origin) override {
    extras().columnOrigin = origin;
  }
  std::vector<SQLColum> getColumnOrigin() const override {
    return extras_ ? extras_->columnOrigin : std::vector<SQLColum>();
  }
  void setAvaliable(bool avaliable) override { avaliable_ = avaliable; }
  bool getAvaliable() const override { return avaliable_; }

  /// Takes names and type from a field of a query, or none for null, and makes the column visible,
  /// available and 100 wide: how an editor begins one.
  void startFrom(FieldInfo const* info);

  /// Binds the icon and key columns that load found named to those of the source, behind whose
  /// pointer stands anything with columns(). Of several columns of the name the last one counts; a
  /// name that no column has leaves the reference empty. To be called when all columns are there.
  template <class SourcePointer>
  void updateRelations(SourcePointer const& source) {
    if (!references_) {
      return;
    }
    for (auto const& column : source->columns()) {
      bindReferences(column);
    }
    references_.reset();
  }

  /// Lets go of the icon and key columns, which may refer back and would keep each other alive.
  void releaseReferences();

  /// The names without a copy, for loops over many columns.
  bool isCalled(std::string_view table, std::string_view column) const {
    return columnName() == column && texts_[kTable] == table;
  }
  std::string_view columnName() const { return texts_[kColumn]; }
  std::string_view expression() const { return texts_[kExpression]; }
  std::string_view alias() const { return texts_[kAlias]; }

 private:
  /// Places in texts_.
  enum Text : std::size_t {
    kTable,
    kTableOrigin,
    kColumn,
    kColumnOrigin,
    kVisibleName,
    kDataType,
    kExpression,
    kAlias,
    kTextCount,
  };
  using Texts = PackedTexts<kTextCount>;

  /// What few columns have.
  struct Extras {
    std::vector<StringPair> allowedFiltersType;
    Column idColumn;
    Column iconColumn;
    Formatter iconFormatter;
    std::vector<SQLColum> columnOrigin;
  };

  /// The names of a column that may come later in the document.
  struct Reference {
    std::string table;
    std::string column;

    bool isEmpty() const { return column.empty(); }
    bool names(moxSQLDataSourceColumn const& other) const;
    bool names(SQLDataSourceColumn const& other) const {  // without copies of its names
      return !isEmpty() && other.isCalled(table, column);
    }
  };

  struct References {
    Reference icon;
    Reference key;
  };

  static Reference readReference(XmlElement const& node, std::string_view element);
  template <class ColumnPointer>
  void bindReferences(ColumnPointer const& column) {
    if (references_->icon.names(*column)) {
      extras().iconColumn = column;
    }
    if (references_->key.names(*column)) {
      extras().idColumn = column;
    }
  }

  std::string textOf(Text text) const { return std::string(texts_[text]); }
  Formatter iconFormatter() const { return extras_ ? extras_->iconFormatter : nullptr; }
  Extras& extras();

  void loadTexts(XmlElement const& node);
  void loadAttributes(XmlElement const& node);
  void loadReferences(XmlElement const& node);
  void loadFormatters(XmlElement const& node);
  void loadFiltersType(XmlElement const& node);
  void saveAttributes(moxXMLNode& node) const;
  void saveFormatters(moxXMLNode& node) const;
  void saveFiltersType(moxXMLNode& node) const;
  void saveExpression(moxXMLNode& node) const;

  bool visible_ = false;
  bool avaliable_ = false;
  int width_ = 0;
  FieldTypes dbType_ = kUnknown;
  int sqlColumnIndex_ = 0;
  Texts texts_;
  std::unique_ptr<References> references_;  // from load until updateRelations, where there are any
  Formatter formatter_;
  std::unique_ptr<Extras> extras_;  // made when the first of them is set
};
