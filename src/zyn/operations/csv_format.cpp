#include "zyn/operations/csv_format.h"

#include <algorithm>
#include <fstream>
#include <vector>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/text_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix_exporter.h"
#include "mox/zyn/matrix/iterator.h"
#include "zyn/format/cell_writer.h"
#include "zyn/operations/export_row.h"

namespace DME {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 18;
constexpr char const* kPlainHeader = "Exportar";  // needs no formatter in the exporter's list

/// Collects lines, so that the file is written in large pieces.
class LineFile {
 public:
  LineFile(std::string const& fileName, std::string const& separator)
      : file_(fileName, std::ios::binary | std::ios::trunc), separator_(separator) {}
  LineFile(LineFile const&) = delete;
  LineFile& operator=(LineFile const&) = delete;
  ~LineFile() { flush(); }

  bool isOpen() const { return file_.is_open(); }
  std::string const& separator() const { return separator_; }

  void append(std::string const& text) {
    place_ = buffer_.room(place_, text.size());
    place_ = std::copy(text.begin(), text.end(), place_);
  }
  void separate() { append(separator_); }

  void endLine() {
    append("\n");
    written(place_);
  }

  /// For whoever writes into the buffer itself: where to begin, with so much room; and where a line
  /// ended.
  char* place(std::size_t room) { return place_ = buffer_.room(place_, room); }
  TextBuffer& buffer() { return buffer_; }
  void written(char* end) {
    place_ = end;
    if (buffer_.sizeUpTo(place_) >= kPiece) {
      flush();
    }
  }

 private:
  void flush() {
    file_.write(buffer_.begin(), static_cast<std::streamsize>(buffer_.sizeUpTo(place_)));
    place_ = buffer_.begin();
  }

  std::ofstream file_;
  std::string const& separator_;
  TextBuffer buffer_{kPiece + kPiece / 4};  // most lines end before it has to grow
  char* place_ = buffer_.begin();
};

/// A line of our own columns, which write their cells by themselves.
class OwnLine {
 public:
  OwnLine(Internals::ExportRow const& row, std::string const& separator) : separator_(separator) {
    for (auto const& column : row.columns()) {
      cells_.emplace_back(column->text());
      room_ += cells_.back().room() + separator.size();
    }
    room_ += 1;
  }

  void write(LineFile& file, unsigned int row) {
    TextBuffer& buffer = file.buffer();
    char* place = cells_.front().write(buffer, file.place(room_), room_, row);
    for (std::size_t i = 1; i < cells_.size(); ++i) {
      place = separate(place);
      place = cells_[i].write(buffer, place, room_, row);
    }
    *place++ = '\n';
    file.written(place);
  }

 private:
  /// Mostly a single byte, for which a call to copy it would be much.
  char* separate(char* place) const {
    if (separator_.size() == 1) {
      *place = separator_.front();
      return place + 1;
    }
    return std::copy(separator_.begin(), separator_.end(), place);
  }

  std::vector<CellWriter> cells_;
  std::string const& separator_;
  std::size_t room_ = 0;  // of a line, without what long texts take
};

void writeOwnRows(LineFile& file, Internals::ExportRow const& row) {
  if (row.row() >= row.rowCount()) {
    return;
  }
  OwnLine line(row, file.separator());
  for (unsigned int number = row.row(); number < row.rowCount(); ++number) {
    line.write(file, number);
  }
}

/// Columns of other libraries may differ in length: there is a row where all of them have one.
bool hasRow(moxDataMatrixExporterRow const& row) {
  for (unsigned int i = 0; i < row.columnCount(); ++i) {
    if (row.column(i)->getIterator()->atEnd()) {
      return false;
    }
  }
  return row.columnCount() != 0;
}

void writeRows(LineFile& file, moxDataMatrixExporterRow& row) {
  std::string value;
  for (bool more = hasRow(row); more; more = row.next()) {
    for (unsigned int i = 0; i < row.columnCount(); ++i) {
      if (i != 0) {
        file.separate();
      }
      value.clear();
      row.column(i)->appendValue(value);
      file.append(value);
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
      file.append(formatter->asString(row->column(i)->columnName()));
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
