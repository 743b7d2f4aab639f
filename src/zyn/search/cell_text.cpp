#include "zyn/search/cell_text.h"

#include "mox/core/application.h"
#include "mox/zyn/format/date_formatter.h"
#include "mox/zyn/format/decimal_formatter.h"
#include "mox/zyn/format/integral_formatter.h"
#include "mox/zyn/format/text_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"

namespace {

using Formatter = std::shared_ptr<moxGenericFormatter const>;

constexpr char const* kIntegral = "moxIntegralFormatter";
constexpr char const* kDecimal = "moxDecimalFormatter";
constexpr char const* kText = "moxTextFormatter";
constexpr char const* kDate = "moxDateFormatter";

Formatter newDateFormatter() {
  auto const dates = moxApp->get<moxDateAsString>(kDate);
  if (dates) {
    dates->setMask("%d/%m/%Y");
  }
  return dates;
}

/// Empty for blobs: bytes are nothing to look at.
Formatter newFormatterFor(moxDataMatrixTypes::Types type) {
  switch (type) {
    case moxDataMatrixTypes::Int:
      return moxApp->get<moxGenericFormatter>(kIntegral);
    case moxDataMatrixTypes::Double:
      return moxApp->get<moxGenericFormatter>(kDecimal);
    case moxDataMatrixTypes::Text:
      return moxApp->get<moxGenericFormatter>(kText);
    case moxDataMatrixTypes::Date:
      return newDateFormatter();
    case moxDataMatrixTypes::Blob:
      break;
  }
  return {};
}

}  // namespace

CellText::CellText(std::shared_ptr<moxDataMatrixColumn> column, Formatter formatter)
    : column_(std::move(column)),
      formatter_(formatter ? std::move(formatter) : newFormatterFor(column_->getType())) {
  takeRoad();
}

/// Only for the very class of that name: a formatter derived from it may have a mind of its own
/// about cells.
template <class T, class Formatter>
bool CellText::takeDirect(char const* className) {
  auto const* const values = dynamic_cast<moxDataMatrixTypedColumn<T> const*>(column_.get());
  auto const* const formatter = dynamic_cast<Formatter const*>(formatter_.get());
  bool const isDirect =
      values != nullptr && formatter != nullptr && formatter_->name() == className;
  if (isDirect) {
    road_ = Direct<T, Formatter>{values, formatter};
  }
  return isDirect;
}

void CellText::takeRoad() {
  if (takeDirect<int, moxIntegralAsString>(kIntegral) ||
      takeDirect<double, moxDecimalAsString>(kDecimal) ||
      takeDirect<datetime_t, moxDateAsString>(kDate)) {
    return;
  }
  if (takeDirect<std::string, moxTextAsString>(kText)) {
    if (formatter_->getPrefix().empty() && formatter_->getSuffix().empty()) {
      road_ = Bare{dynamic_cast<moxDataMatrixTypedColumn<std::string> const*>(column_.get())};
    }
    return;
  }
  auto const cursor = column_->begin();
  road_ = ByCursor{cursor, cursor};
}

std::string CellText::at(unsigned int row) const {
  return std::visit([&](auto const& road) { return text(road, row); }, road_);
}

std::string CellText::text(ByCursor const& road, unsigned int row) const {
  return formatter_ && road.cursor && road.cursor->goTo(row) ? formatter_->asString(road.cell)
                                                             : std::string();
}

template <class T, class Formatter>
std::string CellText::text(Direct<T, Formatter> const& road, unsigned int row) const {
  return road.column->isNull(row) ? std::string()
                                  : road.formatter->asString(road.column->getValue(row));
}

std::string CellText::text(Bare const& road, unsigned int row) const {
  return road.column->getValue(row);
}
