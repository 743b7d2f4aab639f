#include "zyn/operations/data_matrix_exporter.h"

#include <algorithm>
#include <stdexcept>

#include "mox/core/application.h"
#include "mox/core/xml.h"
#include "mox/zyn/format/generic_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "mox/zyn/matrix/data_matrix.h"
#include "mox/zyn/matrix/data_matrix_exporter_format.h"
#include "zyn/items/polymorphic_list.h"
#include "zyn/items/xml_attributes.h"
#include "zyn/operations/export_row.h"

namespace {

constexpr char const* kFormatters = "Formatters";
constexpr char const* kColumns = "Columns";
constexpr char const* kColumn = "Column";
constexpr char const* kOutputFormat = "OutputFormat";

using ExportInfo = moxDataMatrixExporter::ExportInfo;

/// Numbers that stand for nothing are as if nothing had been said.
ExportInfo infoOf(int number) {
  return number >= moxDataMatrixExporter::kSempre && number <= moxDataMatrixExporter::kNunca
             ? static_cast<ExportInfo>(number)
             : moxDataMatrixExporter::kSempre;
}

moxDataMatrixTypes::Types typeOf(int number) {
  return number >= moxDataMatrixTypes::Int && number <= moxDataMatrixTypes::Blob
             ? static_cast<moxDataMatrixTypes::Types>(number)
             : moxDataMatrixTypes::Int;
}

bool takesPart(ExportInfo info, bool visible, bool detail) {
  switch (info) {
    case moxDataMatrixExporter::kSempre:
      return true;
    case moxDataMatrixExporter::kVisivel:
      return visible;
    case moxDataMatrixExporter::kDetalhe:
      return detail;
    case moxDataMatrixExporter::kNunca:
      break;
  }
  return false;
}

}  // namespace

bool DataMatrixExporter::save(std::shared_ptr<moxXMLNode> node) const {
  if (!node) {
    return false;
  }
  polymorphic_list::save(formatters_, *node->addChild(kFormatters));
  saveColumns(*node->addChild(kColumns));
  auto const format = node->addChild(kOutputFormat);
  return !format_ || format_->save(format->addChild(format_->name()));
}

void DataMatrixExporter::saveColumns(moxXMLNode& node) const {
  for (auto const& [data, type] : columns_) {
    auto const element = node.addChild(kColumn);
    element->writeAttribute("name", data.name);
    element->writeAttribute("formatter", data.formatter);
    xml_attributes::writeInt(*element, "type", type);
    xml_attributes::writeInt(*element, "expinfo", data.info);
  }
}

/// What is read replaces the rest at the end, so that a failure leaves all as it was.
bool DataMatrixExporter::load(std::shared_ptr<moxXMLNode> node) {
  if (!node) {
    return false;
  }
  std::vector<Formatter> formatters;
  if (auto const list = node->childByIndex(0, kFormatters)) {
    polymorphic_list::load<moxGenericFormatter>(*list, [&](Formatter formatter) {
      if (formatter) {
        formatters.push_back(std::move(formatter));
      }
    });
  }
  auto const list = node->childByIndex(0, kColumns);
  auto columns = list ? columnsIn(*list) : std::vector<Column>();
  takeFormat(loadFormat(*node));
  formatters_ = std::move(formatters);
  columns_ = std::move(columns);
  return true;
}

std::vector<DataMatrixExporter::Column> DataMatrixExporter::columnsIn(moxXMLNode const& node) {
  std::vector<Column> columns;
  for (int i = 0; auto const element = node.childByIndex(i, kColumn); ++i) {
    columns.push_back({{element->readAttribute("name"),
                        infoOf(xml_attributes::readInt(*element, "expinfo")),
                        element->readAttribute("formatter"),
                        {}},
                       typeOf(xml_attributes::readInt(*element, "type"))});
  }
  return columns;
}

