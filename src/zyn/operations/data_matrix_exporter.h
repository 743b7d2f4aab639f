#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_exporter.h"
#include "mox/zyn/matrix/data_matrix_types.h"

class DataMatrixExporter final : public moxDataMatrixExporter,
                                 public std::enable_shared_from_this<DataMatrixExporter> {
 public:
  using Formatter = std::shared_ptr<moxGenericFormatter>;
  using ConstFormatter = std::shared_ptr<moxGenericFormatter const>;

  std::string name() const override { return "moxDataMatrixExporter"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) override;

  void addFormatter(Formatter formatter) override;
  void removeFormatter(Formatter formatter) override;
  std::vector<Formatter> getFormatters() override { return formatters_; }
  std::vector<ConstFormatter> getFormatters() const override {
    return {formatters_.begin(), formatters_.end()};
  }
  ConstFormatter formatterByName(std::string const& name) const override;

  void setSampleDataMatrix(std::shared_ptr<moxDataMatrix const> matrix) override;
  void setColumnInfo(std::string const& columnName, ExportInfo info,
                     std::string const& header) override;
  void setColumnFormatter(std::string const& columnName, std::string const& formatter) override;
  std::vector<ColumnData> getColumns() override;

  bool exportToFile(std::string const& fileName, std::shared_ptr<moxDataMatrix> matrix,
                    bool visible, bool detail) const override;

  void setOutputFormat(std::string const& registeredName) override;
  std::shared_ptr<moxDataMatrixExporterFormat> getOutputFormat() override { return format_; }

 private:
  struct Column {
    ColumnData data;
    moxDataMatrixTypes::Types type;  // in the sample
  };

  std::vector<Column>::iterator findColumn(std::string const& columnName);
  void saveColumns(moxXMLNode& node) const;
  static std::vector<Column> columnsIn(moxXMLNode const& node);
  void takeFormat(std::shared_ptr<moxDataMatrixExporterFormat> format);
  std::shared_ptr<moxDataMatrixExporterFormat> loadFormat(moxXMLNode const& node) const;

  std::vector<Formatter> formatters_;
  std::vector<Column> columns_;
  std::shared_ptr<moxDataMatrixExporterFormat> format_;
};
