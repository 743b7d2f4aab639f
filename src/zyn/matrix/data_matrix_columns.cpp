#include "zyn/matrix/data_matrix_columns.h"

#include <stdexcept>

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"

template <class T>
std::shared_ptr<moxIterator> CommonColumn<T>::begin() {
  return std::make_shared<moxTypedIterator<T>>(*this, 0U);
}

template class CommonColumn<int>;
template class CommonColumn<double>;
template class CommonColumn<std::string>;
template class CommonColumn<datetime_t>;
template class CommonColumn<std::shared_ptr<moxReadBlob>>;

std::string_view columnClassOf(moxDataMatrixTypes::Types type) {
  switch (type) {
    case moxDataMatrixTypes::Int:
      return "moxDataMatrixIntColumn";
    case moxDataMatrixTypes::Double:
      return "moxDataMatrixDoubleColumn";
    case moxDataMatrixTypes::Text:
      return "moxDataMatrixTextColumn";
    case moxDataMatrixTypes::Date:
      return "moxDataMatrixDateColumn";
    case moxDataMatrixTypes::Blob:
      return "moxDataMatrixBlobColumn";
  }
  throw std::logic_error("no column class for this kind of value");
}

std::shared_ptr<moxDataMatrixColumn> makeColumn(moxDataMatrixTypes::Types type) {
  return moxApp->get<moxDataMatrixColumn>(std::string(columnClassOf(type)));
}