std::shared_ptr<moxDataMatrixExporterFormat> DataMatrixExporter::loadFormat(
    moxXMLNode const& node) const {
  auto const place = node.childByIndex(0, kOutputFormat);
  auto const element = place ? place->childByIndex(0) : nullptr;
  if (!element) {
    return {};
  }
  auto format = moxApp->get<moxDataMatrixExporterFormat>(element->elementName());
  return format && format->load(element) ? format : nullptr;
}

void DataMatrixExporter::addFormatter(Formatter formatter) {
  if (formatter &&
      std::find(formatters_.begin(), formatters_.end(), formatter) == formatters_.end()) {
    formatters_.push_back(std::move(formatter));
  }
}

void DataMatrixExporter::removeFormatter(Formatter formatter) {
  std::erase(formatters_, formatter);
}

DataMatrixExporter::ConstFormatter DataMatrixExporter::formatterByName(
    std::string const& name) const {
  auto const found =
      std::find_if(formatters_.begin(), formatters_.end(),
                   [&](auto const& formatter) { return formatter->getDescription() == name; });
  return found != formatters_.end() ? *found : nullptr;
}

std::vector<DataMatrixExporter::Column>::iterator DataMatrixExporter::findColumn(
    std::string const& columnName) {
  return std::find_if(columns_.begin(), columns_.end(),
                      [&](Column const& column) { return column.data.name == columnName; });
}

void DataMatrixExporter::setSampleDataMatrix(std::shared_ptr<moxDataMatrix const> matrix) {
  if (!matrix) {
    throw std::invalid_argument("columns are taken from a matrix");
  }
  std::vector<Column> sampled;
  for (unsigned int i = 0; i < matrix->columnCount(); ++i) {
    auto const column = matrix->columnAt(i);
    auto const known = findColumn(column->getName());
    sampled.push_back(
        {known != columns_.end() ? known->data : ColumnData{column->getName(), kSempre, {}, {}},
         column->getType()});
  }
  columns_ = std::move(sampled);
}

void DataMatrixExporter::setColumnInfo(std::string const& columnName, ExportInfo info,
                                       std::string const& header) {
  if (auto const column = findColumn(columnName); column != columns_.end()) {
    column->data.info = info;
    column->data.header = header;
  }
}

void DataMatrixExporter::setColumnFormatter(std::string const& columnName,
                                            std::string const& formatter) {
  if (auto const column = findColumn(columnName); column != columns_.end()) {
    column->data.formatter = formatter;
  }
}

std::vector<DataMatrixExporter::ColumnData> DataMatrixExporter::getColumns() {
  std::vector<ColumnData> columns;
  for (auto const& column : columns_) {
    columns.push_back(column.data);
  }
  return columns;
}

bool DataMatrixExporter::exportToFile(std::string const& fileName,
                                      std::shared_ptr<moxDataMatrix> matrix, bool visible,
                                      bool detail) const {
  if (!format_) {
    return false;
  }
  if (!matrix) {
    throw std::invalid_argument("an exporter writes a matrix");
  }
  auto const row = std::make_shared<DME::Internals::ExportRow>(matrix->rowCount());
  for (auto const& [data, type] : columns_) {
    auto const column = matrix->columnByName(data.name);
    if (column && takesPart(data.info, visible, detail)) {
      auto const formatter = data.formatter.empty() ? nullptr : formatterByName(data.formatter);
      row->addColumn(
          std::make_shared<DME::Internals::ExportColumn>(column, formatter, data.header));
    }
  }
  format_->exportToFile(fileName, row);
  return true;
}

void DataMatrixExporter::setOutputFormat(std::string const& registeredName) {
  takeFormat(moxApp->get<moxDataMatrixExporterFormat>(registeredName));
}

void DataMatrixExporter::takeFormat(std::shared_ptr<moxDataMatrixExporterFormat> format) {
  format_ = std::move(format);
  if (format_) {
    format_->setParentExporter(weak_from_this());
  }
}
