#pragma once

#include <memory>
#include <set>
#include <string>

#include "mox/zyn/datasources/filter_data_source.h"

/// A fixed condition of a filter source.
class FilterDataSourceSpec final : public moxFilterDataSourceSpec {
 public:
  std::string name() const override { return "moxFilterDataSourceSpec"; }

  void setSQL(std::string const& sql) override { sql_ = sql; }
  moxSQLDataSourceColumn::SQLColum getColumnOrigin() const override { return columnOrigin_; }
  void setColumnOrigin(moxSQLDataSourceColumn::SQLColum const& column) override {
    columnOrigin_ = column;
  }
  void setIds(std::set<int> const& ids) override { ids_ = ids; }
  std::set<int> getIds() override { return ids_; }
  Tipos getTipo() const override { return tipo_; }
  std::string getSQL() override { return sql_; }
  void setPluginFilter(std::string const& pluginFilter) override { pluginFilter_ = pluginFilter; }
  std::string getPluginFilter() const override { return pluginFilter_; }

  /// The statement is sent as it stands, without tokens and without units, on every call.
  std::shared_ptr<moxDataMatrixSQLFilter> getDataMatrixFilter() const override;

  void setTipo(Tipos tipo) override { tipo_ = tipo; }

 private:
  std::string sql_;    // of kSql
  std::set<int> ids_;  // of kValor
  Tipos tipo_ = kValor;
  std::string pluginFilter_;
  moxSQLDataSourceColumn::SQLColum columnOrigin_;
};
