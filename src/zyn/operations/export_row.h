#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/zyn/matrix/data_matrix_exporter_format.h"
#include "zyn/format/cell_text.h"

namespace DME::Internals {

class ExportColumn final : public moxDataMatrixExporterColumn {
 public:
  /// An empty formatter stands for the plain one of the column's kind, an empty header for its
  /// name.
  ExportColumn(std::shared_ptr<moxDataMatrixColumn> const& column,
               std::shared_ptr<moxGenericFormatter const> formatter, std::string header);

  std::string name() const override { return "moxDataMatrixExporterColumn"; }
  std::shared_ptr<moxIterator> getIterator() const override { return cursor_; }
  std::string columnName() const override { return header_; }
  std::string value() const override { return text_.at(cursor_->pos()); }
  bool next() override { return cursor_->next(); }
  void appendValue(std::string& text) const override { text_.appendTo(text, cursor_->pos()); }
  std::shared_ptr<moxGenericFormatter const> getFormatter() const override { return formatter_; }

  /// What value() gives, for any row.
  CellText const& text() const { return text_; }
  void goTo(unsigned int row) { cursor_->goTo(row); }

 private:
  std::shared_ptr<moxIterator> cursor_;
  std::string header_;
  std::shared_ptr<moxGenericFormatter const> formatter_;
  CellText text_;
};

/// A row of a matrix as it is written. Rows are counted by the matrix, whatever a column has beyond
/// its end.
class ExportRow final : public moxDataMatrixExporterRow {
 public:
  explicit ExportRow(unsigned int rowCount) : rowCount_(rowCount) {}

  std::string name() const override { return "moxDataMatrixExporterRow"; }
  unsigned int columnCount() const override { return static_cast<unsigned int>(columns_.size()); }
  std::shared_ptr<moxDataMatrixExporterColumn> column(unsigned int index) const override;
  bool next() override;

  void addColumn(std::shared_ptr<ExportColumn> column) { columns_.push_back(std::move(column)); }
  std::vector<std::shared_ptr<ExportColumn>> const& columns() const { return columns_; }

  unsigned int row() const { return row_; }

  /// 0 without columns: a row of nothing is none.
  unsigned int rowCount() const { return columns_.empty() ? 0 : rowCount_; }

 private:
  std::vector<std::shared_ptr<ExportColumn>> columns_;
  unsigned int rowCount_;
  unsigned int row_ = 0;
};

}  // namespace DME::Internals
