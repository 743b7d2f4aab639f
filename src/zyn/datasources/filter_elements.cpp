#include "zyn/datasources/filter_elements.h"

#include "zyn/frame/registered.h"
#include "zyn/items/definition_error.h"

std::shared_ptr<moxFilterSpecification> filter_elements::read(XmlElement const& element) {
  auto const name = element.name();
  auto filter = registered<moxFilterSpecification>(name);
  if (!filter) {
    throw definitionError("Filtro inválido: " + name, element,
                          "the class of this name is no filter specification");
  }
  loadFrom(*filter, element);
  return filter;
}
