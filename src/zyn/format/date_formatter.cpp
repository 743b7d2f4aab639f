#include "zyn/format/date_formatter.h"

#include "zyn/format/cell_value.h"

DateFormatter::DateFormatter() : PropertyFormatter("description", "Descrição") {}

void DateFormatter::moreSettings(SettingVisitor const& visitor) {
  visitor.text("mask", "Máscara", mask_);
}

std::string DateFormatter::asString(std::shared_ptr<moxIterator const> const& cell) const {
  auto const* const dates = valueCursor<datetime_t>(cell.get(), moxDataMatrixTypes::Date);
  return dates != nullptr ? asString(dates->get()) : std::string();
}

std::string DateFormatter::asString(datetime_t const& moment) const {
  std::string text;
  appendTo(text, moment);
  return text;
}

std::string DateFormatter::asString(date_t const& date) const {
  std::string text;
  appendTo(text, date);
  return text;
}

void DateFormatter::setMask(std::string const& mask) {
  mask_ = mask;
  compiled_ = DateMask(mask_);
}

// The mask may have been set behind the formatter's back, through its property.
void DateFormatter::propertyChanged() {
  compiled_ = DateMask(mask_);
}
