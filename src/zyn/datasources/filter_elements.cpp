#include "zyn/datasources/filter_elements.h"

#include "mox/core/application.h"
#include "mox/zyn/frame/plugin_entry.h"
#include "zyn/items/definition_error.h"

std::shared_ptr<moxFilterSpecification> filter_elements::read(
    std::shared_ptr<moxXMLNode> const& element) {
  auto filter = moxApp->get<moxFilterSpecification>(element->elementName());
  if (!filter) {
    throw definitionError("Filtro inválido: " + element->elementName(), *element,
                          "the class of this name is no filter specification");
  }
  filter->load(element);
  return filter;
}
