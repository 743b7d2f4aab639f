#include "zyn/operations/csv_format.h"

#include <fstream>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/text_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix_exporter.h"
#include "mox/zyn/matrix/iterator.h"
#include "zyn/operations/export_row.h"

namespace DME {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 16;
constexpr char const* kPlainHeader = "Exportar";  // needs no formatter in the exporter's list

/// Collects lines, so that the file is written in large pieces.
class LineFile {
 public:
  LineFile(std::string const& fileName, std::string const& separator)
      : file_(fileName, std::ios::binary | std::ios::trunc), separator_(separator) {}
  LineFile(LineFile const&) = delete;
  LineFile& operator=(LineFile const&) = delete;
  ~LineFile() { write(); }

  bool isOpen() const { return file_.is_open(); }

  /// Whoever fills the line calls separate between two values.
  std::string& line() { return pending_; }
  void separate() { pending_ += separator_; }

  void endLine() {
    pending_ += '\n';
    if (pending_.size() >= kPiece) {
      write();
    }
  }

 private:
  void write() {
    file_.write(pending_.data(), static_cast<std::streamsize>(pending_.size()));
    pending_.clear();
  }

  std::ofstream file_;
  std::string const& separator_;
  std::string pending_;
};

/// A row of our own is written by its columns, which spares a string and a cursor's step a cell.
void writeOwnRows(LineFile& file, Internals::ExportRow const& row) {
  auto const& columns = row.columns();
  for (unsigned int number = row.row(); number < row.rowCount(); ++number) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i != 0) {
        file.separate();
      }
      columns[i]->appendValue(file.line(), number);
    }
    file.endLine();
  }
}

bool hasRow(moxDataMatrixExporterRow const& row) {
  return row.columnCount() != 0 && !row.column(0)->getIterator()->atEnd();
}

void writeRows(LineFile& file, moxDataMatrixExporterRow& row) {
  for (bool more = hasRow(row); more; more = row.next()) {
    for (unsigned int i = 0; i < row.columnCount(); ++i) {
      if (i != 0) {
        file.separate();
      }
      row.column(i)->appendValue(file.line());
    }
    file.endLine();
  }
}

}  // namespace

bool CSVFormat::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  node->writeAttribute("separator", separator_);
  node->writeAttribute("headerFormat", headerFormatter_);
  return true;
}

bool CSVFormat::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  separator_ = node->readAttribute("separator");
  headerFormatter_ = node->readAttribute("headerFormat");
  return true;
}

std::shared_ptr<moxTextFormatter const> CSVFormat::headerFormatter() const {
  auto const exporter = parent_.lock();
  if (headerFormatter_.empty() || !exporter) {
    return {};
  }
  if (headerFormatter_ == kPlainHeader) {
    return moxApp->get<moxTextFormatter>("moxTextFormatter");
  }
  return std::dynamic_pointer_cast<moxTextFormatter const>(
      exporter->formatterByName(headerFormatter_));
}

void CSVFormat::exportToFile(std::string const& fileName,
                             std::shared_ptr<moxDataMatrixExporterRow> row) const {
  LineFile file(fileName, separator_);
  if (!file.isOpen()) {
    return;
  }
  if (auto const formatter = headerFormatter()) {
    for (unsigned int i = 0; i < row->columnCount(); ++i) {
      if (i != 0) {
        file.separate();
      }
      file.line() += formatter->asString(row->column(i)->columnName());
    }
    file.endLine();
  }
  if (auto const own = std::dynamic_pointer_cast<Internals::ExportRow>(row)) {
    writeOwnRows(file, *own);
  } else {
    writeRows(file, *row);
  }
}

}  // namespace DME
