#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mox/core/plugin_base.h"

class moxDataMatrix;
class moxDataMatrixExporterFormat;
class moxGenericFormatter;
class moxXMLNode;

/// Writes a matrix to a file: which columns, how each is formatted, and in which format. Registered
/// as "moxDataMatrixExporter", a new one on every call. Constant operations are safe from any
/// thread while nobody changes it.
class moxDataMatrixExporter : public virtual moxPluginBase {
 public:
  /// When a column takes part. The numbers are part of the interface.
  enum ExportInfo {
    kSempre = 0,   // always
    kVisivel = 1,  // when visible columns are asked for
    kDetalhe = 2,  // when detail columns are asked for
    kNunca = 3     // never
  };

  struct ColumnData {
    std::string name;
    ExportInfo info = kSempre;
    std::string formatter;  // by name; empty for the one of the column's kind of values
    std::string header;     // empty for the name
  };

  /// False, and nothing changes, for an empty node.
  virtual bool save(std::shared_ptr<moxXMLNode> node) const = 0;
  virtual bool load(std::shared_ptr<moxXMLNode> node) = 0;

  /// The formatters that columns name; the same object is kept once.
  virtual void addFormatter(std::shared_ptr<moxGenericFormatter> formatter) = 0;
  virtual void removeFormatter(std::shared_ptr<moxGenericFormatter> formatter) = 0;
  virtual std::vector<std::shared_ptr<moxGenericFormatter>> getFormatters() = 0;
  virtual std::vector<std::shared_ptr<moxGenericFormatter const>> getFormatters() const = 0;

  /// The first formatter of that name; empty for none.
  virtual std::shared_ptr<moxGenericFormatter const> formatterByName(
      std::string const& name) const = 0;

  /// Takes the columns of a matrix like those that will be written, each always taking part and
  /// formatted by its kind of values. Columns of the same name keep what was said of them.
  virtual void setSampleDataMatrix(std::shared_ptr<moxDataMatrix const> matrix) = 0;

  /// Nothing happens for a column that the sample does not have.
  virtual void setColumnInfo(std::string const& columnName, ExportInfo info,
                             std::string const& header) = 0;
  virtual void setColumnFormatter(std::string const& columnName, std::string const& formatter) = 0;
  virtual std::vector<ColumnData> getColumns() = 0;

  /// Writes the columns that take part, in the order of the sample; one that the matrix lacks is
  /// left out. `visible` and `detail` ask for the columns of these two infos. False, and nothing is
  /// written, without an output format. A file that cannot be opened is not reported.
  virtual bool exportToFile(std::string const& fileName, std::shared_ptr<moxDataMatrix> matrix,
                            bool visible, bool detail) const = 0;

  /// By registered name; throws moxPluginNotFound for an unknown one.
  virtual void setOutputFormat(std::string const& registeredName) = 0;
  virtual std::shared_ptr<moxDataMatrixExporterFormat> getOutputFormat() = 0;
};
