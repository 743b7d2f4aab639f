#pragma once

#include <memory>
#include <string>

#include "mox/core/plugin_base.h"

class moxDataMatrixExporter;
class moxGenericFormatter;
class moxIterator;
class moxXMLNode;

/// A column of a row that is being written.
class moxDataMatrixExporterColumn : public virtual moxPluginBase {
 public:
  virtual std::shared_ptr<moxIterator> getIterator() const = 0;

  /// The heading when there is one, otherwise the column's name.
  virtual std::string columnName() const = 0;

  /// The cell as its formatter gives it.
  virtual std::string value() const = 0;

  /// Moves to the next row; false when there is none.
  virtual bool next() = 0;

  /// Adds what value() gives to a text, which spares a string a cell.
  virtual void appendValue(std::string& text) const { text += value(); }

  /// The formatter that was set for the column, so that a format which knows it may read the cells
  /// by itself; empty for that of the column's kind of values.
  virtual std::shared_ptr<moxGenericFormatter const> getFormatter() const { return {}; }
};

/// The row that is being written, at first the first one of the matrix.
class moxDataMatrixExporterRow : public virtual moxPluginBase {
 public:
  virtual unsigned int columnCount() const = 0;

  /// Empty past the last.
  virtual std::shared_ptr<moxDataMatrixExporterColumn> column(unsigned int index) const = 0;

  /// Moves all columns; false when there are no more rows.
  virtual bool next() = 0;
};

/// How rows become a file.
class moxDataMatrixExporterFormat : public virtual moxPluginBase {
 public:
  /// False, and nothing changes, for an empty node.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// The exporter whose formatters the format may use.
  virtual void setParentExporter(std::weak_ptr<moxDataMatrixExporter const> exporter) = 0;

  /// Writes the file anew, whatever it held before. A file that cannot be opened is not reported.
  virtual void exportToFile(std::string const& fileName,
                            std::shared_ptr<moxDataMatrixExporterRow> row) const = 0;
};

/// Values with a separator between them, a line feed behind each row, and nothing quoted: a value
/// stands as it is. Registered as "moxDataMatrixExporterCSVFormat".
class moxDataMatrixExporterCSVFormat : public virtual moxDataMatrixExporterFormat {
 public:
  /// ";" at first.
  virtual void setSeparator(std::string const& separator) = 0;

  /// The text formatter of the exporter that the headings pass through; "Exportar" for a plain one.
  /// Without a name there is no heading line.
  virtual void setHeaderFormatter(std::string const& formatterName) = 0;
  virtual std::string getSeparator() const = 0;
  virtual std::string getHeaderFormatterName() const = 0;
};
