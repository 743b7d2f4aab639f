#include "zyn/datasources/listed_columns.h"

#include "zyn/datasources/column_tags.h"
#include "zyn/items/definition_error.h"

namespace {

constexpr char const* kNoEntry = "map::at";

}  // namespace

UnknownColumnClass::UnknownColumnClass(moxXMLNode const& element)
    : std::out_of_range(kNoEntry),
      moxDefaultErrorImpl<moxError>(definitionError(
          "Classe de coluna inválida: " + element.elementName(), element,
          "a column of such a list is a moxDataMatrixIntColumn, a moxDataMatrixDoubleColumn, a "
          "moxDataMatrixTextColumn or a moxDataMatrixDateColumn")) {}

moxDataMatrixTypes::Types listedColumnType(moxXMLNode const& element) {
  auto const type = columnTypeOfTag(element.elementName());
  if (!type || *type == moxDataMatrixTypes::Blob) {
    throw UnknownColumnClass(element);
  }
  return *type;
}

char const* listedColumnElement(moxDataMatrixTypes::Types type) {
  char const* const element = type != moxDataMatrixTypes::Blob ? tagOfColumnType(type) : nullptr;
  if (element == nullptr) {
    throw std::out_of_range(kNoEntry);
  }
  return element;
}
