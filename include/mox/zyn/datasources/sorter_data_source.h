#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mox/zyn/datasources/data_source.h"
#include "mox/zyn/datasources/data_source_option.h"

/// The order that a user chose.
class moxSorterDataSourceOptionData : public virtual moxDataSourceOptionData {
 public:
  virtual void setOrder(std::string const& columnName, bool descending) = 0;

  /// (column, descending); an empty name and false at first.
  virtual std::pair<std::string, bool> getOrder() const = 0;
};

/// The choice of a sorter's order. Keeps the sorter's definition alive.
class moxSorterDataSourceOption : public virtual moxDataSourceOption {
 public:
  /// (column, descending); an empty name and false when no column has a direction.
  virtual std::pair<std::string, bool> getDefaultOrder() const = 0;

  /// (column, text for the user) of every column on offer, in order.
  virtual std::vector<std::pair<std::string, std::string>> getAvailableColumns() const = 0;
};

/// The rows of another source, in another order, which may be the user's to choose. Registered as
/// "moxSorterDataSource".
class moxSorterDataSource : public virtual moxDataSource {
 public:
  struct ColumnInfo {
    /// The numbers are part of the interface.
    enum SortMode { kSemDirecao = 0, kCrescente = 1, kDecrescente = 2 };

    std::string name;         // of a column of the source
    std::string description;  // for the user
    SortMode mode = kSemDirecao;
  };

  /// A column that is there keeps its place and takes the new description and mode; another goes to
  /// the end. Always true.
  virtual bool setOrderColumn(std::string const& name, std::string const& description,
                              ColumnInfo::SortMode mode) = 0;

  /// A name that is not there changes nothing.
  virtual void removeOrderColumn(std::string const& name) = 0;
  virtual std::vector<ColumnInfo> getOrderColumns() const = 0;

  /// The source that is sorted.
  virtual std::string getDataSourceName() const = 0;
  virtual void setDataSourceName(std::string const& dataSourceName) = 0;

  virtual void clearOrderColumns() = 0;

  /// Whether the order is the user's to choose, as it is at first. The columns are then what he is
  /// offered, and the first one with a direction is the order without his answer.
  virtual void setUserDefined(bool userDefined) = 0;
  virtual bool getUserDefined() const = 0;

  /// The heading of the user's choice.
  virtual void setDescription(std::string const& description) = 0;
};
