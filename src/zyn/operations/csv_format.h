#pragma once

#include <memory>
#include <string>

#include "mox/zyn/matrix/data_matrix_exporter_format.h"

class moxTextFormatter;

namespace DME {

class CSVFormat final : public moxDataMatrixExporterCSVFormat {
 public:
  std::string name() const override { return "moxDataMatrixExporterCSVFormat"; }
  bool save(std::shared_ptr<moxXMLNode> node) const override;
  bool load(std::shared_ptr<moxXMLNode> node) override;
  void setParentExporter(std::weak_ptr<moxDataMatrixExporter const> exporter) override {
    parent_ = std::move(exporter);
  }
  void exportToFile(std::string const& fileName,
                    std::shared_ptr<moxDataMatrixExporterRow> row) const override;

  void setSeparator(std::string const& separator) override { separator_ = separator; }
  void setHeaderFormatter(std::string const& formatterName) override {
    headerFormatter_ = formatterName;
  }
  std::string getSeparator() const override { return separator_; }
  std::string getHeaderFormatterName() const override { return headerFormatter_; }

 private:
  std::shared_ptr<moxTextFormatter const> headerFormatter() const;

  std::string separator_ = ";";
  std::string headerFormatter_;  // by name; empty for no header line
  std::weak_ptr<moxDataMatrixExporter const> parent_;
};

}  // namespace DME
