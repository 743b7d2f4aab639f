#pragma once

#include <memory>

#include "mox/core/xml.h"
#include "mox/zyn/filters/filter_specification.h"
#include "zyn/frame/xml_element.h"

/// The filters that a source offers, in its element: a child for each, named like the registered
/// class.
namespace filter_elements {

/// Throws moxError "Filtro inválido: " with the class for one that is no filter specification,
/// and moxPluginNotFound for one that nobody has registered. Left out, either would let a user see
/// more than the definition's author meant.
std::shared_ptr<moxFilterSpecification> read(XmlElement const& element);

/// Hands the filter of every child to `append`, whatever the children's names.
template <class Append>
void readAll(XmlElement const& list, Append const& append) {
  list.eachChild({}, [&](XmlElement const& element) { append(read(element)); });
}

template <class Append>
void readAll(moxXMLNode const& list, Append const& append) {
  readAll(XmlElement(list), append);
}

}  // namespace filter_elements
