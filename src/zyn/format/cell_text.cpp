#include "zyn/format/cell_text.h"

#include "zyn/format/default_formatter.h"
#include "zyn/format/text_formatter.h"
#include "zyn/matrix/common_column.h"

CellText::CellText(std::shared_ptr<moxDataMatrixColumn> column,
                   std::shared_ptr<moxGenericFormatter const> formatter)
    : column_(std::move(column)),
      formatter_(formatter ? std::move(formatter) : newFormatterFor(column_->getType())) {
  takeRoad();
}

template <class T, class Formatter>
bool CellText::takeDirect() {
  auto const* const own = dynamic_cast<CommonColumn<T> const*>(column_.get());
  auto const* const formatter = dynamic_cast<Formatter const*>(formatter_.get());
  bool const isDirect = own != nullptr && formatter != nullptr;
  if (isDirect) {
    road_ = Direct<T, Formatter>{&own->storage(), formatter};
  }
  return isDirect;
}

bool CellText::takeBytes() {
  auto const* const own = dynamic_cast<CommonColumn<std::string> const*>(column_.get());
  bool const isPlain = dynamic_cast<TextFormatter const*>(formatter_.get()) != nullptr;
  if (own != nullptr && isPlain) {
    road_ = Bytes{&own->storage(), formatter_->getPrefix(), formatter_->getSuffix()};
  }
  return own != nullptr && isPlain;
}

void CellText::takeRoad() {
  if (takeDirect<int, IntegralFormatter>() || takeDirect<double, DecimalFormatter>() ||
      takeDirect<datetime_t, DateFormatter>() || takeBytes()) {
    return;
  }
  auto const cursor = column_->begin();
  road_ = ByCursor{cursor, cursor};
}

void CellText::appendTo(std::string& out, unsigned int row) const {
  std::visit([&](auto const& road) { append(out, road, row); }, road_);
}

void CellText::append(std::string& out, ByCursor const& road, unsigned int row) const {
  if (formatter_ && road.cursor && road.cursor->goTo(row)) {
    out.append(formatter_->asString(road.cell));
  }
}

template <class T, class Formatter>
void CellText::append(std::string& out, Direct<T, Formatter> const& road, unsigned int row) const {
  if (row < road.cells->size() && !road.cells->nulls.test(row)) {
    road.formatter->appendTo(out, road.cells->values.cells()[row]);
  }
}

void CellText::append(std::string& out, Bytes const& road, unsigned int row) const {
  if (row >= road.cells->size() || road.cells->nulls.test(row)) {
    return;
  }
  TextRef const& text = road.cells->values.cells()[row];
  if (text.size() != 0) {
    out.append(road.prefix).append(text.view()).append(road.suffix);
  }
}
