#include "zyn/format/default_formatter.h"

#include "mox/core/application.h"
#include "mox/zyn/format/date_formatter.h"
#include "mox/zyn/frame/plugin_entry.h"

namespace {

std::shared_ptr<moxGenericFormatter> newDateFormatter() {
  auto const dates = moxApp->get<moxDateAsString>("moxDateFormatter");
  if (dates) {
    dates->setMask("%d/%m/%Y");
  }
  return dates;
}

}  // namespace

std::shared_ptr<moxGenericFormatter> newFormatterFor(moxDataMatrixTypes::Types type) {
  switch (type) {
    case moxDataMatrixTypes::Int:
      return moxApp->get<moxGenericFormatter>("moxIntegralFormatter");
    case moxDataMatrixTypes::Double:
      return moxApp->get<moxGenericFormatter>("moxDecimalFormatter");
    case moxDataMatrixTypes::Text:
      return moxApp->get<moxGenericFormatter>("moxTextFormatter");
    case moxDataMatrixTypes::Date:
      return newDateFormatter();
    case moxDataMatrixTypes::Blob:
      break;
  }
  return {};
}
